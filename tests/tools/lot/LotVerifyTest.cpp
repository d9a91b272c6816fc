// verify --lot: tables got in memory must be the plugin's own, bit for bit, from the same data
// source; the lot's figures, yield and outputs must name the faulty panels and not depend on
// the thread count.
#include "tools/lib/lot/LotVerify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cache/Lut3DCacheManager.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/device/DataSource.h"
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
    ASSERT_TRUE(prop.load(tree + "/odm/etc/PanelCorvane/panelcorvane", error)) << error;
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
      // The simulated tree now has the cache; like the plugin, the lot takes it unless it says
      // golden although the identity matched (such a cache is made again).
      pctool::DisplayTables cached;
      pctool::loadDisplayTables(simulated, sw, name, panel, cached);
      EXPECT_EQ(cached.fromCache, mine.source != 2) << cached.note;
      EXPECT_EQ(cached.source, mine.source);
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

// A tree whose cache the plugin takes gives the figures of the tables generated in memory.
TEST_F(LotVerify, CachedTablesGiveTheFiguresOfGeneratedOnes) {
  pctool::SyntheticDeviceOptions o;
  o.seed = 4;
  std::string error;
  ASSERT_TRUE(pctool::writeSyntheticDevice(dir + "/G/device", o, &error)) << error;
  simulate("G/device", "S");
  ToolRun r = run("verify --lot G/device S/device --csv both.csv");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string csv = slurp(dir + "/both.csv");
  size_t generated = 0, cached = 0;
  for (const char* display : {"PanelCorvane_primary", "PanelCorvane_secondary"}) {
    for (const char* mode : {"0,Vivid 100-nit", "3,Nature", "7,LsRGB"}) {
      const std::string start = std::string("device,") + display + "," + mode + ",local,";
      const size_t first = csv.find("\n" + start), second = csv.find("\n" + start, first + 1);
      ASSERT_NE(second, std::string::npos) << start << "\n" << csv;
      std::string a = csv.substr(first, csv.find('\n', first + 1) - first);
      std::string b = csv.substr(second, csv.find('\n', second + 1) - second);
      generated += a.find(",generated,") != std::string::npos;
      cached += b.find(",cache,") != std::string::npos;
      EXPECT_EQ(a.replace(a.find(",generated,"), 11, ","), b.replace(b.find(",cache,"), 7, ","));
    }
  }
  EXPECT_EQ(generated, 6u);
  EXPECT_EQ(cached, 6u);
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

TEST_F(LotVerify, FaultyPanelsRunOnGoldenDataAndTheOutputsNameThem) {
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 3").status, 0);
  ToolRun r = run("verify --lot L --csv l.csv --json l.json -j 2");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("yield: "), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("data source of the tables: 1 golden, 2 golden although the identity matched, 9 local\n"),
            std::string::npos)
      << r.out;
  const std::string csv = slurp(dir + "/l.csv"), json = slurp(dir + "/l.json");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 12 * 8) << "one row per panel and mode";
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
  EXPECT_NE(json.find("\"source\":\"golden although the identity matched\""), std::string::npos);
  EXPECT_NE(json.find("\"panels\":12,"), std::string::npos);
}

TEST_F(LotVerify, OutputDoesNotDependOnTheThreadCount) {
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 8").status, 0);
  ToolRun one = run("verify --lot L/panel-0003 L --csv 1.csv --json 1.json -j 1");
  ToolRun two = run("verify --lot L/panel-0003 L --csv 2.csv --json 2.json -j 2");
  ASSERT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(one.out, two.out);
  EXPECT_EQ(slurp(dir + "/1.csv"), slurp(dir + "/2.csv"));
  EXPECT_EQ(slurp(dir + "/1.json"), slurp(dir + "/2.json"));
  // A tree named on its own comes first, then the lot's trees in name order.
  const std::string csv = slurp(dir + "/1.csv");
  EXPECT_LT(csv.find("\npanel-0003,"), csv.find("\npanel-0001,"));
  EXPECT_LT(csv.find("\npanel-0001,"), csv.find("\npanel-0002,"));
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

TEST_F(LotVerify, BadInputsAndOutputs) {
  ASSERT_EQ(run("mkdevice --lot 3 L").status, 0);
  fs::create_directories(dir + "/empty");
  fs::create_directories(dir + "/notatree/sub");
  root.write("/plain", "x");
  const struct {
    const char* args;
    int status;
    const char* says;
  } cases[] = {
      {"verify --lot empty", 1, "empty: no device tree in it"},
      {"verify --lot notatree", 1, "notatree: no device tree in it"},
      {"verify --lot missing", 1, "missing: no such folder"},
      {"verify --lot plain", 1, "plain: not a folder"},
      {"verify --lot L --csv plain/x.csv", 1, "plain/x.csv: "},
      {"verify --lot", 2, "needs at least one DIR"},
      {"verify --lot L --max-de abc", 2, "--max-de wants"},
      {"verify --lot L --max-de -1", 2, "--max-de wants"},
      {"verify --lot L -j 0", 2, "-j wants"},
      {"verify --lot L --bogus", 2, "unknown option --bogus"},
  };
  for (const auto& c : cases) {
    ToolRun r = run(c.args);
    EXPECT_EQ(r.status, c.status) << c.args;
    EXPECT_NE(r.err.find(c.says), std::string::npos) << c.args << ": " << r.err;
  }
  // An unreadable tree in the lot: the others are still checked and written, and it is named.
  fs::remove(dir + "/L/panel-0002/odm/etc/PanelCorvane/panelcorvane");
  fs::create_directories(dir + "/L/panel-0002/odm/etc/PanelCorvane/panelcorvane");
  ToolRun r = run("verify --lot L --csv l.csv");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("panel-0002/odm/etc/PanelCorvane/panelcorvane: "), std::string::npos) << r.err;
  const std::string csv = slurp(dir + "/l.csv");
  EXPECT_NE(csv.find("\npanel-0002,,,,,,,,,,unreadable,"), std::string::npos) << csv;
  EXPECT_NE(csv.find("\npanel-0003,"), std::string::npos);

  r = run("verify --lot L/panel-0001 --png page.png");
  if (pctool::lotPageSupported()) {
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(slurp(dir + "/page.png").substr(1, 3), "PNG");
  } else {
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("page.png: built without cairo"), std::string::npos) << r.err;
  }
}

}  // namespace
