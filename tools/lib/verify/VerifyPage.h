// One page for a verified table: the CIEDE2000 of each reference colour and grey level (or of
// the worst patches of the engineer's chart), as predicted from the panel's optical data and,
// when the panel was measured with the table applied, as measured - so an engineer sees at a
// glance where model and panel part. The page says what it is of (mode, table, target, optical
// data) and summarises both sets; values beyond its axis are drawn at the edge with their value.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/verify/Verify.h"

namespace pctool {

struct VerifyBar {
  std::string name;
  uint32_t rgb[3];
  double predicted, without, measured;  // NaN where not known
};
struct VerifyPagePlan {
  std::string title;
  std::vector<std::string> subtitle;  // what the page is of, then the figures of both sets
  double top = 0;                     // the CIEDE2000 axis runs 0..top
  double limit = 0;                   // the pass limit drawn
  struct Chart {
    std::string title;
    std::vector<VerifyBar> bars;
  } charts[2];
  std::vector<std::string> beyond;  // "dark red: without the table 6.84", drawn at the axis' edge
};

// The most bars one chart of the page holds; a larger chart shows its worst.
constexpr size_t kVerifyPageBars = 40;

// `r` must carry a prediction; `limit` is the pass limit (95th percentile CIEDE2000).
VerifyPagePlan planVerifyPage(const VerifyResult& r, double limit);

// False when built without cairo.
bool verifyPageSupported();
// False with a reason when the page cannot be written.
bool drawVerifyPage(const std::string& path, const VerifyResult& r, double limit, std::string& error);

}  // namespace pctool
