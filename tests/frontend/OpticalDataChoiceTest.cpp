// Which optical data a generation reads, in which order, and the source word it records.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "frontend/TablePlan.h"

namespace {

namespace fe = postblend::fe;

TEST(OpticalDataChoice, LocalOnlyWhenMatchedAndWhole) {
  const struct {
    const char* fault;
    int match;
    std::set<std::string> unreadable;  // "L2": local set 2, "G0": golden set 0
    std::string reads;                 // sets tried in order; "!L" a failed local attempt
    fe::OdfOrigin origin;
    uint32_t source;
  } rows[] = {
      {"matched, all local", 1, {}, "L0 L1 L2 L3", fe::OdfOrigin::Local, 0},
      {"matched, third local bad", 1, {"L2"}, "L0 L1 L2 !L G0 G1 G2 G3", fe::OdfOrigin::Golden, 2},
      {"unmatched never opens local", -1, {}, "G0 G1 G2 G3", fe::OdfOrigin::Golden, 1},
      {"matched, nothing usable", 1, {"L0", "G3"}, "L0 !L G0 G1 G2 G3 !G", fe::OdfOrigin::None, 0},
      {"unmatched, golden bad", -1, {"G1"}, "G0 G1 !G", fe::OdfOrigin::None, 0},
  };
  for (const auto& row : rows) {
    std::string reads;
    auto name = [](fe::OdfOrigin o) { return o == fe::OdfOrigin::Local ? "L" : "G"; };
    const fe::OdfOrigin got = fe::readOpticalData(
        row.match,
        [&](fe::OdfOrigin o, int set) {
          const std::string id = name(o) + std::to_string(set);
          reads += (reads.empty() ? "" : " ") + id;
          return row.unreadable.count(id) == 0;
        },
        [&](fe::OdfOrigin o) { reads += std::string(" !") + name(o); });
    EXPECT_EQ(reads, row.reads) << row.fault;
    EXPECT_EQ(got, row.origin) << row.fault;
    if (got != fe::OdfOrigin::None) {
      EXPECT_EQ(fe::recordedSource(row.match, got == fe::OdfOrigin::Golden), row.source)
          << row.fault;
    }
  }
}

}  // namespace
