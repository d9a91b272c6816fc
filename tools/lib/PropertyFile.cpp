#include "tools/lib/PropertyFile.h"

#include <cstdlib>
#include <fstream>

#include "tools/lib/FileAccess.h"

namespace pctool {

namespace {
const char* const kSwitches[] = {"LogLevel",    "ParamVersion", "FWVersion",           "PanelCalibration",
                                 "PanelNitsCalibration",        "GammaCorrection",     "CMDebug",
                                 "GCDisable",   "IGCDisable",   "GamutDisable",        "PaConfigDisable",
                                 "DitherConfigDisable",         "PaDitherConfigDisable", "inParam100nits"};

bool isSwitch(const std::string& key) {
  for (const char* k : kSwitches)
    if (key == k) return true;
  return false;
}

uint32_t panelOfValue(const std::string& value) {
  const uint32_t v = static_cast<uint32_t>(std::atoi(value.c_str()));
  return v >= 100 && v <= 199 ? 1u : 0u;
}
}  // namespace

bool PropertyFile::load(const std::string& hostPath, std::string& error) {
  mEntries.clear();
  mNames.clear();
  if (!checkInputFile(hostPath, error)) return false;
  std::ifstream in(hostPath, std::ios::binary);
  std::string text(kMaxPropertyBytes + 1, '\0');
  in.read(&text[0], static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(in.gcount()));
  if (text.size() > kMaxPropertyBytes) {
    error = "larger than " + std::to_string(kMaxPropertyBytes / 1024) + " KiB: not a property file";
    return false;
  }
  size_t pos = 0;
  for (size_t nl; (nl = text.find('\n', pos)) != std::string::npos; pos = nl + 1) {
    const std::string line = text.substr(pos, nl - pos);
    const size_t eq = line.find('=');
    if (line.empty() || line[0] == '#' || eq == std::string::npos) continue;
    const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
    if (!mEntries.emplace(key, value).second) continue;
    if (!isSwitch(key)) mNames.emplace_back(key, panelOfValue(value));
  }
  return true;
}

int PropertyFile::intOr(const std::string& key, int def) const {
  auto it = mEntries.find(key);
  return it == mEntries.end() ? def : std::atoi(it->second.c_str());
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
