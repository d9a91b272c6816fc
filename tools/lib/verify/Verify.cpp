#include "tools/lib/verify/Verify.h"

#include <algorithm>
#include <cmath>

#include "tools/lib/tables/DeviceGrid.h"

namespace pctool {

using postblend::lut3d_info;

De2000Stats de2000Stats(const lut3d_info& lut) {
  De2000Stats s;
  std::vector<NodeDe> all;
  all.reserve(kEntries);
  for (uint32_t i = 0; i < kEntries; ++i) {
    const auto& e = lut.entries[i];
    double de = ciede2000(srgbCodeLab(e.in), srgbCodeLab(e.out));
    all.push_back({i, {e.in[0], e.in[1], e.in[2]}, {e.out[0], e.out[1], e.out[2]}, de});
    s.mean += de;
  }
  s.mean /= kEntries;
  std::vector<double> sorted;
  sorted.reserve(kEntries);
  for (const auto& n : all) sorted.push_back(n.de);
  std::sort(sorted.begin(), sorted.end());
  // Nearest-rank 95th percentile.
  s.p95 = sorted[static_cast<size_t>(std::ceil(0.95 * kEntries)) - 1];
  s.max = sorted.back();
  std::stable_sort(all.begin(), all.end(),
                   [](const NodeDe& a, const NodeDe& b) { return a.de > b.de; });
  all.resize(10);
  s.worst = std::move(all);
  return s;
}

}  // namespace pctool
