// How a line of a page is drawn, and a curve drawn in it, as plans of the pages describe them
// before anything is drawn (so they are read and tested without cairo).
#pragma once

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

}  // namespace pctool
