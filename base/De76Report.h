// The dE76 binning of a table: for every entry, the CIE 1976 distance between its input and
// output colour read as linear sRGB (code / 4095). Bin k holds distances in [10k, 10k + 10),
// bin 9 everything from 90 up (NaN included); entries above 50 are listed. The table passes when
// at least 80 % of its entries lie below 50. Shared by the plugin's logged check and the
// workbench's verification report, so their figures are the same.
#pragma once

#include <cstdint>
#include <vector>

#include "postblend/color_records.h"

namespace postblend {

struct De76Report {
  struct Far {
    uint32_t index;
    uint32_t in[3], out[3];
    float d;
  };
  static constexpr int kBins = 10;
  uint32_t bins[kBins] = {};
  uint32_t below50Times100 = 0;  // entries below 50, times 100
  uint32_t passPercent = 0;      // entries below 50, in whole percent (truncated)
  bool pass = false;             // at least 80 % below 50
  std::vector<Far> far;          // entries above 50, in entry order
};

De76Report de76Report(const lut3d_info& lut);

}  // namespace postblend
