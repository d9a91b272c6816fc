#include "tools/lib/device/DeviceDisplays.h"

#include "frontend/TablePlan.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace fe = postblend::fe;

std::string DeviceDisplay::unjudgedText() const {
  return name + ": its files cannot be looked at (" + error + ")";
}

std::vector<DeviceDisplay> deviceDisplays(const std::string& dir, const PropertyFile& prop) {
  std::vector<DeviceDisplay> out;
  for (const auto& [name, panel] : prop.displayNames()) {
    DeviceDisplay d{name, panel, ""};
    if (pathExists(dir + fe::opticalDataPath(fe::OdfOrigin::Golden, panel, name, 0), d.error) || !d.error.empty())
      out.push_back(d);
  }
  return out;
}

}  // namespace pctool
