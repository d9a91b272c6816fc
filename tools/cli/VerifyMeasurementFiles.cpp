#include "tools/cli/VerifyMeasurementFiles.h"

#include <cstdio>

#include "tools/cli/ExitStatus.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/measurements/PatchSets.h"

namespace pctool {

int writeVerifyPatchesTi1(const std::string& out) {
  const std::string text = formatCgats(ti1Table(verifyPatches(), "panelcorvane verification patches"));
  std::string why;
  if (writeWholeFile(out, text, why)) return kOk;
  fprintf(stderr, "panelcorvane verify: %s: %s\n", out.c_str(), why.c_str());
  return kBadInput;
}

bool readMeasuredCheck(const std::string& ti3, const std::string& chart, const TargetParm& target, MeasuredCheck& out) {
  Measurements m;
  std::string error;
  std::vector<Patch> patches;
  if ((!chart.empty() && !readChart(chart, &patches, &error)) || !readMeasurements(ti3, &m, &error) ||
      !checkMeasured(m, target, &out, &error, chart.empty() ? nullptr : &patches, chart)) {
    fprintf(stderr, "panelcorvane verify: %s\n", error.c_str());
    return false;
  }
  for (const auto& w : m.warnings) fprintf(stderr, "panelcorvane verify: %s: warning: %s\n", ti3.c_str(), w.c_str());
  return true;
}

}  // namespace pctool
