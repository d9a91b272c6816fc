// Production lots: verify --lot's tables must be the plugin's own, bit for bit, and its outputs
// must name the faulty panels whatever the thread count; mkdevice --lot's faults as planned.
#include "tools/lib/lot/LotVerify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/device/PanelTables.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/lot/LotPage.h"
#include "tools/lib/lot/ProductionLot.h"
#include "tools/lib/tables/TableSource.h"

namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using pctool::LotFault;

using pctest::ToolRun;
namespace fs = std::filesystem;

class LotVerify : public pctest::ToolRunner {
 protected:
  // The plugin's tables of both displays of `device`, through simulate, in OUT/device.
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
      const std::string cache = simulated + postblend::Lut3DCacheManager::cachePath(panel);
      ASSERT_TRUE(pctool::readCacheFile(cache, plugin, error)) << error;
      EXPECT_EQ(static_cast<uint32_t>(mine.source), plugin.source) << name;
      EXPECT_TRUE(same(mine.tables, plugin.tables)) << name;
      // After the session the simulated tree holds the cache; like the plugin, the lot takes it
      // unless it says golden although the identity matched (such a cache is made again).
      pctool::DisplayTables cached;
      pctool::loadDisplayTables(simulated, sw, name, panel, cached);
      EXPECT_EQ(cached.fromCache, mine.source != 2) << cached.note;
      EXPECT_EQ(cached.source, mine.source);
      EXPECT_TRUE(same(cached.tables, mine.tables)) << name;
      // The figures judge the panel by the same data, from the cache or not.
      EXPECT_EQ(std::memcmp(cached.judge, mine.judge, sizeof mine.judge), 0) << name;
    }
  }
  static bool same(const std::vector<postblend::lut3d_info>& a, const std::vector<postblend::lut3d_info>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(a[0])) == 0;
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
  ASSERT_EQ(run("mkdevice M --seed 9 --mismatch").status, 0);
  simulate("M", "MS");
  expectSameAsPlugin(dir + "/M", dir + "/MS/device");
  ASSERT_EQ(run("mkdevice C --seed 9 --tables 6 --no-gamma --no-100nits").status, 0);
  const std::string bad = "/C/mnt/vendor/persist/display/Loading_ON_2_max_d1.odf";
  std::string bytes = root.read(bad);
  bytes[40] ^= 0x10;
  root.write(bad, bytes);
  simulate("C", "CS");
  expectSameAsPlugin(dir + "/C", dir + "/CS/device");
}

// Every folder of the lot is in one class, named with its reason, whatever the thread count:
// a faulty panel is not on its own data and outside the yield, an unreadable one fails the run.
TEST_F(LotVerify, EveryFolderIsInOneClassWhateverTheThreadCount) {
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 3").status, 0);
  const auto lot = pctool::planLot(12, 3);
  const auto gone = std::find_if(lot.begin(), lot.end(), [](const auto& p) { return p.fault == LotFault::None; });
  fs::remove(dir + "/L/" + gone->name + "/odm/etc/PanelCorvane/panelcorvane");
  const ToolRun r = run("verify --lot L --csv l.csv --json l.json -j 1");
  EXPECT_EQ(r.status, 1);
  EXPECT_THAT(r.err, HasSubstr(gone->name + ": cannot be judged: L/" + gone->name + "/odm/etc/PanelCorvane/panelcorvane"));
  const ToolRun two = run("verify --lot L --csv 2.csv --json 2.json -j 2");
  EXPECT_EQ(r.out, two.out);
  const std::string csv = root.read("/l.csv"), json = root.read("/l.json");
  EXPECT_EQ(csv, root.read("/2.csv"));
  EXPECT_EQ(json, root.read("/2.json"));
  EXPECT_THAT(r.out, HasSubstr("yield: 8 of 12 panels pass every mode on their own optical data (66.7 %)"));
  EXPECT_THAT(r.out, HasSubstr("panels: 8 pass, 0 fail, 3 not on their own optical data, 1 cannot be judged\n"));
  EXPECT_THAT(json, HasSubstr("\"panel_count\":12,\"pass\":8,\"fail\":0,\"off_own_data\":3,\"unjudged\":1,"));
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 11 * 8 + 1) << "one row per panel and mode";
  for (const auto& p : lot) {
    const bool off = p.fault != LotFault::None;
    const std::string verdict = &p == &*gone ? "unjudged" : off ? "off-own-data" : "pass";
    const std::string row = csvRow(csv, p.name + ",");
    EXPECT_THAT(row, StartsWith(p.name + "," + verdict + ",")) << row;
    EXPECT_THAT(json, HasSubstr("{\"folder\":\"" + p.name + "\",\"path\":\"L/" + p.name + "\",\"verdict\":\"" + verdict))
        << p.name;
    if (!off) continue;
    // The note says why: the identity, or the local file that failed.
    const std::string why = p.fault == LotFault::MismatchedStamp ? "identity not matched" : "/" + p.detail + ": ";
    EXPECT_THAT(row, ContainsRegex(",off-own-data,\"?not on its own optical data: tables from golden data: ")) << row;
    EXPECT_THAT(row, HasSubstr(why)) << row;
    EXPECT_THAT(r.out, HasSubstr("not on its own optical data: " + p.name + ": PanelCorvane_primary: tables from golden"));
  }
  EXPECT_THAT(json, HasSubstr("\"result\":\"pass\",\"note\":\"\"}"));
  // A tree named on its own comes first, then the lot's folders in name order.
  fs::create_directories(dir + "/L/" + gone->name + "/odm/etc/PanelCorvane/panelcorvane");
  const ToolRun broken = run("verify --lot L/panel-0003 L --csv b.csv");
  EXPECT_EQ(broken.status, 1);
  const std::string b = root.read("/b.csv");
  EXPECT_THAT(b, HasSubstr("\n" + gone->name + ",unjudged,,,,,,,,,,,,unjudged,\"L/" + gone->name +
                           "/odm/etc/PanelCorvane/panelcorvane: is a folder"));
  EXPECT_LT(b.find("\npanel-0003,"), b.find("\npanel-0001,"));
  EXPECT_LT(b.find("\npanel-0001,"), b.find("\npanel-0012,"));
}

// The classes, the yield, the fixed bins, the outliers, figures printed as they decide, and the
// page's marks and list, from made-up panels.
TEST_F(LotVerify, ClassesYieldOutliersAndThePage) {
  using pctool::LotVerdict;
  struct Row {
    std::string name;
    std::vector<double> p95;
    std::string off;  // why the tables are not the panel's own
    LotVerdict verdict;
  };
  const Row rows[] = {
      {"slow", {0.5, 1.9}, "", LotVerdict::Pass},               // passes, far above the rest
      {"bad", {2.5, 2.002}, "", LotVerdict::Fail},              // fails its first mode, the second by 0.002
      {"fallback", {0.5, 0.6}, "crc", LotVerdict::OffOwnData},  // passes on golden data: its own class
      {"none", {}, "", LotVerdict::Unjudged},                   // a display without tables is not judged
      {"broken", {}, "", LotVerdict::Unjudged},                 // an unreadable tree
  };
  std::vector<pctool::LotPanelResult> lot;
  auto add = [&lot](const std::string& name, const std::vector<double>& p95, const std::string& off) {
    pctool::LotPanelResult r;
    r.name = name;
    r.maxDe = 2;
    pctool::LotDisplay d;
    d.name = "P";
    d.offReason = off;
    d.hasOwn = d.hasGolden = true;
    d.own[0][0] = d.golden[0][0] = 0.68;
    d.own[0][0] += name == "slow" ? 0.01 : 0;  // beyond the tolerance
    r.displays.push_back(d);
    for (size_t k = 0; k < p95.size(); ++k) {
      pctool::LotMode m;
      m.display = "P", m.table = static_cast<int>(k), m.mode = "m" + std::to_string(k);
      m.p95 = p95[k], m.figures = true, m.pass = p95[k] <= 2;
      r.modes.push_back(m);
    }
    if (p95.empty()) r.modes.push_back({"P", -1, "no tables", "", "", "", 0, 0, 0, false, false, ""});
    lot.push_back(r);
  };
  for (int i = 0; i < 8; ++i) add("p" + std::to_string(i), {0.5, 0.6 + 0.01 * i}, "");
  for (const auto& row : rows) add(row.name, row.p95, row.off);
  lot.back().error = "broken/odm/etc/PanelCorvane/panelcorvane: no such file";
  for (size_t i = 8; i < lot.size(); ++i) EXPECT_EQ(lot[i].verdict(), rows[i - 8].verdict) << lot[i].name;

  const pctool::LotSummary s = pctool::summariseLot(lot, 2);
  EXPECT_EQ(std::vector<size_t>(s.counts, s.counts + 4), (std::vector<size_t>{9, 1, 1, 2}));
  EXPECT_DOUBLE_EQ(s.yield, 9.0 / 13);
  EXPECT_EQ(s.binFail[10] + s.binFail[8], 2u) << "2.5 and 2.002 fail, in bins of 0.25 whatever the limit";
  EXPECT_EQ(s.binPass[7], 1u) << "1.9 passes";
  ASSERT_EQ(s.outliers.size(), 2u);
  EXPECT_THAT(s.outliers[0].text, StartsWith("slow: passes, but P m1 p95 dE00 1.90 is far above the lot (fence 0."));
  EXPECT_EQ(s.outliers[1].text, "bad: fails P m0, p95 dE00 2.50 > 2 and 1 more mode");
  EXPECT_THAT(pctool::lotCsvText(lot, s), HasSubstr("\nbad,fail,P,1,m1,,,,generated,,0.000,2.002,0.000,fail,\n"))
      << "fails by 0.002: printed to the decimal that decides";

  const pctool::LotPagePlan page = pctool::planLotPage(lot, s);
  ASSERT_EQ(page.marks.size(), 11u) << "every panel judged, at its own measurement";
  EXPECT_EQ(page.marks[10].verdict, LotVerdict::OffOwnData);
  EXPECT_EQ(page.notDrawn, 2u);
  EXPECT_EQ(page.beyond[0], 1u);
  EXPECT_EQ(page.key.size(), 6u) << "pass, fail, off own data, golden, tolerance, not drawn";
  ASSERT_EQ(page.listed.size(), 5u);
  EXPECT_THAT(page.listed[0], StartsWith("none: cannot be judged: P no tables"));
  EXPECT_EQ(page.listed[4], "fallback: not on its own optical data: P: crc");
  // As many as the page holds, then how many more.
  for (int i = 0; i < 40; ++i) add("f" + std::to_string(i), {2.1}, "");
  const pctool::LotPagePlan full = pctool::planLotPage(lot, pctool::summariseLot(lot, 2));
  EXPECT_EQ(full.listed.size() + 1, pctool::kLotListRows);
  EXPECT_EQ(full.notListed, 44u - full.listed.size());
}

TEST(ProductionLot, PlanHasAboutTwoPercentFaultsAndAtLeastOneOfEachFromTenPanels) {
  const std::pair<unsigned, int> cases[] = {{9, 0}, {10, 3}, {12, 3}, {200, 4}, {1000, 20}};  // panels, faulty
  for (const auto& [count, faulty] : cases) {
    const auto lot = pctool::planLot(count, 7);
    ASSERT_EQ(lot.size(), count);
    std::map<LotFault, int> n;
    for (const auto& p : lot) ++n[p.fault];
    EXPECT_EQ(static_cast<int>(count) - n[LotFault::None], faulty) << count;
    for (LotFault f : {LotFault::BadCrc, LotFault::MismatchedStamp, LotFault::MissingLocal})
      EXPECT_GE(n[f], count >= 10 ? 1 : 0) << count << " " << pctool::lotFaultName(f);
    std::set<unsigned> seeds;
    for (const auto& p : lot) seeds.insert(p.seed);
    EXPECT_EQ(seeds.size(), lot.size()) << "every panel is measured with its own seed";
  }
  const auto a = pctool::planLot(12, 3), b = pctool::planLot(12, 3), other = pctool::planLot(12, 4);
  EXPECT_EQ(pctool::lotCsv(a), pctool::lotCsv(b));
  EXPECT_NE(pctool::lotCsv(a), pctool::lotCsv(other));
  EXPECT_EQ(a.front().name + " " + a.back().name, "panel-0001 panel-0012");
}

class LotTrees : public pctest::ToolRunner {};

// One panel type, each unit its own data; lot.csv names the file each fault is in.
TEST_F(LotTrees, OnePanelTypeEachUnitItsOwnData) {
  pctest::LogCapture quiet;  // the identity check logs as in the plugin
  const auto lot = pctool::planLot(12, 3);
  std::string error;
  ASSERT_TRUE(pctool::writeLot(dir + "/L", lot, 2, error)) << error;
  EXPECT_EQ(root.read("/L/lot.csv"), pctool::lotCsv(lot));
  for (const auto& p : lot) {
    const std::string file = "/L/" + p.name + "/" + p.detail;
    pctool::OpticalDataFile odf{};
    pctool::OdfCheck check;
    const bool refused = p.fault == LotFault::MissingLocal ? !root.exists(file)
                         : p.fault == LotFault::BadCrc     ? !pctool::readOdfFile(root.host(file), odf, check, error)
                         : p.fault == LotFault::MismatchedStamp ? !pctool::identityMatches(dir + "/L/" + p.name, 0)
                                                                : true;
    EXPECT_TRUE(refused) << p.name << " " << pctool::lotFaultName(p.fault) << " " << file;
  }
  const std::string odm = "/odm/etc/PanelCorvane/PanelCorvane_primary", persist = "/mnt/vendor/persist/display/";
  for (const char* file : {"_2_max.odf", "_1_100nit.odf", "_Vivid.txt", "_LsRGB_100nits.txt"})
    EXPECT_EQ(root.read("/L/panel-0001" + odm + file), root.read("/L/panel-0007" + odm + file)) << file;
  EXPECT_NE(root.read("/L/panel-0001" + persist + "Loading_ON_2_max.odf"),
            root.read("/L/panel-0007" + persist + "Loading_ON_2_max.odf"));
  EXPECT_NE(root.read("/L/panel-0001" + persist + "panel_id"), root.read("/L/panel-0007" + persist + "panel_id"));
}

// An existing lot is replaced only on request, and only its own parts go.
TEST_F(LotTrees, ReplacedOnlyOnRequest) {
  ASSERT_EQ(run("mkdevice --lot 12 L --seed 3 -j 2").status, 0);
  root.write("/L/notes.txt", "keep");
  ToolRun r = run("mkdevice --lot 10 L");
  EXPECT_EQ(r.status, 1);
  EXPECT_THAT(r.err, HasSubstr("L: not empty"));
  r = run("mkdevice --lot 10 L --force");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_THAT(r.out, HasSubstr("removed 13 entries"));
  EXPECT_FALSE(std::filesystem::exists(dir + "/L/panel-0011"));
  EXPECT_TRUE(std::filesystem::exists(dir + "/L/notes.txt"));
}

}  // namespace
