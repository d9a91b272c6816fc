#include "tools/lib/verify/VerifySubject.h"

#include "frontend/TablePlan.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace fe = postblend::fe;

namespace {

bool endsWith(const std::string& s, const std::string& tail) {
  return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

std::string setMeaning(int set) {
  const bool two = set == fe::kOdf2max || set == fe::kOdf2low;
  const bool max = set == fe::kOdf1max || set == fe::kOdf2max;
  return std::string("set ") + fe::kOdfSetNames[set] + ", which feeds the " + (max ? "full-brightness" : "100-nit") +
         " tables of " + (two ? "Vivid and LsRGB" : "Nature and Cinema");
}

}  // namespace

std::vector<std::string> VerifySubject::lines() const {
  return {"mode: " + (mode.empty() ? std::string("not known (name it with --mode NAME)") : mode), "table: " + table,
          "target: " + target, "optical data: " + odf + (odfSet.empty() ? "" : " (" + odfSet + ")")};
}

VerifySubject describeSubject(const LoadedTable& table, int cacheIndex, const std::string& targetPath,
                              const std::string& odfPath, const std::string& mode) {
  VerifySubject s;
  s.table = table.label + " (" + kindName(table.kind) + ")";
  s.target = targetPath;
  s.odf = odfPath;
  int tableSet = -1;
  if (!mode.empty()) {
    s.mode = mode;
  } else if (table.kind == FileKind::Cache && cacheIndex >= 0 && cacheIndex < fe::kMaxTables) {
    s.mode = std::string(fe::kModeNames[cacheIndex / 2]) + (cacheIndex % 2 ? ", full brightness" : ", 100-nit");
    tableSet = fe::tableInputs(cacheIndex, false).odf;
  } else {
    const std::string name = fileName(targetPath);
    for (int k = 0; k < fe::kTargetFiles; ++k)
      if (endsWith(name, fe::kTargetSuffix[k]))
        s.mode = std::string(fe::kModeNames[k % fe::kModes]) + (k >= fe::kModes ? " (its 100-nit target)" : "");
  }
  int odfSet = -1;
  const std::string odfName = fileName(odfPath);  // PANEL_2_max.odf, Loading_ON_2_max_d1.odf
  for (int k = 0; k < fe::kOdfSets; ++k)
    for (const char* end : {".odf", "_d1.odf"})
      if (endsWith(odfName, std::string("_") + fe::kOdfSetNames[k] + end)) odfSet = k;
  s.odfSet = odfSet >= 0 ? setMeaning(odfSet) : "its measurement set is not known from the file name";
  if (tableSet >= 0 && odfSet >= 0 && tableSet != odfSet)
    s.notes.push_back("the table of " + s.mode + " is made from measurement set " + fe::kOdfSetNames[tableSet] +
                      "; the optical data given is set " + fe::kOdfSetNames[odfSet]);
  return s;
}

}  // namespace pctool
