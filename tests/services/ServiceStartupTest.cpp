#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>
#include <android/binder_manager.h>
#include <gtest/gtest.h>

#include <cstring>

#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"

using aidl::vendor::tarnu::hardware::display::MixLut3D::IMixLut3D;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;

namespace {

class ServiceStartupTest : public pctest::CoreTest {
 protected:
  std::shared_ptr<IMixLut3D> aidl() {
    std::string name = std::string(IMixLut3D::descriptor) + "/default";
    return IMixLut3D::fromBinder(ndk::SpAIBinder(AServiceManager_checkService(name.c_str())));
  }
};

TEST_F(ServiceStartupTest, PrimaryRegistersBothServicesOnceWithoutADisplayService) {
  writeProps();
  PanelCorvane* primary = make();
  PanelCorvane* secondary = make();
  primary->Init("primary");
  ASSERT_TRUE(pctest::waitFor(
      [&] { return log.count("1-onHelpServiceInit: Failed to acquire display.qservice") == 5; }));
  secondary->Init("secondary");
  ASSERT_TRUE(pctest::waitFor(
      [&] { return log.count("1-onHelpServiceInit: Failed to acquire display.qservice") == 10; }));
  primary->initHelpService();  // a second start-up job on the same panel
  ASSERT_TRUE(pctest::waitFor(
      [&] { return log.count("1-onHelpServiceInit: Failed to acquire display.qservice") == 15; }));

  EXPECT_EQ(log.count("1-initHidlService: register hidl done!"), 1);
  EXPECT_EQ(pchost::registrationStats(pchost::ServiceRegistry::Hidl).attempts, 1);
  EXPECT_EQ(pchost::registrationStats(pchost::ServiceRegistry::Ndk).registered, 1);
  EXPECT_EQ(
      log.count(
          "1-initAidlService: AIDL:vendor.tarnu.hardware.display.MixLut3D.IMixLut3D/default OK!"),
      1);
  ASSERT_NE(aidl(), nullptr);
  EXPECT_EQ(vendor::display::PanelCorvane::V1_0::IPanelCorvane::getService("default").get(),
            static_cast<vendor::display::PanelCorvane::V1_0::IPanelCorvane*>(primary));
}

TEST_F(ServiceStartupTest, HidlRegistrationRetriesFiveTimes) {
  pchost::failNextRegistrations(pchost::ServiceRegistry::Hidl, 5);
  PanelCorvane* p = make();
  p->Init("primary");  // no property file: bypass registers on the calling thread
  EXPECT_EQ(log.count("1-initHidlService: Failed to register hidl!"), 5);
  EXPECT_FALSE(PanelCorvaneBase::sIsHidlRegitsered);
  pchost::failNextRegistrations(pchost::ServiceRegistry::Hidl, 1);
  log.clear();
  p->Init("primary");
  EXPECT_EQ(log.count("1-initHidlService: Failed to register hidl!"), 1);
  EXPECT_TRUE(log.has("1-initHidlService: register hidl done!"));
}

TEST_F(ServiceStartupTest, AidlForwardsToTheChosenPanel) {
  writeProps();
  PanelCorvane* p = make();
  p->Init("primary");
  ASSERT_TRUE(pctest::waitFor([&] { return aidl() != nullptr; }));
  auto service = aidl();
  int32_t ret = 5;
  EXPECT_TRUE(service->set(0, 10001, &ret).isOk());
  EXPECT_EQ(ret, 0);
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  EXPECT_TRUE(log.has("1-cmd10000: MIXLUT3D_AIDL_CMD_OFF"));
  EXPECT_TRUE(log.has("1-set: AIDL CALL:configure!!! 10001"));
  ret = 5;
  EXPECT_TRUE(service->set(2, 10000, &ret).isOk());
  EXPECT_TRUE(service->set(1, 10000, &ret).isOk());
  EXPECT_EQ(ret, 5) << "no such display: the result is left alone";
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);

  const char hello[] = "Hello";
  std::vector<int32_t> in(2);
  std::memcpy(in.data(), hello, sizeof(hello));
  std::vector<int32_t> big(4, 0), small(2, 0x7f7f7f7f);
  EXPECT_TRUE(service->sencept(0, 0, in, &big, &ret).isOk());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(big.data()), 14), "You say world!");
  EXPECT_TRUE(log.has("1-sencept: Hello"));
  EXPECT_TRUE(service->sencept(0, 0, std::vector<int32_t>{}, &small, &ret).isOk());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(small.data()), 8), "You say ");
  // Found by fuzzing: an empty answer vector got a copy to its null storage.
  std::vector<int32_t> none;
  EXPECT_TRUE(service->sencept(0, 0, std::vector<int32_t>{}, &none, &ret).isOk());
  EXPECT_TRUE(none.empty());
}

}  // namespace
