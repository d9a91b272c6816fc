#include "tools/lib/device/SyntheticDevice.h"

#include <gtest/gtest.h>

#include <cstring>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/PanelCorvaneFE.h"
#include "tests/support/TestSupport.h"

namespace {

using postblend::Lut3DCacheManager;
using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneFE;

TEST(SyntheticDevice, SerialNumbersEncodeTheStamp) {
  // Fields year 9, month 3, day 7, hour 8, minute 5, second 9, tenths 12.
  const std::string serial = std::string(25, 'Z') + "90307080509000C";
  EXPECT_EQ(pctool::stampOfSerial(serial), "2020/03/07_08:05:09_1.2");
  EXPECT_EQ(pctool::stampOfSerial(serial.substr(0, 39)), "");
  for (unsigned seed : {1u, 2u, 77u}) {
    const std::string s = pctool::syntheticSerial(seed, 1);
    EXPECT_EQ(s.size(), 40u);
    EXPECT_EQ(pctool::stampOfSerial(s).substr(0, 2), "20") << s;
  }
  EXPECT_NE(pctool::syntheticSerial(1, 0), pctool::syntheticSerial(1, 1));
}

TEST(SyntheticDevice, TreeFeedsTheGenerator) {
  struct Case {
    int tables;
    bool matched;
    int expectedResult;
  } cases[] = {{8, true, 0}, {6, false, 1}};
  for (const auto& c : cases) {
    pctest::resetSharedState();
    pctest::TempRoot root;
    pctool::SyntheticDeviceOptions o;
    o.seed = 5;
    o.tables = c.tables;
    o.matched = c.matched;
    std::string error;
    ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), o, &error)) << error;
    root.write("/data/vendor/display/.keep", "");

    const std::string serials = root.read("/dev/tarnu_display");
    const std::string stamp = pctool::stampOfSerial(serials.substr(41, 40));
    EXPECT_EQ(root.read("/mnt/vendor/persist/display/panel_id_d1") == stamp + "\n", c.matched);

    auto* prop = new postblend::Prop();
    ASSERT_TRUE(prop->Init());
    PanelCorvaneBase::sProp = prop;
    EXPECT_EQ(prop->GetPanelId("PanelCorvane_secondary"), 1u);
    EXPECT_EQ(prop->GetFWVersion(), (int32_t)Lut3DCacheManager::fileSizeFor(c.tables));
    PanelCorvaneBase::sIsGammaCorrectionOn = prop->IsGammaCorrectionOn();
    PanelCorvaneBase::sParamVersion = prop->GetParamVersion();
    PanelCorvaneFE::sIn100nits = -1;

    PanelCorvaneBase owner;
    std::strcpy(owner.mName, "PanelCorvane_secondary");
    PanelCorvaneFE fe(&owner, 1);
    Lut3DCacheManager::deInit(1);
    Lut3DCacheManager::sNumOfLut3D[1] = 0;
    Lut3DCacheManager::init(1, prop->IsCMDebugOn());
    EXPECT_EQ(fe.generateCfgFile(c.matched ? 1 : -1), c.expectedResult);
    EXPECT_EQ(PanelCorvaneFE::sIn100nits, 1);
    EXPECT_EQ(Lut3DCacheManager::loadCacheFromFile(1, prop->GetFWVersion(), c.matched, 1), 0);
    Lut3DCacheManager::deInit(1);
    Lut3DCacheManager::sNumOfLut3D[1] = 0;
  }
  pctest::resetSharedState();
}

}  // namespace
