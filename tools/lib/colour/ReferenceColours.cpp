#include "tools/lib/colour/ReferenceColours.h"

#include "base/PanelCorvaneBase.h"

namespace pctool {

std::vector<ReferenceColour> referenceColours() {
  static const char* const kNames[21] = {
      "white",     "grey 224", "grey 192",   "grey 160", "grey 128",     "grey 96",
      "grey 64",   "grey 32",  "black",      "yellow",   "dark yellow",  "cyan",
      "dark cyan", "green",    "dark green", "magenta",  "dark magenta", "red",
      "dark red",  "blue",     "dark blue"};
  postblend::PanelCorvaneBase base;  // owns the plugin's reference colour table
  std::vector<ReferenceColour> out;
  for (int i = 0; i < postblend::PanelCorvaneBase::kNumRefColors; ++i)
    out.push_back(
        {kNames[i], {base.mRefColors[i][0], base.mRefColors[i][1], base.mRefColors[i][2]}});
  return out;
}

std::vector<uint32_t> greyRampLevels() {
  std::vector<uint32_t> v;
  for (uint32_t g = 0; g < 256; g += 16) v.push_back(g);
  v.push_back(255);
  return v;
}

}  // namespace pctool
