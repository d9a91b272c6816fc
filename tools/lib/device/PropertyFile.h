// The device's property file (/odm/etc/PanelCorvane/panelcorvane) for the workbench, read by
// the plugin's own reader (config/PropertyReader.h). Keys that are not switches are display
// names; their value chooses the panel: 100..199 the secondary, anything else the primary.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "config/PanelSwitches.h"
#include "config/PropertyReader.h"

namespace pctool {

class PropertyFile {
 public:
  // False with a reason when the file is missing or larger than the reader takes.
  bool load(const std::string& hostPath, std::string& error);

  bool has(const std::string& key) const { return mEntries.count(key) != 0; }
  // The switches as the plugin reads them at Init.
  postblend::PanelSwitches switches() const { return postblend::panelSwitches(mEntries); }
  // Display names with their panel index, in file order.
  const std::vector<std::pair<std::string, uint32_t>>& displayNames() const { return mNames; }
  // The panel of a display name: 0 when the name is missing, as in the plugin.
  uint32_t panelOf(const std::string& name) const;
  // "A, B" for messages.
  std::string namesText() const;
  // The first line the plugin skips or reads in a way its author likely did not mean.
  const postblend::ReadDiagnosis<postblend::PropertyProblem>& diagnosis() const {
    return mDiagnosis;
  }

 private:
  postblend::PropertyEntries mEntries;
  std::vector<std::pair<std::string, uint32_t>> mNames;
  postblend::ReadDiagnosis<postblend::PropertyProblem> mDiagnosis;
};

}  // namespace pctool
