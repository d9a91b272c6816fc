// CSV, JSON and text renderings of a lot's verification. Errors are printed with the decimals
// that decide them against the limit, so a figure never reads as passing when it fails.
#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/lib/common/JsonText.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/lot/LotVerify.h"

namespace pctool {

namespace {

// A CSV field, quoted when it holds a separator, a quote or a line break.
std::string csvField(const std::string& s) {
  if (s.find_first_of(",\"\n\r") == std::string::npos) return s;
  std::string o = "\"";
  for (char c : s) o += c == '"' ? std::string("\"\"") : std::string(1, c);
  return o + "\"";
}

const LotDisplay* displayOf(const LotPanelResult& r, const std::string& name) {
  for (const auto& d : r.displays)
    if (d.name == name) return &d;
  return nullptr;
}

std::string tableWord(const LotDisplay& d) { return d.source == "none" ? "" : d.fromCache ? "cache" : "generated"; }

// A mode's own result: its figures against the limit, unless its display is off its own data
// or it has no figures.
const char* modeResult(const LotMode& m, const LotDisplay* d) {
  if (!m.figures) return verdictWord(LotVerdict::Unjudged);
  if (d != nullptr && !d->offReason.empty()) return verdictWord(LotVerdict::OffOwnData);
  return verdictWord(m.pass ? LotVerdict::Pass : LotVerdict::Fail);
}

std::string modeNote(const LotMode& m, const LotDisplay* d) {
  std::string note = m.note;
  if (d == nullptr) return note;
  for (const std::string& s : {d->offReason.empty() ? "" : "not on its own optical data: " + d->offReason, d->note})
    if (!s.empty() && note.find(s) == std::string::npos) note += (note.empty() ? "" : "; ") + s;
  return note;
}

std::string figure(double v, double limit, int least) { return decidingFigure(v, limit, least); }

std::string count(size_t n, const char* what) { return std::to_string(n) + " " + what; }

}  // namespace

std::string lotCsvText(const std::vector<LotPanelResult>& results, const LotSummary& s) {
  std::string o =
      "panel,verdict,display,table,mode,target,data_set,source,tables,judged_by,mean_de2000,p95_de2000,max_de2000,"
      "result,note\n";
  for (const auto& r : results) {
    const std::string head = csvField(r.name) + "," + verdictWord(r.verdict()) + ",";
    if (!r.error.empty()) {
      o += head + ",,,,,,,,,,,unjudged," + csvField(r.error) + "\n";
      continue;
    }
    for (const auto& m : r.modes) {
      const LotDisplay* d = displayOf(r, m.display);
      o += head + csvField(m.display) + "," + (m.table >= 0 ? std::to_string(m.table) : "") + "," + csvField(m.mode) +
           "," + csvField(m.target) + "," + m.dataSet + "," + csvField(d ? d->source : "") + "," +
           (d ? tableWord(*d) : "") + "," + m.judgedBy + ",";
      o += m.figures ? figure(m.mean, s.maxDe, 3) + "," + figure(m.p95, s.maxDe, 3) + "," + figure(m.max, s.maxDe, 3)
                     : ",,";
      o += std::string(",") + modeResult(m, d) + "," + csvField(modeNote(m, d)) + "\n";
    }
  }
  return o;
}

std::string lotJsonText(const std::vector<LotPanelResult>& results, const LotSummary& s) {
  const auto number = [&s](double v) { return figure(v, s.maxDe, 4); };
  std::string o = "{\"summary\":{\"limit_p95_de2000\":" + exactFigure(s.maxDe) +
                  ",\"xy_tolerance\":" + exactFigure(s.xyTolerance) + ",\"panel_count\":" + std::to_string(s.panels);
  for (int v = 0; v < kLotVerdicts; ++v) {
    std::string key = verdictWord(static_cast<LotVerdict>(v));
    std::replace(key.begin(), key.end(), '-', '_');
    o += ",\"" + key + "\":" + std::to_string(s.counts[v]);
  }
  o += ",\"yield\":" + jsonNumber(s.yield, 6) + ",\n \"data_sources\":{";
  for (const auto& [source, n] : s.sources)
    o += std::string(o.back() == '{' ? "" : ",") + jsonString(source) + ":" + std::to_string(n);
  o += "},\"tables\":{\"cache\":" + std::to_string(s.fromCache) + ",\"generated\":" + std::to_string(s.generated) +
       "},\n \"histogram\":{\"of\":\"p95_de2000 of each mode of the panels on their own optical data\",\"bin_width\":" +
       exactFigure(LotSummary::kBinWidth) + ",\"last_bin_open\":true,\"pass\":" + jsonArray(s.binPass) +
       ",\"fail\":" + jsonArray(s.binFail) + "},\n \"outliers\":[";
  for (size_t i = 0; i < s.outliers.size(); ++i) {
    const LotOutlier& x = s.outliers[i];
    o += std::string(i ? "," : "") + "\n  {\"panel\":" + jsonString(x.panel) +
         ",\"verdict\":" + jsonString(verdictWord(x.verdict)) + ",\"display\":" + jsonString(x.display) +
         ",\"mode\":" + jsonString(x.mode) + ",\"p95\":" + number(x.p95);
    if (x.fence > 0) o += ",\"fence\":" + exactFigure(x.fence);
    o += "}";
  }
  o += "]},\n \"panels\":[";
  for (size_t i = 0; i < results.size(); ++i) {
    const LotPanelResult& r = results[i];
    o += std::string(i ? "," : "") + "\n  {\"folder\":" + jsonString(r.name) + ",\"path\":" + jsonString(r.path) +
         ",\"verdict\":" + jsonString(verdictWord(r.verdict())) + ",\"reason\":" + jsonString(r.reason()) +
         ",\"displays\":[";
    for (size_t k = 0; k < r.displays.size(); ++k) {
      const LotDisplay& d = r.displays[k];
      o += std::string(k ? "," : "") + "\n   {\"name\":" + jsonString(d.name) + ",\"data_source\":" +
           jsonString(d.source) + ",\"off_own_data\":" + jsonString(d.offReason) + ",\"tables\":" +
           jsonString(tableWord(d)) + ",\"note\":" + jsonString(d.note) + ",\"modes\":[";
      bool first = true;
      for (const auto& m : r.modes) {
        if (m.display != d.name) continue;
        o += std::string(first ? "" : ",") + "\n    {\"table\":" + std::to_string(m.table) +
             ",\"mode\":" + jsonString(m.mode) + ",\"target\":" + jsonString(m.target) +
             ",\"data_set\":" + jsonString(m.dataSet) + ",\"judged_by\":" + jsonString(m.judgedBy);
        if (m.figures) o += ",\"mean\":" + number(m.mean) + ",\"p95\":" + number(m.p95) + ",\"max\":" + number(m.max);
        o += std::string(",\"result\":\"") + modeResult(m, &d) + "\",\"note\":" + jsonString(m.note) + "}";
        first = false;
      }
      o += "]}";
    }
    o += "]}";
  }
  return o + "\n ]}\n";
}

std::string lotSummaryText(const std::vector<LotPanelResult>& results, const LotSummary& s) {
  std::string o = printfString("yield: %zu of %zu panels pass every mode on their own optical data (%.1f %%), ",
                               s.passed(), s.panels, 100.0 * s.yield) +
                  "limit: 95th percentile dE00 " + exactFigure(s.maxDe) + "\n";
  o += "panels: " + count(s.counts[0], "pass") + ", " + count(s.counts[1], "fail") + ", " +
       count(s.counts[2], "not on their own optical data") + ", " + count(s.counts[3], "cannot be judged") + "\n";
  o += "data source of the tables:";
  for (const auto& [source, n] : s.sources) o += " " + std::to_string(n) + " " + source + ",";
  o.back() = ';';
  o += " " + count(s.fromCache, "from the cache") + ", " + count(s.generated, "generated in memory") + "\n";
  for (const auto& [verdict, title] : {std::make_pair(LotVerdict::Unjudged, "cannot be judged"),
                                       std::make_pair(LotVerdict::OffOwnData, "not on its own optical data")})
    for (const auto& r : results)
      if (r.verdict() == verdict) o += std::string("  ") + title + ": " + r.name + ": " + r.reason() + "\n";
  o += "95th percentile dE00 per mode, panels on their own optical data (pass/fail):\n";
  size_t most = 1;
  for (size_t i = 0; i < LotSummary::kBins; ++i) most = std::max(most, s.binPass[i] + s.binFail[i]);
  for (size_t i = 0; i < LotSummary::kBins; ++i) {
    const double lo = i * LotSummary::kBinWidth;
    const size_t n = s.binPass[i] + s.binFail[i];
    o += i + 1 < LotSummary::kBins ? printfString("  %5.2f-%5.2f", lo, lo + LotSummary::kBinWidth)
                                   : printfString("  %5.2f-     ", lo);
    o += printfString(" %6zu %6zu ", s.binPass[i], s.binFail[i]);
    o += std::string(n ? std::max<size_t>(1, n * 40 / most) : 0, '#') + "\n";
  }
  o += "outliers: " + (s.outliers.empty() ? std::string("none") : std::to_string(s.outliers.size())) + "\n";
  for (const auto& x : s.outliers) o += "  " + x.text + "\n";
  return o;
}

}  // namespace pctool
