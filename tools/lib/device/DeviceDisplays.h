// The displays of a device tree, as simulate's pages, `report` and a lot take them: the display
// names of the property file that have golden optical data (<name>_1_max.odf). A display name
// becomes part of a path; a display whose files cannot be looked at (a name too long for the
// file system, a folder that cannot be read) is listed with the reason, never left out unsaid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/device/PropertyFile.h"

namespace pctool {

struct DeviceDisplay {
  std::string name;
  uint32_t panel = 0;
  std::string error;  // why its files cannot be looked at; empty when they can

  // "NAME: its files cannot be looked at (File name too long)".
  std::string unjudgedText() const;
};

// In property file order.
std::vector<DeviceDisplay> deviceDisplays(const std::string& dir, const PropertyFile& prop);

}  // namespace pctool
