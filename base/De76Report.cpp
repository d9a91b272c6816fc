#include "base/De76Report.h"

#include "base/Algorithm.h"

namespace postblend {

namespace {
constexpr double kFarAbove = 50.0;
constexpr int kPassBins = 5;                 // bins 0-4 hold the distances below 50
constexpr uint32_t kPassThreshold = 393040;  // 80 % of 4913 entries, times 100

float unit(uint32_t code) { return static_cast<float>(code / 4095.0); }
}  // namespace

De76Report de76Report(const lut3d_info& lut) {
  De76Report r;
  for (uint32_t i = 0; i < kLut3dEntries; ++i) {
    const lut3d_entry& e = lut.entries[i];
    const float d = Algorithm::DeltaE76(unit(e.in[0]), unit(e.in[1]), unit(e.in[2]), unit(e.out[0]),
                                        unit(e.out[1]), unit(e.out[2]));
    if (d > kFarAbove) {
      r.far.push_back({i, {e.in[0], e.in[1], e.in[2]}, {e.out[0], e.out[1], e.out[2]}, d});
    }
    const double tens = d / 10.0;
    const int bin = tens < De76Report::kBins - 1 ? static_cast<int>(tens) : De76Report::kBins - 1;
    ++r.bins[bin < 0 ? 0 : bin];  // NaN fails the comparison above and lands in bin 9
  }
  uint32_t below = 0;
  for (int k = 0; k < kPassBins; ++k) below += r.bins[k];
  r.below50Times100 = below * 100;
  r.passPercent = r.below50Times100 / kLut3dEntries;
  r.pass = r.below50Times100 >= kPassThreshold;
  return r;
}

}  // namespace postblend
