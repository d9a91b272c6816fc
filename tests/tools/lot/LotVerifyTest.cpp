// Production lots: a synthetic lot must hold exactly the faults lot.csv names, or every lot test
// checks nothing; verify --lot's tables got in memory must be the plugin's own, bit for bit, from
// the same data source, and its figures, yield and outputs must name the faulty panels and not
// depend on the thread count.
#include "tools/lib/lot/LotVerify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/device/PanelTables.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/lot/ProductionLot.h"
#include "tools/lib/tables/TableSource.h"

namespace {

using pctest::ToolRun;
namespace fs = std::filesystem;

class LotVerify : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  }
  // The plugin's tables for both displays of `device`, through simulate; the device tree it
  // used is OUT/device.
  void simulate(const std::string& device, const std::string& out) {
    root.write("/session.txt", "init primary\ninit secondary\nwait-tables primary\nwait-tables secondary\n");
    ToolRun r = run("simulate --device '" + device + "' --out " + out + " --session session.txt");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
  }
  // Generated in memory from `tree` against the cache simulate left in `simulated`.
  void expectSameAsPlugin(const std::string& tree, const std::string& simulated) {
    pctool::PropertyFile prop;
    std::string error;
    ASSERT_TRUE(prop.load(tree + postblend::Prop::kPath, error)) << error;
    const postblend::PanelSwitches sw = prop.switches();
    for (const auto& [name, panel] : prop.displayNames()) {
      pctool::DisplayTables mine;
      pctool::loadDisplayTables(tree, sw, name, panel, mine);
      EXPECT_FALSE(mine.fromCache);
      pctool::CacheContents plugin;
      ASSERT_TRUE(pctool::readCacheFile(simulated + postblend::Lut3DCacheManager::cachePath(panel), plugin, error)) << error;
      EXPECT_EQ(static_cast<uint32_t>(mine.source), plugin.source) << name;
      ASSERT_EQ(mine.tables.size(), plugin.tables.size()) << name;
      for (size_t k = 0; k < mine.tables.size(); ++k)
        EXPECT_EQ(std::memcmp(&mine.tables[k], &plugin.tables[k], sizeof(mine.tables[k])), 0) << name << " table " << k;
      // After the session the simulated tree holds the cache; like the plugin, the lot takes it
      // unless it says golden although the identity matched (such a cache is made again).
      pctool::DisplayTables cached;
      pctool::loadDisplayTables(simulated, sw, name, panel, cached);
      EXPECT_EQ(cached.fromCache, mine.source != 2) << cached.note;
      EXPECT_EQ(cached.source, mine.source);
      ASSERT_EQ(cached.tables.size(), mine.tables.size());
      EXPECT_EQ(std::memcmp(cached.tables.data(), mine.tables.data(), mine.tables.size() * sizeof(mine.tables[0])), 0);
      // The figures judge the panel by the same data, from the cache or not.
      EXPECT_EQ(std::memcmp(cached.judge, mine.judge, sizeof mine.judge), 0) << name;
    }
  }
  std::string csvRow(const std::string& csv, const std::string& start) {
    const size_t at = csv.find("\n" + start);
    return at == std::string::npos ? "" : csv.substr(at + 1, csv.find('\n', at + 1) - at - 1);
  }
};

TEST_F(LotVerify, TablesAreThePluginsBitForBit) {
  pctest::LogCapture quiet;  // the identity check logs as in the plugin
  // The sample device: local data on both panels.
  simulate(std::string(PC_SOURCE_DIR) + "/examples/device", "S");
  expectSameAsPlugin(std::string(PC_SOURCE_DIR) + "/examples/device", dir + "/S/device");

  // Golden data: a mismatched identity (source 1), and a corrupt local file (source 2); 6 tables
  // without gamma correction or 100-nit targets.
  pctool::SyntheticDeviceOptions o;
  o.seed = 9;
  o.matched = false;
  std::string error;
  ASSERT_TRUE(pctool::writeSyntheticDevice(dir + "/M", o, &error)) << error;
  simulate("M", "MS");
  expectSameAsPlugin(dir + "/M", dir + "/MS/device");

  o.matched = true;
  o.tables = 6;
  o.gammaCorrection = false;
  o.in100nits = false;
  ASSERT_TRUE(pctool::writeSyntheticDevice(dir + "/C", o, &error)) << error;
  std::fstream f(dir + "/C/mnt/vendor/persist/display/Loading_ON_2_max_d1.odf", std::ios::in | std::ios::out | std::ios::binary);
  char c = 0;
  f.seekg(40);
  f.get(c);
  f.seekp(40);
  f.put(static_cast<char>(c ^ 0x10));
  f.close();
  simulate("C", "CS");
  expectSameAsPlugin(dir + "/C", dir + "/CS/device");
}

// The plugin sees the serial number through the driver's 41-byte argument: characters after the
// 40th never reach the comparison, a short one fails it.
TEST_F(LotVerify, IdentityIsJudgedOnWhatTheDriverHandsOver) {
  pctest::LogCapture quiet;
  pctool::SyntheticDeviceOptions o;
  std::string error;
  ASSERT_TRUE(pctool::writeSyntheticDevice(dir + "/D", o, &error)) << error;
  const std::string serial0 = pctool::syntheticSerial(o.seed, 0), serial1 = pctool::syntheticSerial(o.seed, 1);
  root.write("/D/dev/tarnu_display", serial0 + "FFFF\r\n" + serial1.substr(0, 39) + "\n");
  EXPECT_TRUE(pctool::identityMatches(dir + "/D", 0));
  EXPECT_FALSE(pctool::identityMatches(dir + "/D", 1));
  root.write("/D/dev/tarnu_display", serial0 + "\n");
  EXPECT_FALSE(pctool::identityMatches(dir + "/D", 1)) << "no line for panel 1";
  root.remove("/D/mnt/vendor/persist/display/panel_id");
  EXPECT_FALSE(pctool::identityMatches(dir + "/D", 0)) << "no identity stamp";
}

// A lot of twelve with its faults: the outputs name every panel off its own data, whatever the
// thread count; an unreadable tree is named and the others are still checked and written.
TEST_F(LotVerify, FaultyPanelsAreNamedWhateverTheThreadCount) {
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 3").status, 0);
  const ToolRun r = run("verify --lot L --csv l.csv --json l.json -j 1");
  ASSERT_EQ(r.status, 0) << r.err;
  const ToolRun two = run("verify --lot L --csv 2.csv --json 2.json -j 2");
  EXPECT_EQ(r.out, two.out);
  const std::string csv = slurp(dir + "/l.csv"), json = slurp(dir + "/l.json");
  EXPECT_EQ(csv, slurp(dir + "/2.csv"));
  EXPECT_EQ(json, slurp(dir + "/2.json"));
  EXPECT_NE(r.out.find("data source of the tables: 1 golden, 2 golden although the identity matched, 9 local\n"),
            std::string::npos) << r.out;
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 12 * 8) << "one row per panel and mode";
  EXPECT_NE(json.find("\"panels\":12,"), std::string::npos);
  for (const auto& p : pctool::planLot(12, 3)) {
    const char* source = p.fault == pctool::LotFault::None              ? ",local,generated,"
                         : p.fault == pctool::LotFault::MismatchedStamp ? ",golden,generated,golden,"
                                                                         : ",golden although the identity matched,";
    const std::string row = csvRow(csv, p.name + ",PanelCorvane_primary,1,Vivid,");
    EXPECT_NE(row.find(source), std::string::npos) << p.name << " " << pctool::lotFaultName(p.fault) << ": " << row;
    EXPECT_NE(json.find("{\"panel\":\"" + p.name + "\""), std::string::npos) << p.name;
    // A faulty panel may pass on golden data; the summary still names it.
    const bool named = r.out.find("not on its own optical data: " + p.name + " ") != std::string::npos;
    EXPECT_EQ(named, p.fault != pctool::LotFault::None) << p.name << "\n" << r.out;
  }
  // A tree named on its own comes first, then the lot's trees in name order.
  fs::remove(dir + "/L/panel-0002/odm/etc/PanelCorvane/panelcorvane");
  fs::create_directories(dir + "/L/panel-0002/odm/etc/PanelCorvane/panelcorvane");
  const ToolRun broken = run("verify --lot L/panel-0003 L --csv b.csv");
  EXPECT_EQ(broken.status, 1);
  EXPECT_NE(broken.err.find("panel-0002/odm/etc/PanelCorvane/panelcorvane: "), std::string::npos) << broken.err;
  const std::string b = slurp(dir + "/b.csv");
  EXPECT_NE(b.find("\npanel-0002,,,,,,,,,,unreadable,"), std::string::npos) << b;
  EXPECT_LT(b.find("\npanel-0003,"), b.find("\npanel-0001,"));
  EXPECT_LT(b.find("\npanel-0001,"), b.find("\npanel-0012,"));
}

TEST_F(LotVerify, YieldDistributionAndOutliers) {
  auto panel = [](const std::string& name, std::vector<double> p95) {
    pctool::LotPanelResult r;
    r.name = name;
    r.displays.push_back({"P", "local", false, "", {}, false});
    for (size_t k = 0; k < p95.size(); ++k)
      r.modes.push_back({"P", static_cast<int>(k), "m", "local", 0.1, p95[k], p95[k] + 2, p95[k] <= 2.0, ""});
    return r;
  };
  std::vector<pctool::LotPanelResult> lot;
  for (int i = 0; i < 8; ++i) lot.push_back(panel("p" + std::to_string(i), {0.5, 0.6 + 0.01 * i}));
  lot.push_back(panel("slow", {0.5, 1.9}));   // passes, far above the rest
  lot.push_back(panel("bad", {2.5, 0.4}));    // fails its first mode
  lot.push_back(panel("none", {}));           // a display without tables never passes
  lot.back().modes.push_back({"P", -1, "no tables", "", 0, 0, 0, false, "no usable optical data"});
  pctool::LotPanelResult broken;
  broken.name = "broken";
  broken.error = "broken/odm/etc/PanelCorvane/panelcorvane: no such file";
  lot.push_back(broken);

  const pctool::LotSummary s = pctool::summariseLot(lot, 2.0);
  EXPECT_EQ(s.panels, 12u);
  EXPECT_EQ(s.passed, 9u);
  EXPECT_EQ(s.unreadable, 1u);
  EXPECT_DOUBLE_EQ(s.yield, 0.75);
  size_t counted = 0;
  for (size_t n : s.bins) counted += n;
  EXPECT_EQ(counted, 20u) << "every mode with tables, once";
  EXPECT_EQ(s.bins[static_cast<size_t>(2.5 / s.binWidth)], 1u);
  ASSERT_EQ(s.outliers.size(), 4u);
  EXPECT_EQ(s.outliers[0].rfind("slow: passes, but p95 dE00 1.90 is far above the lot", 0), 0u) << s.outliers[0];
  EXPECT_EQ(s.outliers[1], "bad: fails P m, p95 dE00 2.50");
  EXPECT_EQ(s.outliers[2], "none: P has no tables (no usable optical data)");
  EXPECT_EQ(s.outliers[3].rfind("broken: unreadable", 0), 0u);
  EXPECT_NE(pctool::lotSummaryText(s).find("yield: 9 of 12 panels pass every mode (75.0 %)"), std::string::npos);
}

TEST_F(LotVerify, TheSummaryPageIsDrawnOrTheReasonGiven) {
  ASSERT_EQ(run("mkdevice --lot 1 L").status, 0);
  const ToolRun r = run("verify --lot L --png page.png");
  if (pctool::lotPageSupported()) {
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(slurp(dir + "/page.png").substr(1, 3), "PNG");
  } else {
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("page.png: built without cairo"), std::string::npos) << r.err;
  }
}

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

// An existing lot is replaced only on request, and only its own parts go.
TEST_F(LotTrees, ReplacedOnlyOnRequest) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 3 -j 2").status, 0);
  root.write("/L/notes.txt", "keep");
  ToolRun r = run("mkdevice --lot 10 L");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("L: not empty"), std::string::npos) << r.err;
  r = run("mkdevice --lot 10 L --force");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("removed 13 entries"), std::string::npos) << r.out;
  EXPECT_FALSE(std::filesystem::exists(dir + "/L/panel-0011"));
  EXPECT_TRUE(std::filesystem::exists(dir + "/L/notes.txt"));
}

}  // namespace
