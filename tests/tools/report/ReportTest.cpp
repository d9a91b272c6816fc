// A panel's report page, checked on its plan: what it says, before anything is drawn.
#include "tools/lib/report/Report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <tuple>

#include "backend/PanelCorvaneBE.h"
#include "cache/Lut3DCacheManager.h"
#include "tests/support/TestSupport.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/device/DeviceFolder.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/report/ReportPlan.h"

using postblend::lut3d_info;

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(ReportPlan, BrightnessFollowsThePluginsInterpolation) {
  EXPECT_EQ(pctool::brightnessOutput(1000, 2000, 5845), 1499);  // w = 2047: 1000 * 2047 / 4096 = 499.76, truncated
  EXPECT_EQ(pctool::brightnessOutput(2000, 1000, 5845), 1500);  // a negative delta rounds toward minus infinity
}

TEST(ReportPlan, ScreenColoursOfLab) {
  double rgb[3];
  pctool::labToScreen(pctool::Lab{100, 0, 0}, rgb);
  EXPECT_NEAR(rgb[0] + rgb[1] + rgb[2], 3.0, 3e-3);
  pctool::labToScreen(pctool::Lab{0, 0, 0}, rgb);
  EXPECT_NEAR(rgb[0] + rgb[1] + rgb[2], 0.0, 1e-9);
  pctool::labToScreen(pctool::Lab{53.24, 80.09, 67.20}, rgb);  // sRGB red
  EXPECT_NEAR(rgb[0], 1.0, 2e-3);
  EXPECT_NEAR(rgb[1] + rgb[2], 0.0, 4e-2);
  EXPECT_EQ(pctool::modeColourIndex(pctool::modeOfTable("6 LsRGB 100-nit")), 3);  // a mode's fixed colour
  EXPECT_GE(pctool::modeColourIndex("Night"), 4);                                  // none of theirs
}

// The sample device; a cache of 8 identity tables, each full-brightness one with green scaled.
class ReportPages : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string err;
    ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), pctool::SyntheticDeviceOptions{}, &err)) << err;
  }
  void writeCache(uint32_t source) {
    auto t = pctest::identityTables(8);
    for (uint32_t k = 1; k < 8; k += 2)
      for (auto& e : t[k].entries) e.out[1] = e.in[1] * (8 - k / 2) / 8;
    root.write(postblend::Lut3DCacheManager::cachePath(0), pctest::cacheImage(t, source, 0, 1));
  }
  std::vector<pctool::PanelReport> collect(const std::vector<pctool::TableJob>* jobs = nullptr) {
    std::vector<pctool::PanelReport> reports;
    std::vector<std::string> unjudged;
    std::string err;
    EXPECT_TRUE(pctool::collectDeviceReports(root.path(), reports, unjudged, err, jobs)) << err;
    return reports;
  }
  pctest::TempRoot root;
};

// Without a cache the page shows the tables the plugin would make, and names what each is made of.
TEST_F(ReportPages, WithoutACacheThePageShowsTheTablesThePluginWouldMake) {
  const auto reports = collect();
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[1].panelName, "PanelCorvane_secondary (panel 1)");
  EXPECT_EQ(reports[0].sourceText, "optical data: local (identity matched, every local file read)");
  ASSERT_EQ(reports[0].odfs.size(), 4u);  // every measurement set, not only _1_max
  EXPECT_EQ(reports[0].odfs[3].path, "/mnt/vendor/persist/display/Loading_ON_2_100nit.odf");
  EXPECT_EQ(reports[0].targets.size(), 8u);
  EXPECT_EQ(pctool::reportFileName(reports[0]), "report-PanelCorvane_primary.png");

  const pctool::ReportPlan plan = pctool::planReport(reports[0]);
  EXPECT_EQ(plan.dataLine, "tables: generated in memory as the plugin would (/data/vendor/display/cofc.fw not found), 8 "
                           "tables;   targets: /odm/etc/PanelCorvane/PanelCorvane_primary_*.txt (8 files)");
  EXPECT_THAT(plan.setsLine, HasSubstr("Loading_ON_*.odf (4 files);   _1_ feeds Nature and Cinema, _2_ feeds Vivid and"));
  ASSERT_EQ(plan.swatches.size(), 8u);
  EXPECT_EQ(plan.swatches[0].table + ": " + plan.swatches[0].made, "0 Vivid 100-nit: Vivid_100nits.txt, 2_100nit");
  EXPECT_TRUE(plan.brightnessDrawn);
  ASSERT_EQ(plan.gammaMeasured.size(), 4u);
  EXPECT_EQ(plan.gammaMeasured[0].points.size(), 7u);  // the exponent at each measured level

  // Targets whose primaries share the diagram's pixels share their line in turns; "same as"
  // only when their whites do in the zoom too (Cinema's white is 0.0013 from Vivid's).
  std::vector<std::string> labels;
  for (const auto& t : plan.gamut) labels.push_back(t.label);
  EXPECT_EQ(labels, (std::vector<std::string>{"target Vivid", "target Nature", "target Cinema",
                                               "target LsRGB (primaries as Nature)", "panel 1_max: Nature and Cinema",
                                               "panel 2_max: Vivid and LsRGB", "panel 1_100nit: Nature and Cinema",
                                               "panel 2_100nit: Vivid and LsRGB (primaries as 2_max)"}));
  EXPECT_FALSE(plan.gamut[1].style.dash.empty());
  EXPECT_EQ(plan.gamut[1].style.dash, plan.gamut[3].style.dash);
  EXPECT_NE(plan.gamut[1].style.dashOffset, plan.gamut[3].style.dashOffset);
  std::set<std::vector<double>> setDashes;
  for (size_t i = 4; i < 8; ++i) setDashes.insert(plan.gamut[i].style.dash);
  EXPECT_EQ(setDashes.size(), 4u);  // one dash pattern per measurement set
}

// "Same as" says that a reader cannot tell two targets apart on the page, nothing else.
TEST_F(ReportPages, SameAsOnlyWhereThePlotCannotTellTargetsApart) {
  const std::string dirOf = "/odm/etc/PanelCorvane/PanelCorvane_primary_";
  std::vector<double> vivid;
  std::istringstream in(root.read(dirOf + "Vivid.txt"));
  for (double v; in >> v;) vivid.push_back(v);
  const std::tuple<int, double, const char*, const char*> rows[] = {
      {0, 0, "target Cinema (same as Vivid)", "target Cinema gamma 2.200 (same as Vivid)"},  // a copy
      {7, 0.0011, "target Cinema (primaries as Vivid)", "target Cinema gamma 2.200 (same as Vivid)"},  // white y
      {0, 0.003, "target Cinema", "target Cinema gamma 2.200 (same as Vivid)"},  // red x: apart on the diagram
      {8, 0.00007, "target Cinema (same as Vivid)", "target Cinema gamma 2.199"},  // one line, not the same gamma
  };
  for (const auto& [index, delta, gamut, gamma] : rows) {
    std::vector<double> v = vivid;
    v[static_cast<size_t>(index)] += delta;
    std::string text;
    for (double x : v) text += pctool::printfString("%.6f\n", x);
    root.write(dirOf + "Cinema.txt", text);
    const pctool::ReportPlan plan = pctool::planReport(collect()[0]);
    EXPECT_EQ(plan.gamut[2].label, gamut) << index << " " << delta;
    EXPECT_EQ(plan.gammaTargets[2].label, gamma) << index << " " << delta;
    EXPECT_EQ(plan.gammaTargets[2].style.dash, plan.gammaTargets[0].style.dash) << "one line, in turns";
  }
}

TEST_F(ReportPages, TablesAreJudgedAgainstTheirTargetOnTheDataTheyCameFrom) {
  writeCache(1);
  root.write(postblend::identityStampPath(0), "another panel");  // the plugin takes a golden cache
  pctool::TableJob job;
  job.displayName = "PanelCorvane_primary";
  job.identity = pctool::TableJob::Identity::NotMatched;
  const std::vector<pctool::TableJob> jobs = {job};
  const pctool::PanelReport rep = collect(&jobs)[0];
  EXPECT_EQ(rep.sourceText, "optical data: golden (identity not matched)");
  EXPECT_EQ(rep.odfs[0].path, "/odm/etc/PanelCorvane/PanelCorvane_primary_1_max.odf");
  ASSERT_EQ(rep.tables.size(), 8u);
  // Table 0 (Vivid 100-nit) comes from the _2_100nit data and the Vivid 100-nit target.
  EXPECT_EQ(rep.odfs.at(rep.tables[0].odf).set, "2_100nit");
  EXPECT_EQ(rep.targets.at(rep.tables[0].target).mode, "Vivid");
  EXPECT_TRUE(rep.targets.at(rep.tables[0].target).nits100);
  EXPECT_EQ(rep.odfs.at(rep.tables[3].odf).set, "1_max");

  const pctool::ReportPlan plan = pctool::planReport(rep);
  ASSERT_EQ(plan.swatches.size(), 8u);
  for (const auto& row : plan.swatches) {
    ASSERT_EQ(row.cells.size(), 21u) << row.table << ": " << row.note;
    EXPECT_EQ(row.cells[11].colour, "cyan");
  }
  EXPECT_EQ(plan.greyDe.size(), 8u);
  ASSERT_TRUE(plan.brightnessDrawn);
  EXPECT_EQ(plan.brightness.size(), 12u);  // R, G and B of four pairs
  ASSERT_EQ(plan.brightnessKey.size(), 5u);
  EXPECT_EQ(plan.brightnessKey[0], "R solid, G dashed, B dotted");
  EXPECT_THAT(plan.brightnessKey[2], StartsWith("Nature 2->3: "));
  // One colour per mode across the whole page.
  for (const auto& t : plan.gamut) {
    if (t.measured) continue;
    EXPECT_EQ(t.style.colour, pctool::modeColourIndex(t.label.substr(7, t.label.find(' ', 7) - 7))) << t.label;
  }
  for (const auto& c : plan.greyDe) EXPECT_EQ(c.style.colour, pctool::modeColourIndex(pctool::modeOfTable(c.label)));
  for (size_t k = 0; k < 4; ++k) {
    const std::string& key = plan.brightnessKey[k + 1];
    EXPECT_EQ(plan.brightness[3 * k].style.colour, pctool::modeColourIndex(key.substr(0, key.find(' '))));
  }
}

}  // namespace
