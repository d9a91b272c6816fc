// A device tree's property file, the synthetic trees' identity stamps, what a file on it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>


#include "backend/PanelCorvaneBE.h"
#include "tests/support/TestSupport.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/device/FileInfo.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(PropertyFile, DisplayNamesAndTheirPanelsAsThePluginReadsThem) {
  pctest::TempRoot root;
  root.write("/p", "LogLevel=1\n# Hidden=100\nMain=0\nSide=150\nMain=100\nOther =120\ninParam100nits=1\nLast=100");
  pctool::PropertyFile prop;
  std::string err;
  ASSERT_TRUE(prop.load(root.host("/p"), err)) << err;
  EXPECT_EQ(prop.namesText(), "Main, Side, Other ");  // switches are no display names
  EXPECT_EQ(prop.panelOf("Main"), 0u);                // the first occurrence wins
  EXPECT_EQ(prop.panelOf("Side"), 1u);
  EXPECT_EQ(prop.panelOf("Other "), 1u);  // nothing is trimmed
  EXPECT_FALSE(prop.has("Last"));         // no line feed: not read
  EXPECT_TRUE(prop.switches().use100nits);
  EXPECT_FALSE(prop.load(root.path(), err));
  EXPECT_EQ(err, "is a folder, not a file");
}

// mkdevice's stamps are what the plugin's identity check reads from the serials it writes.
TEST(SyntheticDevice, SerialNumbersCarryTheStampThePluginReads) {
  // Fields year 9, month 3, day 7, hour 8, minute 5, second 9, tenths 12.
  const std::string serial = std::string(25, 'Z') + "90307080509000C";
  EXPECT_EQ(pctool::stampOfSerial(serial), "2020/03/07_08:05:09_1.2");
  EXPECT_EQ(pctool::stampOfSerial(serial.substr(0, 39)), "");
  pctest::LogCapture quiet;
  postblend::PanelCorvaneBE backend(nullptr);
  for (unsigned seed : {1u, 2u, 77u}) {
    const std::string s = pctool::syntheticSerial(seed, 1);
    ASSERT_EQ(s.size(), 40u);
    std::string sn = s, stamp = pctool::stampOfSerial(s) + "\n";
    sn.resize(256), stamp.resize(256);  // the backend's text buffers
    EXPECT_TRUE(backend.transferAndCmp(sn.data(), stamp.data())) << s;
  }
  EXPECT_NE(pctool::syntheticSerial(1, 0), pctool::syntheticSerial(1, 1));
}

// A cache the plugin would refuse still shows what it holds, and says why it is refused.
TEST(FileInfo, InspectTellsTheFwVersionAndTheChecksumVerdict) {
  pctest::TempRoot root;
  root.write("/cofc.fw", pctest::cacheImage(pctest::identityTables(6), 2, 0, 1, 0x10));
  std::string text, err;
  EXPECT_FALSE(pctool::inspectFile(root.host("/cofc.fw"), text, err));
  EXPECT_THAT(err, StartsWith("checksum mismatch: stored 0x"));
  EXPECT_THAT(text, HasSubstr("needs FWVersion=707584"));
  EXPECT_THAT(text, HasSubstr("source 2 (panel matched but golden data used; never accepted on reload)"));
  EXPECT_THAT(text, HasSubstr("largest move from the input 0 codes (identity)"));
}

}  // namespace
