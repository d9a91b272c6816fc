#include "tools/lib/tables/TableDiff.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/common/JsonText.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

constexpr size_t kWorstShown = 10;

uint32_t absDiff(uint32_t x, uint32_t y) { return x > y ? x - y : y - x; }

// The table of `all` that side of the comparison uses for pair `k`.
const LoadedTable* pick(const std::vector<LoadedTable>& all, int index, size_t k) {
  if (index < 0) return k < all.size() ? &all[k] : nullptr;
  if (all.size() == 1) return &all[0];
  return static_cast<size_t>(index) < all.size() ? &all[static_cast<size_t>(index)] : nullptr;
}

std::string codes(const uint32_t (&c)[3]) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%4u %4u %4u", c[0], c[1], c[2]);
  return buf;
}

}  // namespace

uint32_t TableDiff::maxAbs() const {
  return std::max({channel[0].maxAbs, channel[1].maxAbs, channel[2].maxAbs});
}

uint32_t DiffReport::maxAbs() const {
  uint32_t m = 0;
  for (const auto& t : tables) m = std::max(m, t.maxAbs());
  return m;
}

TableDiff diffTables(const lut3d_info& a, const lut3d_info& b) {
  TableDiff d;
  std::vector<NodeDiff> differing;
  std::vector<double> des;
  des.reserve(kEntries);
  uint64_t sum[3] = {0, 0, 0};
  for (uint32_t i = 0; i < kEntries; ++i) {
    const auto& ea = a.entries[i];
    const auto& eb = b.entries[i];
    bool differs = false;
    for (int c = 0; c < 3; ++c) {
      const uint32_t diff = absDiff(ea.out[c], eb.out[c]);
      sum[c] += diff;
      d.channel[c].maxAbs = std::max(d.channel[c].maxAbs, diff);
      d.channel[c].differing += diff ? 1 : 0;
      differs = differs || diff;
    }
    if (ea.in[0] != eb.in[0] || ea.in[1] != eb.in[1] || ea.in[2] != eb.in[2]) ++d.inputMismatches;
    const double de = differs ? ciede2000(srgbCodeLab(ea.out), srgbCodeLab(eb.out)) : 0.0;
    des.push_back(de);
    d.deMean += de;
    if (!differs) continue;
    ++d.differingNodes;
    differing.push_back({i, {ea.in[0], ea.in[1], ea.in[2]}, {ea.out[0], ea.out[1], ea.out[2]},
                         {eb.out[0], eb.out[1], eb.out[2]}, de});
  }
  for (int c = 0; c < 3; ++c) d.channel[c].meanAbs = double(sum[c]) / kEntries;
  d.deMean /= kEntries;
  std::sort(des.begin(), des.end());
  d.deP95 = des[static_cast<size_t>(std::ceil(0.95 * kEntries)) - 1];  // nearest rank
  d.deMax = des.back();
  std::stable_sort(differing.begin(), differing.end(),
                   [](const NodeDiff& x, const NodeDiff& y) { return x.de > y.de; });
  if (differing.size() > kWorstShown) differing.resize(kWorstShown);
  d.worst = std::move(differing);
  return d;
}

bool diffFiles(const std::string& pathA, const std::string& pathB, int index, uint32_t tolerance,
               DiffReport& out, std::string& error) {
  out = DiffReport{};
  out.pathA = pathA, out.pathB = pathB, out.tolerance = tolerance;
  std::vector<LoadedTable> a, b;
  if (!loadTables(pathA, a, error)) return error = pathA + ": " + error, false;
  if (!loadTables(pathB, b, error)) return error = pathB + ": " + error, false;
  out.countA = a.size(), out.countB = b.size();
  for (const auto* side : {&a, &b}) {
    if (index >= 0 && !pick(*side, index, 0)) {
      error = (side == &a ? pathA : pathB) + ": no table " + std::to_string(index) + ": the file holds " +
              std::to_string(side->size());
      return false;
    }
    for (const auto& t : *side)
      for (const auto& n : t.notes) out.notes.push_back(t.label + ": " + n);
  }
  const size_t pairs = index >= 0 ? 1 : std::min(a.size(), b.size());
  for (size_t k = 0; k < pairs; ++k) {
    const LoadedTable* ta = pick(a, index, k);
    const LoadedTable* tb = pick(b, index, k);
    TableDiff d = diffTables(*ta->lut, *tb->lut);
    d.labelA = ta->label, d.labelB = tb->label;
    out.tables.push_back(std::move(d));
  }
  if (index < 0 && a.size() != b.size()) {
    out.countMismatch = true;
    out.notes.push_back("table counts differ: " + std::to_string(a.size()) + " against " +
                        std::to_string(b.size()) + "; the first " + std::to_string(pairs) + " compared");
  }
  return true;
}

std::string DiffReport::verdict() const {
  if (withinTolerance()) return "";
  std::string why;
  if (countMismatch) why = "table counts differ (" + std::to_string(countA) + " against " + std::to_string(countB) + ")";
  if (maxAbs() > tolerance) {
    size_t beyond = 0;
    for (const auto& t : tables) beyond += t.maxAbs() > tolerance ? 1 : 0;
    why += (why.empty() ? "" : "; ") + std::to_string(beyond) + " of " + std::to_string(tables.size()) +
           (tables.size() == 1 ? " table" : " tables") + (beyond == 1 ? " differs" : " differ") + " by up to " +
           std::to_string(maxAbs()) +
           " codes (tolerance " + std::to_string(tolerance) + ")";
  }
  return pathA + " vs " + pathB + ": " + why;
}

std::string diffText(const DiffReport& r) {
  std::string o;
  char buf[200];
  for (size_t k = 0; k < r.tables.size(); ++k) {
    const TableDiff& t = r.tables[k];
    o += (k ? "\n" : "") + std::string("A: ") + t.labelA + "\nB: " + t.labelB + "\n";
    if (t.differingNodes == 0) {
      o += "  identical outputs\n";
    } else {
      o += "  channel  max |d|  mean |d|  nodes differing\n";
      static const char* const kNames[3] = {"red", "green", "blue"};
      for (int c = 0; c < 3; ++c) {
        std::snprintf(buf, sizeof buf, "  %-7s  %7u  %8.3f  %15u\n", kNames[c], t.channel[c].maxAbs,
                      t.channel[c].meanAbs, t.channel[c].differing);
        o += buf;
      }
      std::snprintf(buf, sizeof buf,
                    "  %u of %u nodes differ; CIEDE2000 between the outputs: mean %.3f, 95th %.3f, max %.3f\n",
                    t.differingNodes, kEntries, t.deMean, t.deP95, t.deMax);
      o += buf;
      o += "  worst nodes:   levels        input            A output         B output        dE00\n";
      for (const auto& n : t.worst) {
        std::snprintf(buf, sizeof buf, "    entry %4u %-12s %s   %s   %s   %6.3f\n", n.index,
                      gridLevels(n.index).c_str(), codes(n.in).c_str(), codes(n.a).c_str(), codes(n.b).c_str(),
                      n.de);
        o += buf;
      }
    }
    if (t.inputMismatches)
      o += "  note: the inputs differ at " + std::to_string(t.inputMismatches) + " nodes (not one grid)\n";
  }
  for (const auto& n : r.notes) o += "note: " + n + "\n";
  std::snprintf(buf, sizeof buf, "%zu table pair%s compared; largest code difference %u (tolerance %u): %s\n",
                r.tables.size(), r.tables.size() == 1 ? "" : "s", r.maxAbs(), r.tolerance,
                r.withinTolerance() ? "within tolerance" : "DIFFERENT");
  return o + buf;
}

std::string diffJson(const DiffReport& r) {
  std::string o = "{\"a\":" + jsonString(r.pathA) + ",\"b\":" + jsonString(r.pathB) +
                  ",\"tables_a\":" + std::to_string(r.countA) + ",\"tables_b\":" + std::to_string(r.countB) +
                  ",\"tolerance\":" + std::to_string(r.tolerance) + ",\"max_abs\":" + std::to_string(r.maxAbs()) +
                  ",\"within_tolerance\":" + (r.withinTolerance() ? "true" : "false") + ",\n \"pairs\":[";
  for (size_t k = 0; k < r.tables.size(); ++k) {
    const TableDiff& t = r.tables[k];
    o += (k ? ",\n  " : "\n  ") + std::string("{\"a\":") + jsonString(t.labelA) + ",\"b\":" + jsonString(t.labelB) +
         ",\"channels\":[";
    for (int c = 0; c < 3; ++c)
      o += (c ? "," : "") + std::string("{\"max_abs\":") + std::to_string(t.channel[c].maxAbs) +
           ",\"mean_abs\":" + jsonNumber(t.channel[c].meanAbs) + ",\"differing\":" +
           std::to_string(t.channel[c].differing) + "}";
    o += "],\"differing_nodes\":" + std::to_string(t.differingNodes) + ",\"input_mismatches\":" +
         std::to_string(t.inputMismatches) + ",\"de2000\":{\"mean\":" + jsonNumber(t.deMean) +
         ",\"p95\":" + jsonNumber(t.deP95) + ",\"max\":" + jsonNumber(t.deMax) + "},\"worst\":[";
    for (size_t i = 0; i < t.worst.size(); ++i) {
      const NodeDiff& n = t.worst[i];
      o += (i ? "," : "") + std::string("{\"index\":") + std::to_string(n.index) + ",\"in\":" + jsonArray(n.in) +
           ",\"a\":" + jsonArray(n.a) + ",\"b\":" + jsonArray(n.b) + ",\"de\":" + jsonNumber(n.de) + "}";
    }
    o += "]}";
  }
  return o + "],\n \"notes\":" + jsonStrings(r.notes) + "}\n";
}

}  // namespace pctool
