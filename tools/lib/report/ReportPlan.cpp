#include "tools/lib/report/ReportPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "cache/DeltaApply.h"
#include "frontend/TablePlan.h"
#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/verify/Prediction.h"

namespace pctool {

namespace {

// Within this, two targets draw as one line on the page (the xy diagram's pixel is ~0.0013).
constexpr double kSameChromaticity = 0.003;
constexpr double kSameExponent = 0.002;

const std::vector<double>& setDash(size_t set) {
  static const std::vector<double> kDash[4] = {{}, {9, 4}, {2, 3}, {10, 3, 2, 3}};
  return kDash[set % 4];
}

// Members of a group of k coinciding lines: dash j of k, so the colours take turns.
PlanStyle shared(int colour, size_t j, size_t k) {
  PlanStyle s;
  s.colour = colour;
  if (k > 1) {
    const double on = 12;
    s.dash = {on, on * static_cast<double>(k - 1)};
    s.dashOffset = std::fmod(on * static_cast<double>(k - j), on * static_cast<double>(k));
  }
  return s;
}

bool sameTarget(const TargetParm& a, const TargetParm& b) {
  for (int i = 0; i < 8; ++i)
    if (std::fabs(a.values[i] - b.values[i]) > kSameChromaticity) return false;
  return true;
}

// Groups of items that coincide, by the first of each group: group[i] = index of its first.
template <typename Same>
std::vector<size_t> groups(size_t n, Same same) {
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

double srgbEncode(double v) {
  if (!std::isfinite(v)) return 0;
  v = v < 0 ? 0 : v > 1 ? 1 : v;
  return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

std::string targetLabel(const ReportTarget& t) { return t.mode + (t.nits100 ? " 100-nit" : ""); }

void planGamut(const PanelReport& rep, ReportPlan& plan) {
  std::vector<size_t> standard;
  for (size_t i = 0; i < rep.targets.size(); ++i)
    if (!rep.targets[i].nits100) standard.push_back(i);
  const auto first = groups(standard.size(), [&](size_t a, size_t b) {
    return sameTarget(rep.targets[standard[a]].target, rep.targets[standard[b]].target);
  });
  for (size_t i = 0; i < standard.size(); ++i) {
    const ReportTarget& t = rep.targets[standard[i]];
    size_t k = 0, j = 0;
    for (size_t m = 0; m < standard.size(); ++m) {
      if (first[m] != first[i]) continue;
      if (m < i) ++j;
      ++k;
    }
    PlanTriangle tri;
    tri.label = "target " + t.mode;
    if (first[i] != i) tri.label += " (same as " + rep.targets[standard[first[i]]].mode + ")";
    tri.style = shared(modeColourIndex(t.mode), j, k);
    TargetModel model(t.target);
    for (int c = 0; c < 4; ++c) tri.rgbw[c] = model.chroma()[c];
    plan.gamut.push_back(tri);
  }
  std::vector<PanelModel> panels;
  for (const auto& o : rep.odfs) panels.emplace_back(o.odf);
  const auto same = groups(panels.size(), [&](size_t a, size_t b) {
    for (int c = 0; c < 4; ++c)
      if (std::fabs(panels[a].chroma()[c].x - panels[b].chroma()[c].x) > 0.0005 ||
          std::fabs(panels[a].chroma()[c].y - panels[b].chroma()[c].y) > 0.0005)
        return false;
    return true;
  });
  for (size_t s = 0; s < rep.odfs.size(); ++s) {
    const PanelModel& panel = panels[s];
    if (!panel.valid()) continue;
    PlanTriangle tri;
    tri.label = "panel " + rep.odfs[s].set;
    if (same[s] != s) tri.label += " (same as " + rep.odfs[same[s]].set + ")";
    tri.measured = true;
    tri.style.dash = setDash(s);
    tri.style.width = 1.5;
    for (int c = 0; c < 4; ++c) tri.rgbw[c] = panel.chroma()[c];
    plan.gamut.push_back(tri);
  }
}

void planGrey(const PanelReport& rep, ReportPlan& plan) {
  std::vector<PlanCurve> curves;
  for (size_t s = 0; s < rep.odfs.size(); ++s) {
    const OpticalDataFile& odf = rep.odfs[s].odf;
    PanelModel panel(odf);
    const GreyRamp& r = panel.ramp();
    const double white = r.Y[GreyRamp::kKnots - 1];
    PlanCurve c;
    c.label = "panel " + rep.odfs[s].set;
    c.style.dash = setDash(s);
    c.markers = true;
    for (int k = 1; k < GreyRamp::kKnots - 1; ++k) {
      const double rel = white > 0 ? r.Y[k] / white : 0;
      if (rel > 0 && rel < 1) c.points.emplace_back(r.code[k], std::log(rel) / std::log(r.code[k] / 4095.0));
    }
    curves.push_back(c);
    std::string fact = "panel " + rep.odfs[s].set + ": white " + printfString("%.1f cd/m2", white) + ", grey 512 " +
                       printfString("%.3f cd/m2", r.Y[1]) + ", grey 2048 " + printfString("%.2f cd/m2", r.Y[4]);
    plan.greyFacts.push_back(fact);
  }

  const auto sameCurve = groups(curves.size(), [&](size_t a, size_t b) {
    if (curves[a].points.size() != curves[b].points.size()) return false;
    for (size_t i = 0; i < curves[a].points.size(); ++i)
      if (std::fabs(curves[a].points[i].second - curves[b].points[i].second) > 0.001) return false;
    return true;
  });
  for (size_t s = 0; s < curves.size(); ++s) {
    if (sameCurve[s] != s) curves[s].label += " (same as " + rep.odfs[sameCurve[s]].set + ")";
    plan.gammaMeasured.push_back(curves[s]);
  }

  const auto first = groups(rep.targets.size(), [&](size_t a, size_t b) {
    return rep.targets[a].nits100 == rep.targets[b].nits100 &&
           std::fabs(1.0 / rep.targets[a].target.values[8] - 1.0 / rep.targets[b].target.values[8]) < kSameExponent;
  });
  for (size_t i = 0; i < rep.targets.size(); ++i) {
    const ReportTarget& t = rep.targets[i];
    if (t.nits100) continue;
    size_t k = 0, j = 0;
    for (size_t m = 0; m < rep.targets.size(); ++m) {
      if (first[m] != first[i]) continue;
      if (m < i) ++j;
      ++k;
    }
    const double e = 1.0 / t.target.values[8];
    PlanCurve c;
    c.label = "target " + t.mode + printfString(" gamma %.3f", e);
    if (first[i] != i) c.label += " (same as " + rep.targets[first[i]].mode + ")";
    c.style = shared(modeColourIndex(t.mode), j, k);
    c.points = {{0, e}, {4095, e}};
    plan.gammaTargets.push_back(c);
  }
  for (const ReportTarget& t : rep.targets) {
    if (t.count < 20) {
      plan.greyFacts.push_back("target " + targetLabel(t) + ": no gamma-correction offsets (9 numbers)");
      continue;
    }
    const float* v = t.target.values;
    plan.greyFacts.push_back("target " + targetLabel(t) + ": gamma offsets at codes 0/256 " +
                             printfString("%+.3f %+.3f", v[9], v[10]) + ", at 3328/3584/3840/4095 " +
                             printfString("%+.3f %+.3f %+.3f", v[16], v[17], v[18]) + printfString(" %+.3f", v[19]));
  }
}

void planPredictions(const PanelReport& rep, ReportPlan& plan) {
  for (const auto& c : referenceColours()) plan.colourNames.push_back(c.name);
  for (const ReportTable& t : rep.tables) {
    PlanSwatchRow row;
    row.table = t.name;
    if (!t.lut || t.target < 0 || t.odf < 0) {
      row.note = !t.lut ? "no table" : t.target < 0 ? "no target for this table" : "no optical data for this table";
      plan.swatches.push_back(row);
      continue;
    }
    Prediction p;
    std::string error;
    if (!predict(*t.lut, rep.odfs[static_cast<size_t>(t.odf)].odf, rep.targets[static_cast<size_t>(t.target)].target,
                 p, error)) {
      row.note = error;
      plan.swatches.push_back(row);
      continue;
    }
    for (const ColourPrediction& c : p.reference) {
      PlanSwatch s;
      s.colour = c.name;
      labToScreen(c.target, s.target);
      labToScreen(c.predicted, s.shown);
      s.de = c.de;
      row.cells.push_back(s);
    }
    plan.swatches.push_back(row);

    const bool low = t.name.find("100-nit") != std::string::npos;
    PlanCurve curve;
    curve.label = t.name;
    curve.style.colour = modeColourIndex(modeOfTable(t.name));
    if (low) curve.style.dash = {6, 4};
    curve.style.width = low ? 1.5 : 2.5;
    for (const ColourPrediction& g : p.grey) curve.points.emplace_back(g.rgb[0], g.de);
    plan.greyDe.push_back(curve);
  }
}

void planBrightness(const PanelReport& rep, ReportPlan& plan) {
  const size_t pairs = std::min<size_t>(rep.tables.size() / 2, 4);
  const int node = rep.node >= 0 && rep.node < static_cast<int>(kEntries) ? rep.node : pickBrightnessNode(rep);
  if (pairs == 0) {
    plan.brightnessNote = "no table pairs: the brightness interpolation needs the panel's table cache";
    return;
  }
  if (node < 0) {
    plan.brightnessNote = "the 100-nit and full-brightness tables are equal: nothing follows the brightness";
    return;
  }
  const uint32_t n = static_cast<uint32_t>(node);
  plan.brightnessDrawn = true;
  plan.brightnessTitle = "Brightness: entry " + std::to_string(n) + ", levels (" + std::to_string(n % kGrid) + "," +
                         std::to_string(n / kGrid % kGrid) + "," + std::to_string(n / (kGrid * kGrid)) + ")";
  static const std::vector<double> kChannelDash[3] = {{}, {9, 4}, {2, 3}};
  plan.brightnessKey.push_back("R solid, G dashed, B dotted");
  for (size_t k = 0; k < pairs; ++k) {
    const ReportTable& even = rep.tables[2 * k];
    const ReportTable& odd = rep.tables[2 * k + 1];
    if (!even.lut || !odd.lut) continue;
    const std::string mode = modeOfTable(odd.name);
    const auto& e = even.lut->entries[n];
    const auto& o = odd.lut->entries[n];
    for (int c = 0; c < 3; ++c) {
      PlanBrightnessLine line;
      line.style.colour = modeColourIndex(mode);
      line.style.dash = kChannelDash[c];
      line.channel = c;
      line.even = e.out[c];
      line.odd = o.out[c];
      plan.brightness.push_back(line);
    }
    plan.brightnessKey.push_back((mode.empty() ? odd.name : mode) + " " + std::to_string(2 * k) + "->" +
                                 std::to_string(2 * k + 1) + ": " + std::to_string(e.out[0]) + " " +
                                 std::to_string(e.out[1]) + " " + std::to_string(e.out[2]) + " -> " +
                                 std::to_string(o.out[0]) + " " + std::to_string(o.out[1]) + " " +
                                 std::to_string(o.out[2]));
  }
}

}  // namespace

int modeColourIndex(const std::string& mode) {
  for (int i = 0; i < postblend::fe::kModes; ++i)
    if (mode == postblend::fe::kModeNames[i]) return i;
  unsigned h = 0;
  for (unsigned char c : mode) h = h * 31 + c;
  return 4 + static_cast<int>(h % 4);
}

std::string modeOfTable(const std::string& tableName) {
  for (const char* m : postblend::fe::kModeNames)
    if (tableName.find(m) != std::string::npos) return m;
  return "";
}

void labToScreen(const Lab& lab, double (&rgb)[3]) {
  auto f = [](double t) { return t > 6.0 / 29 ? t * t * t : 3 * (6.0 / 29) * (6.0 / 29) * (t - 4.0 / 29); };
  const double fy = (lab.L + 16) / 116;
  const Xyz xyz{kD65.X * f(fy + lab.a / 500), kD65.Y * f(fy), kD65.Z * f(fy - lab.b / 200)};
  // XYZ to linear sRGB (IEC 61966-2-1).
  const double lin[3] = {3.2404542 * xyz.X - 1.5371385 * xyz.Y - 0.4985314 * xyz.Z,
                         -0.9692660 * xyz.X + 1.8760108 * xyz.Y + 0.0415560 * xyz.Z,
                         0.0556434 * xyz.X - 0.2040259 * xyz.Y + 1.0572252 * xyz.Z};
  for (int c = 0; c < 3; ++c) rgb[c] = srgbEncode(lin[c]);
}

ReportPlan planReport(const PanelReport& rep) {
  ReportPlan plan;
  plan.title = "PanelCorvane calibration report: " + rep.panelName;
  plan.sourceLine = rep.sourceText.empty() ? "optical data: none" : rep.sourceText;
  std::string data = rep.tablesText.empty() ? "tables: none" : rep.tablesText;
  data += "   targets: " + std::to_string(rep.targets.size()) + "   measurement sets:";
  for (const auto& o : rep.odfs) data += " " + o.path.substr(o.path.find_last_of('/') + 1);
  plan.dataLine = data;
  planGamut(rep, plan);
  planGrey(rep, plan);
  planPredictions(rep, plan);
  planBrightness(rep, plan);
  plan.notes = rep.notes;
  return plan;
}

int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness) {
  const int32_t delta = static_cast<int32_t>(odd - even);
  const uint32_t w = postblend::brightnessWeightQ12(brightness);
  return static_cast<int32_t>(even) + static_cast<int32_t>(postblend::scaledDeltaQ12(delta, w));
}

int pickBrightnessNode(const PanelReport& report) {
  int best = -1;
  int64_t bestMove = 0;
  for (size_t k = 0; k + 1 < report.tables.size() && k < 8; k += 2) {
    const auto& even = report.tables[k].lut;
    const auto& odd = report.tables[k + 1].lut;
    if (!even || !odd) continue;
    for (uint32_t n = 0; n < kEntries; ++n) {
      int64_t move = 0;
      for (int c = 0; c < 3; ++c)
        move += std::llabs(int64_t(odd->entries[n].out[c]) - int64_t(even->entries[n].out[c]));
      if (move > bestMove) bestMove = move, best = static_cast<int>(n);
    }
  }
  return best;
}

}  // namespace pctool
