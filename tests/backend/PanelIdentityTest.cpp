#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <string>

#include "backend/PanelCorvaneBE.h"
#include "tests/support/TestSupport.h"

using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneBE;

namespace {

constexpr const char* kStamp = "2020/03/07_08:05:09_1.2";
constexpr const char* kId0 = "/mnt/vendor/persist/display/panel_id";

// 25 characters of anything, then the stamp fields as 15 hexadecimal digits.
std::string serial(uint64_t y, uint64_t mo, uint64_t d, uint64_t h, uint64_t mi, uint64_t s,
                   uint64_t tenths) {
  char hex[32];
  snprintf(hex, sizeof(hex), "%015llX",
           static_cast<unsigned long long>(y << 56 | mo << 48 | d << 40 | h << 32 | mi << 24 |
                                           s << 16 | tenths));
  return std::string("TNPANEL-SN-0123456789-ABC") + hex;
}
const std::string kSerial = serial(9, 3, 7, 8, 5, 9, 12);

std::string lowerCase(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

class PanelIdentityTest : public ::testing::Test {
 protected:
  void SetUp() override { pctest::resetSharedState(); }
  bool compare(std::string sn, std::string id) {
    sn.resize(256, '\0');
    id.resize(256, '\0');
    return be.transferAndCmp(&sn[0], &id[0]);
  }
  pctest::TempRoot root;
  pctest::LogCapture log;
  PanelCorvaneBase owner;
  PanelCorvaneBE be{&owner};
};

TEST_F(PanelIdentityTest, StampComparison) {
  struct Case {
    std::string sn, id;
    bool result;
    std::string line;
  };
  const Case cases[] = {
      {kSerial, kStamp, true, "PSN_OK."},
      {kSerial, std::string(kStamp) + "\n", true, "PSN_OK."},
      {kSerial.substr(0, 39), kStamp, false, "PSN_ERROR!"},
      {kSerial, std::string(kStamp).substr(0, 22), false, "PSN_ERROR."},
      {kSerial, "2020/03/07_08:05:19_1.2", false, "0 <> 1 (17)"},
      {lowerCase(serial(9, 10, 11, 12, 13, 14, 0xafe)), "2020/10/11_12:13:14_281.4", true, "PSN_OK."},
      {serial(10, 12, 31, 23, 59, 59, 65535), "2021/12/31_23:59:59_6553.4", false, "5 <> 4 (25)"},
  };
  for (const Case& c : cases) {
    log.clear();
    EXPECT_EQ(c.result, compare(c.sn, c.id)) << c.id;
    EXPECT_TRUE(log.has("1-transferAndCmp: " + c.line, "PanelCorvaneBE")) << log.dump();
  }
  EXPECT_TRUE(
      log.has("1-transferAndCmp: device: 2021/12/31_23:59:59_6553.5(26) -> "
              "2021/12/31_23:59:59_6553.4(26)"));
}

TEST_F(PanelIdentityTest, WholeDecisionPerPanel) {
  root.write("/dev/tarnu_display", "short\n" + kSerial + "\n");
  root.write(kId0, kStamp);
  root.write("/mnt/vendor/persist/display/panel_id_d1", std::string(kStamp) + "\n");
  owner.mPanelIndex = 1;  // file panel_id_d1, driver line 1
  EXPECT_TRUE(be.isPaneIdMatched()) << log.dump();
  EXPECT_TRUE(log.has("1-getSnByHidl: 1:0-" + kSerial));
  owner.mPanelIndex = 0;
  EXPECT_FALSE(be.isPaneIdMatched()) << "line 0 is too short";
  EXPECT_EQ(1, log.count("1-getSnByHidl: PANEL_IOCTL_GET_SERIAL_NUMBER error."));
  root.remove(kId0);
  EXPECT_FALSE(be.isPaneIdMatched());
  EXPECT_TRUE(log.has("1-readFactorPanelId: failed to open panel_id!"));
}

TEST_F(PanelIdentityTest, DriverThatNeverAnswers) {
  root.write(kId0, std::string(kStamp) + std::string(1000, 'x'));  // read bounded to 256
  PanelCorvaneBase::sDebug = 0x02;
  EXPECT_FALSE(be.isPaneIdMatched());
  EXPECT_TRUE(log.has("1-readFactorPanelId: " + std::string(kStamp) + std::string(233, 'x')));
  EXPECT_EQ(10, log.count("1-getSnByHidl: Fail to open /dev/tarnu_display!"));
  EXPECT_EQ(1, log.count("1-getSnByHidl: PANEL_IOCTL_GET_SERIAL_NUMBER error."));
  root.write("/dev/tarnu_display", kSerial.substr(0, 39));
  log.clear();
  char sn[256] = {};
  EXPECT_FALSE(be.getSnByHidl(sn));
  EXPECT_TRUE(log.has("1-getSnByHidl: 0:9"));
  EXPECT_FALSE(log.has("1-getSnByHidl: 0:10"));
}

TEST_F(PanelIdentityTest, SysfsSerial) {
  char sn[256] = {};
  root.write("/sys/kernel/tarnu_display/panel_serial_number", kSerial + "\n");
  EXPECT_TRUE(be.readSysSn(sn));
  EXPECT_TRUE(log.has("1-readSysSn: " + kSerial));
  EXPECT_FALSE(be.readSysSn(sn)) << "a buffer already holding a serial is refused";
  root.write("/sys/kernel/tarnu_display/panel_serial_number", kSerial);  // 40: no line feed
  sn[0] = '\0';
  EXPECT_FALSE(be.readSysSn(sn));
  EXPECT_EQ(2, log.count("1-readSysSn: Failed to read psn from sysfs."));
}

}  // namespace
