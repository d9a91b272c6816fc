// How a line of a page is drawn, and a curve drawn in it, as plans of the pages describe them
// before anything is drawn (so they are read and tested without cairo).
#pragma once

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace pctool {

struct PlanStyle {
  int colour = -1;           // mode colour index; -1 ink
  std::vector<double> dash;  // empty: solid
  double dashOffset = 0;
  double width = 2;
};

struct PlanCurve {
  std::string label;
  PlanStyle style;
  std::vector<std::pair<double, double>> points;
  bool markers = false;
};

// Member j of a group of k coinciding lines: dash j of k, so the colours take turns and each
// stays visible.
inline PlanStyle sharedLineStyle(int colour, size_t j, size_t k) {
  PlanStyle s;
  s.colour = colour;
  if (k > 1) {
    const double on = 12;
    s.dash = {on, on * static_cast<double>(k - 1)};
    s.dashOffset = std::fmod(on * static_cast<double>(k - j), on * static_cast<double>(k));
  }
  return s;
}

// Groups of n items that coincide: first[i] is the first item i coincides with (i itself when
// none before it does).
template <typename Same>
std::vector<size_t> coincidenceGroups(size_t n, Same same) {
  std::vector<size_t> first(n);
  for (size_t i = 0; i < n; ++i) {
    first[i] = i;
    for (size_t j = 0; j < i; ++j)
      if (first[j] == j && same(i, j)) {
        first[i] = j;
        break;
      }
  }
  return first;
}

// Item i's place j among the k members of its group.
inline void groupPlace(const std::vector<size_t>& first, size_t i, size_t& j, size_t& k) {
  j = k = 0;
  for (size_t m = 0; m < first.size(); ++m) {
    if (first[m] != first[i]) continue;
    if (m < i) ++j;
    ++k;
  }
}

}  // namespace pctool
