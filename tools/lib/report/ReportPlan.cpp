#include "tools/lib/report/ReportPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "cache/DeltaApply.h"
#include "frontend/TablePlan.h"
#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/verify/Prediction.h"

namespace pctool {

namespace {

const std::vector<double>& setDash(size_t set) {
  static const std::vector<double> kDash[4] = {{}, {9, 4}, {2, 3}, {10, 3, 2, 3}};
  return kDash[set % 4];
}

double srgbEncode(double v) {
  if (!std::isfinite(v)) return 0;
  v = v < 0 ? 0 : v > 1 ? 1 : v;
  return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

// "DIR/PREFIX*SUFFIX (n files)" for paths that share their ends, else the paths.
std::string foldedPaths(const std::vector<std::string>& paths) {
  if (paths.size() < 3) {
    std::string o;
    for (const auto& p : paths) o += (o.empty() ? "" : ", ") + p;
    return o;
  }
  size_t head = paths[0].size(), tail = paths[0].size();
  for (const auto& p : paths) {
    size_t i = 0;
    while (i < head && i < p.size() && p[i] == paths[0][i]) ++i;
    head = i;
    size_t k = 0;
    while (k < tail && k < p.size() && p[p.size() - 1 - k] == paths[0][paths[0].size() - 1 - k]) ++k;
    tail = k;
  }
  tail = std::min(tail, paths[0].size() - head);
  return paths[0].substr(0, head) + "*" + paths[0].substr(paths[0].size() - tail) + " (" +
         std::to_string(paths.size()) + " files)";
}

std::string targetLabel(const ReportTarget& t) { return t.mode + (t.nits100 ? " 100-nit" : ""); }

// The whites' zoom: around their mean, wide enough for all, in steps of 0.002.
void planWhiteZoom(const std::vector<PlanTriangle>& gamut, ReportPlan& plan) {
  double cx = 0, cy = 0, n = 0;
  for (const auto& t : gamut) cx += t.rgbw[3].x, cy += t.rgbw[3].y, ++n;
  if (n == 0) return;
  cx /= n, cy /= n;
  double span = 0.006;
  for (const auto& t : gamut)
    span = std::max(span, std::max(std::fabs(t.rgbw[3].x - cx), std::fabs(t.rgbw[3].y - cy)) * 1.3);
  plan.whiteZoom[0] = cx, plan.whiteZoom[1] = cy, plan.whiteZoom[2] = std::ceil(span / 0.002) * 0.002;
}

// Triangles coincide when their primaries are within a pixel of the diagram; they are the same
// when their whites are also within a pixel of the zoom, where they are told apart.
void groupTriangles(std::vector<PlanTriangle>& tris, const ReportPlan& plan, const std::vector<std::string>& names) {
  const auto near = [](Chroma a, Chroma b, double pixel) {
    return std::fabs(a.x - b.x) <= pixel && std::fabs(a.y - b.y) <= pixel;
  };
  const auto first = coincidenceGroups(tris.size(), [&](size_t a, size_t b) {
    for (int c = 0; c < 3; ++c)
      if (!near(tris[a].rgbw[c], tris[b].rgbw[c], kXyPixel)) return false;
    return true;
  });
  const double zoomPixel = 2 * plan.whiteZoom[2] / kWhiteZoomPixels;
  for (size_t i = 0; i < first.size(); ++i) {
    size_t j = 0, k = 0;
    groupPlace(first, i, j, k);
    PlanTriangle& t = tris[i];
    if (!t.measured) t.style = sharedLineStyle(t.style.colour, j, k);
    if (first[i] == i) continue;
    const bool white = near(t.rgbw[3], tris[first[i]].rgbw[3], zoomPixel);
    t.label += (white ? " (same as " : " (primaries as ") + names[first[i]] + ")";
  }
}

void planGamut(const PanelReport& rep, ReportPlan& plan) {
  std::vector<PlanTriangle> targets, sets;
  std::vector<std::string> targetNames, setNames;
  for (const ReportTarget& t : rep.targets) {
    if (t.nits100) continue;
    PlanTriangle tri;
    tri.label = "target " + t.mode;
    tri.style.colour = modeColourIndex(t.mode);
    TargetModel model(t.target);
    for (int c = 0; c < 4; ++c) tri.rgbw[c] = model.chroma()[c];
    targets.push_back(tri);
    targetNames.push_back(t.mode);
  }
  for (size_t s = 0; s < rep.odfs.size(); ++s) {
    const PanelModel panel(rep.odfs[s].odf);
    if (!panel.valid()) continue;
    PlanTriangle tri;
    const std::string fed = modesOfSet(rep.odfs[s].setIndex);
    tri.label = "panel " + rep.odfs[s].set + (fed.empty() ? "" : ": " + fed);
    tri.measured = true;
    tri.style.dash = setDash(s);
    tri.style.width = 1.5;
    for (int c = 0; c < 4; ++c) tri.rgbw[c] = panel.chroma()[c];
    sets.push_back(tri);
    setNames.push_back(rep.odfs[s].set);
  }
  plan.gamut = targets;
  plan.gamut.insert(plan.gamut.end(), sets.begin(), sets.end());
  planWhiteZoom(plan.gamut, plan);
  groupTriangles(targets, plan, targetNames);
  groupTriangles(sets, plan, setNames);
  plan.gamut = targets;
  plan.gamut.insert(plan.gamut.end(), sets.begin(), sets.end());
}

// The gamma plot's axis: the curves' range, padded, in steps of 0.05.
void planGammaAxis(const std::vector<PlanCurve>& measured, const std::vector<double>& targets, ReportPlan& plan) {
  double lo = 1e9, hi = -1e9;
  for (const auto& c : measured)
    for (const auto& p : c.points) lo = std::min(lo, p.second), hi = std::max(hi, p.second);
  for (double e : targets) lo = std::min(lo, e), hi = std::max(hi, e);
  if (lo > hi) lo = 1.8, hi = 2.6;
  // Implausible data (flagged in the notes) must not stretch the axis into thousands of ticks.
  lo = std::max(lo, 0.5), hi = std::min(hi, 5.0);
  if (lo >= hi) lo = 0.5, hi = 5.0;
  plan.gammaAxis[0] = std::floor((lo - 0.04) / 0.05) * 0.05;
  plan.gammaAxis[1] = std::ceil((hi + 0.04) / 0.05) * 0.05;
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

  std::vector<double> exponents;
  for (const ReportTarget& t : rep.targets) exponents.push_back(1.0 / t.target.values[8]);
  planGammaAxis(curves, exponents, plan);
  const double pixel = (plan.gammaAxis[1] - plan.gammaAxis[0]) / kGammaPlotPixels;
  const auto sameCurve = coincidenceGroups(curves.size(), [&](size_t a, size_t b) {
    if (curves[a].points.size() != curves[b].points.size()) return false;
    for (size_t i = 0; i < curves[a].points.size(); ++i)
      if (std::fabs(curves[a].points[i].second - curves[b].points[i].second) > pixel) return false;
    return true;
  });
  for (size_t s = 0; s < curves.size(); ++s) {
    if (sameCurve[s] != s) curves[s].label += " (same as " + rep.odfs[sameCurve[s]].set + ")";
    plan.gammaMeasured.push_back(curves[s]);
  }

  // Target lines within a pixel share their line in turns; "same as" only when their printed
  // exponents agree too.
  const auto first = coincidenceGroups(rep.targets.size(), [&](size_t a, size_t b) {
    return rep.targets[a].nits100 == rep.targets[b].nits100 && std::fabs(exponents[a] - exponents[b]) <= pixel;
  });
  for (size_t i = 0; i < rep.targets.size(); ++i) {
    const ReportTarget& t = rep.targets[i];
    if (t.nits100) continue;
    size_t j = 0, k = 0;
    groupPlace(first, i, j, k);
    PlanCurve c;
    c.label = "target " + t.mode + printfString(" gamma %.3f", exponents[i]);
    if (first[i] != i && printfString("%.3f", exponents[i]) == printfString("%.3f", exponents[first[i]]))
      c.label += " (same as " + rep.targets[first[i]].mode + ")";
    c.style = sharedLineStyle(modeColourIndex(t.mode), j, k);
    c.points = {{0, exponents[i]}, {4095, exponents[i]}};
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
    if (t.target >= 0 && t.odf >= 0) {
      // The target's file without the display name the page's title gives.
      std::string target = fileName(rep.targets[static_cast<size_t>(t.target)].path);
      if (target.rfind(rep.displayName + "_", 0) == 0) target.erase(0, rep.displayName.size() + 1);
      row.made = target + ", " + rep.odfs[static_cast<size_t>(t.odf)].set;
    }
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

std::string modesOfSet(int set) {
  std::vector<std::string> modes;
  for (int k = 0; k < postblend::fe::kMaxTables; ++k)
    if (postblend::fe::tableInputs(k, false).odf == set) modes.push_back(postblend::fe::kModeNames[k / 2]);
  std::string o;
  for (size_t i = 0; i < modes.size(); ++i) o += (i == 0 ? "" : i + 1 == modes.size() ? " and " : ", ") + modes[i];
  return o;
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
  std::vector<std::string> targets, sets;
  for (const auto& t : rep.targets) targets.push_back(t.path);
  for (const auto& o : rep.odfs) sets.push_back(o.path);
  plan.dataLine = (rep.tablesText.empty() ? "tables: none" : rep.tablesText) + ";   targets: " +
                  (targets.empty() ? "none" : foldedPaths(targets));
  plan.setsLine = "measurement sets: " + (sets.empty() ? "none" : foldedPaths(sets));
  if (!rep.odfs.empty() && rep.odfs[0].setIndex >= 0)
    plan.setsLine += ";   _1_ feeds " + modesOfSet(postblend::fe::kOdf1max) + ", _2_ feeds " +
                     modesOfSet(postblend::fe::kOdf2max) + "; max: the full-brightness tables, 100nit: the 100-nit ones";
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
