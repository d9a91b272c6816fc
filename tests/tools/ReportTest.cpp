#include "tools/lib/Report.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>

#include "tests/support/TestSupport.h"
#include "tools/lib/DeviceFolder.h"
#include "tools/lib/DeviceGrid.h"
#include "tools/lib/SyntheticDevice.h"

using snapdragoncolor::lut3d_info;

namespace {

TEST(Report, BrightnessFollowsThePluginsQ12Rule) {
  struct Case {
    uint32_t even, odd, brightness;
    int32_t out;
  } cases[] = {
      {1000, 2000, 3500, 1000},  // w = 0
      {1000, 2000, 8191, 2000},  // w = 4096
      {2000, 1000, 8191, 1000},
      {1000, 2000, 5845, 1499},  // w = 2047: 1000 * 2047 / 4096 = 499.76, truncated
      {2000, 1000, 5845, 1500},  // negative delta rounds toward minus infinity
      {0, 4095, 6000, 2181},     // w = 2182
  };
  for (const auto& c : cases)
    EXPECT_EQ(pctool::brightnessOutput(c.even, c.odd, c.brightness), c.out) << c.even << "->" << c.odd << " @" << c.brightness;
}

TEST(Report, WritesAPngPageForEachPanelOfADeviceTree) {
  pctest::resetSharedState();
  pctest::TempRoot root;
  std::string err;
  pctool::SyntheticDeviceOptions opt;
  ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), opt, &err)) << err;
  std::vector<pctool::PanelReport> reports;
  ASSERT_TRUE(pctool::collectDeviceReports(root.path(), reports, err)) << err;
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].panelName, "PanelCorvane_primary (panel 0)");
  EXPECT_EQ(reports[1].panelName, "PanelCorvane_secondary (panel 1)");
  EXPECT_TRUE(reports[1].hasOdf);
  EXPECT_EQ(reports[1].odfLabel, "/mnt/vendor/persist/display/Loading_ON_1_max_d1.odf (local)");
  EXPECT_EQ(reports[0].targets.size(), 4u);

  // Tables as the cache would hold them: pairs that differ, so the brightness plot has a slope.
  auto even = std::make_shared<lut3d_info>(), odd = std::make_shared<lut3d_info>();
  pctool::setIdentity(*even, 0);
  pctool::setIdentity(*odd, 1);
  for (auto& e : even->entries) e.out[1] = e.in[1] * 3 / 4;
  reports[0].tables = {{"0 Vivid 100-nit", even}, {"1 Vivid", odd}};
  EXPECT_EQ(pctool::pickBrightnessNode(reports[0]), pctool::entryIndex(0, 16, 0));

  const std::string png = root.path() + "/page.png";
  bool ok = pctool::writeReportPng(reports[0], png, err);
  if (!pctool::reportSupported()) {
    EXPECT_FALSE(ok);
    EXPECT_EQ(err, "built without cairo");
    GTEST_SKIP() << "built without cairo: no page to check";
  }
  ASSERT_TRUE(ok) << err;
  std::ifstream in(png, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ASSERT_GT(bytes.size(), 24u);
  EXPECT_EQ(bytes.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  auto be32 = [&](size_t at) {
    return uint32_t(uint8_t(bytes[at])) << 24 | uint32_t(uint8_t(bytes[at + 1])) << 16 |
           uint32_t(uint8_t(bytes[at + 2])) << 8 | uint32_t(uint8_t(bytes[at + 3]));
  };
  EXPECT_EQ(bytes.substr(12, 4), "IHDR");
  EXPECT_EQ(be32(16), uint32_t(pctool::kReportWidth));
  EXPECT_EQ(be32(20), uint32_t(pctool::kReportHeight));

  EXPECT_FALSE(pctool::writeReportPng(reports[0], root.path() + "/no/such/dir/page.png", err));
  EXPECT_EQ(err.rfind("cannot write PNG: ", 0), 0u) << err;
}

}  // namespace
