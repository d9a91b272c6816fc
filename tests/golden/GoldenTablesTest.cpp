// Golden tables: the plugin's table output for the sample device and for synthetic devices that
// cover its switches, pinned bit for bit (other tests compare tables within a code or by their
// shape, so a change of the arithmetic would pass them). The stored output was checked bit for
// bit against an independent computation of the arithmetic. The harness runs the built tool
// (`mkdevice`, then `simulate` with a session that starts both panels and waits for their
// tables) and reads the cache files the plugin wrote.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "GoldenSupport.h"

namespace golden {
namespace {

constexpr const char* kPanels[2] = {"primary", "secondary"};
constexpr const char* kCacheFiles[2] = {"cofc.fw", "cofc2.fw"};

struct DeviceCase {
  const char* name;      // also names its golden files
  const char* mkdevice;  // mkdevice options; nullptr for the sample device
  std::vector<std::pair<int, int>> nodeTables;  // (panel, table) also stored node by node
};
void PrintTo(const DeviceCase& c, std::ostream* os) { *os << c.name; }

// Seeds vary the panels' optical data; the switches: --no-gamma (gamma correction off),
// --tables 6 (CM debug off, no LsRGB targets), --no-100nits, --no-local (matched panel, golden
// data), --mismatch (unmatched panel, golden data), --param-version (the trailer).
const DeviceCase kCases[] = {
    {"sample", nullptr, {{0, 0}, {1, 7}}},
    {"s1_nogamma", "--seed 1 --no-gamma", {{0, 3}}},
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

class GoldenTables : public ::testing::TestWithParam<DeviceCase> {};

TEST_P(GoldenTables, TablesMatchTheStoredOutputBitForBit) {
  const DeviceCase& c = GetParam();
  ScratchDir scratch;
  ASSERT_FALSE(scratch.path().empty()) << "no scratch folder";
  const std::string log = scratch.path() + "/tool.log";
  std::string device = std::string(PC_SOURCE_DIR) + "/examples/device";
  if (c.mkdevice != nullptr) {
    device = scratch.path() + "/device";
    std::vector<std::string> args{"mkdevice", device};
    std::istringstream words(c.mkdevice);
    for (std::string w; words >> w;) args.push_back(w);
    const ToolResult r = runTool(args, log);
    ASSERT_EQ(r.status, 0) << "mkdevice " << c.mkdevice << ":\n" << r.output;
  }
  for (const char* cache : kCacheFiles)  // tables loaded from a cache would not show the arithmetic
    ASSERT_FALSE(std::filesystem::exists(device + "/data/vendor/display/" + cache)) << device;
  const std::string session = scratch.path() + "/session", out = scratch.path() + "/out";
  std::ofstream(session) << "init primary\ninit secondary\nwait-tables primary\nwait-tables secondary\n"
                            "deinit secondary\ndeinit primary\n";
  const ToolResult r = runTool({"simulate", "--device", device, "--out", out, "--session", session}, log);
  ASSERT_EQ(r.status, 0) << "simulate:\n" << r.output;

  CacheImage images[2];
  std::vector<std::string> digests;
  for (int p = 0; p < 2; ++p) {
    std::string why;
    ASSERT_TRUE(images[p].read(out + "/device/data/vendor/display/" + kCacheFiles[p], why)) << why << "\n" << r.output;
    for (size_t t = 0; t < images[p].tables.size(); ++t)
      digests.push_back(std::string(kPanels[p]) + " " + std::to_string(t) + " " + fingerprint(images[p].tables[t]));
    char trailer[120];
    std::snprintf(trailer, sizeof trailer, " trailer source=%u panelId=%u paramVersion=%u checkSum=0x%08x",
                  images[p].trailer[0], images[p].trailer[1], images[p].trailer[2], images[p].trailer[3]);
    digests.push_back(kPanels[p] + std::string(trailer));
  }
  compareOrUpdate(std::string(c.name) + ".digests",
                  std::string("device case ") + c.name + ": PANEL TABLE fingerprint of the 117928-byte record; "
                  "PANEL trailer: its four words", digests);

  for (const auto& [panel, table] : c.nodeTables) {
    ASSERT_LT(static_cast<size_t>(table), images[panel].tables.size()) << kPanels[panel];
    std::vector<std::string> nodes;
    for (size_t n = 0; n < kEntries; ++n)
      nodes.push_back(std::to_string(images[panel].output(table, n, 0)) + " " +
                      std::to_string(images[panel].output(table, n, 1)) + " " +
                      std::to_string(images[panel].output(table, n, 2)));
    compareOrUpdate(std::string(c.name) + "-" + kPanels[panel] + "-table" + std::to_string(table) + ".txt",
                    std::string("device case ") + c.name + ", panel " + kPanels[panel] + ", table " +
                        std::to_string(table) + ": output codes r g b; line n + 1 is entry n = 289b + 17g + r",
                    nodes);
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, GoldenTables, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<DeviceCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace golden
