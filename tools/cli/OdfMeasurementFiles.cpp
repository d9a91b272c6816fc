#include "tools/cli/OdfMeasurementFiles.h"

#include <cstdio>

#include "tools/cli/ExitStatus.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/measurements/OdfFromMeasurements.h"
#include "tools/lib/measurements/PatchSets.h"

namespace pctool {

namespace {
int fail(const std::string& line) {
  fprintf(stderr, "panelcorvane odf: %s\n", line.c_str());
  return kBadInput;
}
}  // namespace

int writeOdfPatchesTi1(const std::string& out) {
  const std::string text = formatCgats(ti1Table(odfPatches(), "panelcorvane optical data patches"));
  std::string why;
  return writeWholeFile(out, text, why) ? kOk : fail(out + ": " + why);
}

int writeOdfFromTi3(const std::string& out, const std::string& ti3) {
  Measurements m;
  std::string error;
  if (!readMeasurements(ti3, &m, &error)) return fail(error);
  std::vector<std::string> warnings = m.warnings;
  OdfValues values;
  std::vector<std::string> info;
  if (!odfFromMeasurements(m, &values, &warnings, &error, &info)) return fail(error + "; " + out + " not written");
  for (const auto& w : warnings) fprintf(stderr, "panelcorvane odf: %s: warning: %s\n", ti3.c_str(), w.c_str());
  const std::vector<Finding> findings = checkOpticalData(values.v);
  for (const auto& f : findings) fprintf(stderr, "panelcorvane odf: %s: %s\n", ti3.c_str(), f.line().c_str());
  if (anyRefused(findings)) return fail(out + " not written");
  if (!writeOdfFile(out, values, &error)) return fail(error);
  printf("wrote %s from %s\n", out.c_str(), ti3.c_str());
  for (const auto& line : info) printf("  %s\n", line.c_str());
  return kOk;
}

}  // namespace pctool
