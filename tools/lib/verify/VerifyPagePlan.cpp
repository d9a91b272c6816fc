// What the verification page says, apart from how it is drawn (VerifyPage.cpp).
#include <algorithm>
#include <cmath>

#include "tools/lib/common/PrintfString.h"
#include "tools/lib/verify/VerifyPage.h"

namespace pctool {

namespace {

std::vector<VerifyBar> bars(const std::vector<ColourPrediction>& p, const std::vector<MeasuredColour>* m) {
  std::vector<VerifyBar> out;
  for (const auto& c : p) {
    VerifyBar b{c.name, {c.rgb[0], c.rgb[1], c.rgb[2]}, c.de, c.deUncalibrated, NAN};
    if (m != nullptr)
      for (const auto& mc : *m)
        if (mc.name == c.name) b.measured = mc.de;
    out.push_back(b);
  }
  return out;
}

std::vector<VerifyBar> chartBars(const std::vector<MeasuredColour>& v, const std::vector<size_t>& order) {
  std::vector<VerifyBar> out;
  for (size_t i : order) {
    const MeasuredColour& c = v[i];
    out.push_back({c.name, {c.rgb[0], c.rgb[1], c.rgb[2]}, c.predictedDe, NAN, c.de});
  }
  return out;
}

std::string measuredPart(const char* what, double mean, double max) {
  return printfString("; measured mean %.2f, max %.2f", mean, max) + what;
}

}  // namespace

VerifyPagePlan planVerifyPage(const VerifyResult& r, double limit) {
  VerifyPagePlan plan;
  const VerifySubject& s = r.subject;
  plan.title = "Verification: " + (s.mode.empty() ? r.label : s.mode);
  const std::vector<std::string> what = s.lines();
  plan.subtitle = {what[0] + "     " + what[1], what[2], what[3]};
  for (const auto& n : s.notes) plan.subtitle.push_back("note: " + n);
  const Prediction& p = r.prediction;
  const WhiteFigures& w = p.white;
  plan.subtitle.push_back(printfString("white: %.1f cd/m2, %.0f K, duv %+.4f without the table; %.1f cd/m2, %.0f K, duv "
                                       "%+.4f through it (the correction costs %.1f %%); target %.0f K, duv %+.4f",
                                       w.panel.Y, w.panel.cct, w.panel.duv, w.calibrated.Y, w.calibrated.cct,
                                       w.calibrated.duv, w.costPercent, w.target.cct, w.target.duv));
  const MeasuredCheck& m = r.measured;
  if (r.hasMeasured) {
    const std::string contrast =
        m.hasBlack && m.blackY > 0 ? printfString(", black %.4g, contrast %.0f:1", m.blackY, m.white.Y / m.blackY) : "";
    plan.subtitle.push_back(printfString("measured white: %.1f%s, %.0f K, duv %+.4f", m.white.Y,
                                         m.absolute ? " cd/m2" : " (relative)", m.white.cct, m.white.duv) +
                            contrast);
  }
  const std::string source = r.hasMeasured ? " (" + m.source + ")" : "";
  if (r.hasMeasured && !m.chart.empty()) {
    std::vector<size_t> all(m.chartPatches.size()), greys;
    for (size_t i = 0; i < all.size(); ++i) {
      all[i] = i;
      const double* d = m.chartPatches[i].percent;
      if (d[0] == d[1] && d[1] == d[2]) greys.push_back(i);
    }
    std::vector<size_t> worst = all;
    if (worst.size() > kVerifyPageBars) {
      std::stable_sort(worst.begin(), worst.end(),
                       [&](size_t a, size_t b) { return m.chartPatches[a].de > m.chartPatches[b].de; });
      worst.resize(kVerifyPageBars);
    }
    if (greys.size() > kVerifyPageBars / 2) greys.resize(kVerifyPageBars / 2);
    const MeasuredSummary& cs = m.chartSummary;
    plan.subtitle.push_back(printfString("chart %s, %zu patches: measured mean %.2f, 95th percentile %.2f, max %.2f",
                                         m.chart.c_str(), all.size(), cs.mean, cs.p95, cs.max) + source);
    plan.charts[0] = {worst.size() < all.size() ? printfString("the %zu worst patches of the chart", worst.size())
                                                 : std::string("the chart's patches"),
                      chartBars(m.chartPatches, worst)};
    plan.charts[1] = {"the chart's greys", chartBars(m.chartPatches, greys)};
  } else {
    plan.subtitle.push_back(
        printfString("reference colours: predicted mean %.2f, max %.2f", p.referenceSummary.mean, p.referenceSummary.max) +
        (r.hasMeasured ? measuredPart(source.c_str(), m.referenceSummary.mean, m.referenceSummary.max) : ""));
    plan.subtitle.push_back(
        printfString("grey ramp: predicted mean %.2f, max %.2f", p.greySummary.mean, p.greySummary.max) +
        (r.hasMeasured ? measuredPart("", m.greySummary.mean, m.greySummary.max) : ""));
    plan.charts[0] = {"21 reference colours", bars(p.reference, r.hasMeasured ? &m.reference : nullptr)};
    // The near-black levels join the ramp in level order, where prediction and panel part most.
    std::vector<ColourPrediction> greys = p.grey;
    greys.insert(greys.begin() + 1, p.nearBlack.begin(), p.nearBlack.end());
    std::vector<MeasuredColour> measuredGreys = m.grey;
    measuredGreys.insert(measuredGreys.end(), m.nearBlack.begin(), m.nearBlack.end());
    plan.charts[1] = {"grey ramp (8-bit levels)", bars(greys, r.hasMeasured ? &measuredGreys : nullptr)};
  }
  // The axis holds what the table leaves and the limit; a few far values do not squash it.
  double most = 0;
  for (const auto& c : plan.charts)
    for (const VerifyBar& b : c.bars)
      for (double v : {b.predicted, b.measured})
        if (std::isfinite(v)) most = std::max(most, v);
  plan.limit = limit;
  plan.top = std::min(std::ceil(std::max(1.25 * limit, 1.15 * most)), std::ceil(3 * limit));
  for (const auto& c : plan.charts)
    for (const VerifyBar& b : c.bars) {
      const std::pair<const char*, double> marks[3] = {
          {"predicted", b.predicted}, {"measured", b.measured}, {"without the table", b.without}};
      for (const auto& [what, v] : marks)
        if (std::isfinite(v) && v > plan.top) plan.beyond.push_back(printfString("%s: %s %.2f", b.name.c_str(), what, v));
    }
  return plan;
}

}  // namespace pctool
