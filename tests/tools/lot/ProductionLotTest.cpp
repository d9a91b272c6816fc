// A synthetic lot must hold exactly the faults lot.csv names, or every lot test checks nothing.
#include "tools/lib/lot/ProductionLot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

#include "tests/tools/ToolRunner.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/device/PanelTables.h"

namespace {

using pctest::ToolRun;
using pctool::LotFault;
using pctool::LotPanel;

std::map<LotFault, int> faultCounts(const std::vector<LotPanel>& lot) {
  std::map<LotFault, int> n;
  for (const auto& p : lot) ++n[p.fault];
  return n;
}

TEST(ProductionLot, PlanHasAboutTwoPercentFaultsAndAtLeastOneOfEachFromTenPanels) {
  struct Case {
    unsigned count;
    int faulty;
  } cases[] = {{9, 0}, {10, 3}, {12, 3}, {200, 4}, {1000, 20}};
  for (const auto& c : cases) {
    const auto lot = pctool::planLot(c.count, 7);
    ASSERT_EQ(lot.size(), c.count);
    auto n = faultCounts(lot);
    EXPECT_EQ(static_cast<int>(c.count) - n[LotFault::None], c.faulty) << c.count;
    for (LotFault f : {LotFault::BadCrc, LotFault::MismatchedStamp, LotFault::MissingLocal}) {
      if (c.count >= 10) {
        EXPECT_GE(n[f], 1) << c.count << " " << pctool::lotFaultName(f);
      }
    }
    std::set<unsigned> seeds;
    for (const auto& p : lot) seeds.insert(p.seed);
    EXPECT_EQ(seeds.size(), lot.size()) << "every panel is measured with its own seed";
  }
  const auto a = pctool::planLot(12, 3), b = pctool::planLot(12, 3), other = pctool::planLot(12, 4);
  EXPECT_EQ(pctool::lotCsv(a), pctool::lotCsv(b));
  EXPECT_NE(pctool::lotCsv(a), pctool::lotCsv(other));
  EXPECT_EQ(a.front().name, "panel-0001");
  EXPECT_EQ(a.back().name, "panel-0012");
}

class LotTrees : public pctest::ToolRunner {};

// Each fault does to the tree what lot.csv says, and nothing else: the other panels are sound.
TEST_F(LotTrees, EachFaultIsInTheFileLotCsvNames) {
  pctest::LogCapture quiet;  // the identity check logs as in the plugin
  const auto lot = pctool::planLot(12, 3);
  std::string error;
  ASSERT_TRUE(pctool::writeLot(dir + "/L", lot, 2, error)) << error;
  EXPECT_EQ(slurp(dir + "/L/lot.csv"), pctool::lotCsv(lot));
  for (const auto& p : lot) {
    const std::string tree = dir + "/L/" + p.name;
    const std::string local = tree + "/mnt/vendor/persist/display/Loading_ON_1_max.odf";
    pctool::OpticalDataFile odf{};
    pctool::OdfCheck check;
    switch (p.fault) {
      case LotFault::BadCrc:
        EXPECT_FALSE(pctool::readOdfFile(tree + "/" + p.detail, odf, check, error)) << p.name;
        EXPECT_NE(error.find("CRC mismatch"), std::string::npos) << error;
        break;
      case LotFault::MissingLocal:
        EXPECT_FALSE(std::filesystem::exists(tree + "/" + p.detail)) << p.name;
        break;
      case LotFault::MismatchedStamp:
        EXPECT_FALSE(pctool::identityMatches(tree, 0)) << p.name;
        break;
      case LotFault::None:
        EXPECT_TRUE(pctool::identityMatches(tree, 0)) << p.name;
        EXPECT_TRUE(pctool::readOdfFile(local, odf, check, error)) << p.name << ": " << error;
        break;
    }
    // One display per panel: the property file names no secondary.
    EXPECT_EQ(slurp(tree + "/odm/etc/PanelCorvane/panelcorvane").find("secondary"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(tree + "/mnt/vendor/persist/display/panel_id_d1"));
  }
  // One panel type: golden data and targets alike throughout, the units' own data not.
  const std::string odm = "/odm/etc/PanelCorvane/PanelCorvane_primary", persist = "/mnt/vendor/persist/display/";
  for (const char* file : {"_2_max.odf", "_1_100nit.odf", "_Vivid.txt", "_LsRGB_100nits.txt"})
    EXPECT_EQ(slurp(dir + "/L/panel-0001" + odm + file), slurp(dir + "/L/panel-0007" + odm + file)) << file;
  EXPECT_NE(slurp(dir + "/L/panel-0001" + persist + "Loading_ON_2_max.odf"),
            slurp(dir + "/L/panel-0007" + persist + "Loading_ON_2_max.odf"));
  EXPECT_NE(slurp(dir + "/L/panel-0001" + persist + "panel_id"), slurp(dir + "/L/panel-0007" + persist + "panel_id"));
}

TEST_F(LotTrees, CommandLine) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  ToolRun r = run("mkdevice --lot 12 L --seed 3 -j 2");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("12 panels, 3 faulty"), std::string::npos) << r.out;
  EXPECT_EQ(slurp(dir + "/L/lot.csv"), pctool::lotCsv(pctool::planLot(12, 3)));

  // An existing lot is replaced only on request, and only its own parts go.
  root.write("/L/notes.txt", "keep");
  r = run("mkdevice --lot 10 L");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("L: not empty"), std::string::npos) << r.err;
  r = run("mkdevice --lot 10 L --force");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("removed 13 entries"), std::string::npos) << r.out;
  EXPECT_FALSE(std::filesystem::exists(dir + "/L/panel-0011"));
  EXPECT_TRUE(std::filesystem::exists(dir + "/L/notes.txt"));

  root.write("/plain", "x");
  const struct {
    const char* args;
    int status;
    const char* says;
  } bad[] = {
      {"mkdevice --lot 0 M", 2, "--lot wants a panel count"},
      {"mkdevice --lot many M", 2, "--lot wants a panel count"},
      {"mkdevice --lot 100001 M", 2, "--lot wants a panel count"},
      {"mkdevice --lot 5", 2, "DIR missing"},
      {"mkdevice --lot 5 M --tables 6", 2, "unknown option --tables"},
      {"mkdevice --lot 5 M -j 0", 2, "-j wants"},
      {"mkdevice --lot 5 plain", 1, "plain: not a folder"},
  };
  for (const auto& c : bad) {
    r = run(c.args);
    EXPECT_EQ(r.status, c.status) << c.args;
    EXPECT_NE(r.err.find(c.says), std::string::npos) << c.args << ": " << r.err;
  }
}

}  // namespace
