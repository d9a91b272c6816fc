// Golden tables: the plugin's table output for the sample device and for synthetic devices that
// cover its switches, pinned bit for bit (the other tests compare tables within ±1, so a change
// of the arithmetic would pass them). The stored output was checked bit for bit against an
// independent computation of the arithmetic.
//
// The harness drives the system from outside only, so that moving the plugin's sources cannot
// touch it: it runs the built tool (`mkdevice`, then `simulate` with a session that starts both
// panels and waits for their tables) and reads the cache files the plugin wrote.
//
// PC_GOLDEN_UPDATE=1 build/tests/test_golden   writes the files under data/ anew.
// Changing a golden file needs a reason in the commit message: it means a phone's colours change.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "CacheImage.h"
#include "GoldenFiles.h"
#include "ToolRun.h"

namespace golden {
namespace {

constexpr int kNumPanels = 2;
constexpr const char* kPanels[kNumPanels] = {"primary", "secondary"};
constexpr const char* kCacheFiles[kNumPanels] = {"cofc.fw", "cofc2.fw"};
// The optical data (100 nit or full brightness) and mode target each table index is made from.
constexpr const char* kTableKinds[kMaxTables] = {
    "Vivid, 100 nit",  "Vivid, max",  "Nature, 100 nit", "Nature, max",
    "Cinema, 100 nit", "Cinema, max", "LsRGB, 100 nit",  "LsRGB, max"};

struct NodeTable {
  int panel;
  size_t table;
};

struct DeviceCase {
  const char* name;                   // also names its golden files
  const char* mkdevice;               // mkdevice options; nullptr for the sample device
  std::vector<NodeTable> nodeTables;  // tables also stored node by node
};

// Names the case in test listings instead of its bytes.
void PrintTo(const DeviceCase& c, std::ostream* os) { *os << c.name; }

// Seeds vary the panels' optical data; the switches: --no-gamma (gamma correction off),
// --tables 6 (CM debug off, no LsRGB targets), --no-100nits, --no-local (matched panel, golden
// data), --mismatch (unmatched panel, golden data), --param-version (the trailer).
const DeviceCase kCases[] = {
    {"sample", nullptr, {{0, 0}, {1, 7}}},
    {"s1_nogamma", "--seed 1 --no-gamma", {{0, 3}}},  // the sample's panels, gamma correction off
    {"s2_defaults", "--seed 2", {}},
    {"s3_nogamma", "--seed 3 --no-gamma", {}},
    {"s4_tables6", "--seed 4 --tables 6", {}},
    {"s5_no100nits", "--seed 5 --no-100nits", {}},
    {"s6_tables6_no100nits", "--seed 6 --tables 6 --no-100nits", {}},
    {"s7_nolocal", "--seed 7 --no-local", {}},
    {"s8_mismatch", "--seed 8 --mismatch", {}},
    {"s9_nogamma_tables6_nolocal", "--seed 9 --no-gamma --tables 6 --no-local", {}},
    {"s10_nogamma_no100nits_mismatch", "--seed 10 --no-gamma --no-100nits --mismatch", {}},
    {"s11_tables6_mismatch_param3", "--seed 11 --tables 6 --mismatch --param-version 3", {}},
    {"s12_nogamma_tables6_no100nits", "--seed 12 --no-gamma --tables 6 --no-100nits", {}},
};

constexpr const char* kSession =
    "init primary\n"
    "init secondary\n"
    "wait-tables primary\n"
    "wait-tables secondary\n"
    "deinit secondary\n"
    "deinit primary\n";

std::vector<std::string> words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> out;
  for (std::string w; in >> w;) out.push_back(w);
  return out;
}

std::string tableName(size_t table) {
  std::string name = "table " + std::to_string(table);
  return table < kMaxTables ? name + " (" + kTableKinds[table] + ")" : name;
}

// Lines "PANEL ITEM VALUE": ITEM is a table index, VALUE its fingerprint, or ITEM is "trailer".
std::vector<std::string> digestLines(int panel, const CacheImage& image) {
  std::vector<std::string> lines;
  for (size_t t = 0; t < image.tableCount(); ++t)
    lines.push_back(std::string(kPanels[panel]) + " " + std::to_string(t) + " " +
                    hex64(fingerprint(image.tableBytes(t))));
  char trailer[120];
  std::snprintf(trailer, sizeof trailer, "source=%u panelId=%u paramVersion=%u checkSum=0x%08x",
                image.trailerWord(0), image.trailerWord(1), image.trailerWord(2),
                image.trailerWord(3));
  lines.push_back(std::string(kPanels[panel]) + " trailer " + trailer);
  return lines;
}

// "PANEL ITEM" -> its value, and the item as a failure message names it.
std::map<std::string, std::string> byKey(const std::vector<std::string>& lines) {
  std::map<std::string, std::string> out;
  for (const std::string& l : lines) {
    const size_t second = l.find(' ', l.find(' ') + 1);
    out[l.substr(0, second)] = second == std::string::npos ? "" : l.substr(second + 1);
  }
  return out;
}

std::string describe(const std::string& key) {
  std::vector<std::string> w = words(key);
  if (w.size() != 2) return "line '" + key + "'";
  if (w[1] == "trailer") return "panel " + w[0] + ", trailer";
  return "panel " + w[0] + ", " + tableName(std::stoul(w[1]));
}

std::vector<std::string> compareDigests(const std::vector<std::string>& stored,
                                        const std::vector<std::string>& found) {
  std::vector<std::string> failures;
  const auto want = byKey(stored);
  const auto got = byKey(found);
  for (const auto& [key, value] : want) {
    auto it = got.find(key);
    const std::string seen = it == got.end() ? "none" : it->second;
    if (seen != value)
      failures.push_back(describe(key) + ": digest expected " + value + ", found " + seen);
  }
  for (const auto& [key, value] : got)
    if (want.count(key) == 0)
      failures.push_back(describe(key) + ": digest expected none, found " + value);
  return failures;
}

std::string nodeLine(const Codes& c) {
  return std::to_string(c[0]) + " " + std::to_string(c[1]) + " " + std::to_string(c[2]);
}

std::vector<std::string> nodeLines(const CacheImage& image, size_t table) {
  std::vector<std::string> lines;
  for (size_t n = 0; n < kEntries; ++n) lines.push_back(nodeLine(image.outputCodes(table, n)));
  return lines;
}

// Empty when equal; else the first node that moved and how many did.
std::string compareNodes(const std::vector<std::string>& stored, const CacheImage& image,
                         size_t table) {
  if (stored.size() != kEntries)
    return "stored file has " + std::to_string(stored.size()) + " entries, not 4913";
  const std::vector<std::string> found = nodeLines(image, table);
  size_t first = kEntries, moved = 0;
  for (size_t n = 0; n < kEntries; ++n) {
    if (words(stored[n]) == words(found[n])) continue;
    if (moved++ == 0) first = n;
  }
  if (moved == 0) return "";
  std::ostringstream m;
  m << "entry " << first << " (grid r " << first % kGrid << " g " << first / kGrid % kGrid << " b "
    << first / (kGrid * kGrid) << ", input codes " << nodeLine(image.inputCodes(table, first))
    << "): output expected " << stored[first] << ", found " << found[first] << "; " << moved
    << " of 4913 entries differ";
  return m.str();
}

class GoldenTables : public ::testing::TestWithParam<DeviceCase> {
 protected:
  // Makes the case's device tree, lets the plugin generate both panels' tables, reads them.
  void generate() {
    const DeviceCase& c = GetParam();
    ASSERT_FALSE(scratch.path().empty()) << "no scratch folder";
    ASSERT_EQ(access(toolPath().c_str(), X_OK), 0) << toolPath() << " is not built";
    const std::string log = scratch.path() + "/tool.log";
    std::string device = std::string(PC_SOURCE_DIR) + "/examples/device";
    if (c.mkdevice != nullptr) {
      device = scratch.path() + "/device";
      std::vector<std::string> args{"mkdevice", device};
      for (const std::string& w : words(c.mkdevice)) args.push_back(w);
      ToolResult r = runTool(args, log);
      ASSERT_EQ(r.status, 0) << "mkdevice " << c.mkdevice << ":\n" << r.output;
    }
    // Tables loaded from a cache would not show the arithmetic.
    for (const char* cache : kCacheFiles)
      ASSERT_FALSE(std::filesystem::exists(device + "/data/vendor/display/" + cache))
          << device << " holds a table cache";

    const std::string session = scratch.path() + "/session";
    std::ofstream(session) << kSession;
    const std::string out = scratch.path() + "/out";
    ToolResult r =
        runTool({"simulate", "--device", device, "--out", out, "--session", session}, log);
    ASSERT_EQ(r.status, 0) << "simulate:\n" << r.output;
    for (int p = 0; p < kNumPanels; ++p) {
      std::string why;
      ASSERT_TRUE(images[p].read(out + "/device/data/vendor/display/" + kCacheFiles[p], why))
          << why << "\nsimulate:\n"
          << r.output;
    }
  }

  ScratchDir scratch;
  CacheImage images[kNumPanels];
};

TEST_P(GoldenTables, TablesMatchTheStoredOutputBitForBit) {
  ASSERT_NO_FATAL_FAILURE(generate());
  const DeviceCase& c = GetParam();
  const std::string who = std::string("device case ") + c.name + ", ";

  std::vector<std::string> found;
  for (int p = 0; p < kNumPanels; ++p)
    for (const std::string& l : digestLines(p, images[p])) found.push_back(l);
  const std::string digestFile = std::string(c.name) + ".digests";
  if (updating()) {
    const std::string made = c.mkdevice ? std::string("mkdevice ") + c.mkdevice : "examples/device";
    ASSERT_TRUE(writeDataLines(digestFile,
                               {"device case " + std::string(c.name) + ": " + made,
                                "PANEL TABLE fingerprint (64-bit FNV-1a of the 117928-byte record, "
                                "not a security hash); PANEL trailer: its four words"},
                               found));
  } else {
    std::vector<std::string> stored;
    ASSERT_TRUE(readDataLines(digestFile, stored))
        << dataPath(digestFile) << " cannot be read; PC_GOLDEN_UPDATE=1 writes it";
    for (const std::string& f : compareDigests(stored, found)) ADD_FAILURE() << who << f;
  }

  for (const NodeTable& t : c.nodeTables) {
    const std::string panel = kPanels[t.panel];
    ASSERT_LT(t.table, images[t.panel].tableCount()) << who << "panel " << panel;
    const std::string file =
        std::string(c.name) + "-" + panel + "-table" + std::to_string(t.table) + ".txt";
    if (updating()) {
      ASSERT_TRUE(writeDataLines(
          file,
          {who + "panel " + panel + ", " + tableName(t.table),
           "output codes r g b of entries 0..4912; entry n = 289b + 17g + r, grid level i is code "
           "256i (4095 for i = 16)"},
          nodeLines(images[t.panel], t.table)));
      continue;
    }
    std::vector<std::string> stored;
    ASSERT_TRUE(readDataLines(file, stored))
        << dataPath(file) << " cannot be read; PC_GOLDEN_UPDATE=1 writes it";
    const std::string diff = compareNodes(stored, images[t.panel], t.table);
    if (!diff.empty())
      ADD_FAILURE() << who << "panel " << panel << ", " << tableName(t.table) << ": " << diff;
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, GoldenTables, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<DeviceCase>& info) {
                           return std::string(info.param.name);
                         });

// The standard function, so that anyone can recompute a stored digest with another tool.
TEST(GoldenFingerprint, IsStandardFnv1a64) {
  EXPECT_EQ(hex64(fingerprint("")), "cbf29ce484222325");
  EXPECT_EQ(hex64(fingerprint("a")), "af63dc4c8601ec8c");
  EXPECT_EQ(hex64(fingerprint("foobar")), "85944171f73967e8");
}

}  // namespace
}  // namespace golden
