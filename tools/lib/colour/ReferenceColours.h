// The colours a verification looks at: the plugin's 21 reference colours (those its own dE76
// check names), with their names, and the 8-bit grey ramp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pctool {

struct ReferenceColour {
  std::string name;
  uint32_t rgb[3];  // 8-bit
};
std::vector<ReferenceColour> referenceColours();

// 8-bit grey levels of the ramp: 0, 16, ..., 240, 255.
std::vector<uint32_t> greyRampLevels();

}  // namespace pctool
