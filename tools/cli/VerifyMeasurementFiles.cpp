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

bool readMeasuredCheck(const std::string& ti3, const TargetParm& target, MeasuredCheck& out) {
  Measurements m;
  std::string error;
  if (!readMeasurements(ti3, &m, &error) || !checkMeasured(m, target, &out, &error)) {
    fprintf(stderr, "panelcorvane verify: %s\n", error.c_str());
    return false;
  }
  return true;
}

}  // namespace pctool
