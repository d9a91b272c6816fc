// The device's property file (/odm/etc/PanelCorvane/panelcorvane) read the plugin's way, for
// the workbench: lines end at a line feed (text after the last one is ignored), '#' starts a
// comment line, the key is everything before the first '=', nothing is trimmed, the first
// occurrence of a key wins. Keys that are not switches are display names; their value chooses
// the panel: 100..199 the secondary, anything else the primary.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pctool {

constexpr size_t kMaxPropertyBytes = 64 * 1024;

class PropertyFile {
 public:
  // False with a reason when the file is missing or larger than kMaxPropertyBytes.
  bool load(const std::string& hostPath, std::string& error);

  bool has(const std::string& key) const { return mEntries.count(key) != 0; }
  // The value read as atoi would, or `def` when the key is missing.
  int intOr(const std::string& key, int def) const;
  // Display names with their panel index, in file order.
  const std::vector<std::pair<std::string, uint32_t>>& displayNames() const { return mNames; }
  // The panel of a display name: 0 when the name is missing, as in the plugin.
  uint32_t panelOf(const std::string& name) const;
  // "A, B" for messages.
  std::string namesText() const;

 private:
  std::map<std::string, std::string> mEntries;
  std::vector<std::pair<std::string, uint32_t>> mNames;
};

}  // namespace pctool
