#include "tools/lib/device/PropertyFile.h"


#include "tools/lib/common/FileAccess.h"

namespace pctool {

using postblend::PropertyProblem;

namespace {
const char* const kSwitches[] = {"LogLevel",
                                 "ParamVersion",
                                 "FWVersion",
                                 "PanelCalibration",
                                 "PanelNitsCalibration",
                                 "GammaCorrection",
                                 "CMDebug",
                                 "GCDisable",
                                 "IGCDisable",
                                 "GamutDisable",
                                 "PaConfigDisable",
                                 "DitherConfigDisable",
                                 "PaDitherConfigDisable",
                                 "inParam100nits"};

bool isSwitch(const std::string& key) {
  for (const char* k : kSwitches)
    if (key == k) return true;
  return false;
}
}  // namespace

bool PropertyFile::load(const std::string& hostPath, std::string& error) {
  mEntries.clear();
  mNames.clear();
  mDiagnosis = {};
  std::string text;
  if (!readInputFile(hostPath, postblend::kMaxPropertyBytes, text, error)) return false;
  postblend::PropertyRead read = postblend::readProperties(text);
  mDiagnosis = read.diagnosis;
  if (mDiagnosis.problem == PropertyProblem::TooLarge) {
    error = mDiagnosis.message;
    return false;
  }
  for (auto& line : read.accepted) {
    if (!mEntries.emplace(line.key, line.value).second) continue;
    if (!isSwitch(line.key))
      mNames.emplace_back(line.key, postblend::panelIndexOf(line.value));
  }
  return true;
}

uint32_t PropertyFile::panelOf(const std::string& name) const {
  for (const auto& [n, panel] : mNames)
    if (n == name) return panel;
  return 0;
}

std::string PropertyFile::namesText() const {
  std::string s;
  for (const auto& n : mNames) s += (s.empty() ? "" : ", ") + n.first;
  return s.empty() ? "none" : s;
}

}  // namespace pctool
