// The plugin's readers of outside input, from memory: the property file (with the number rules
// on every value it keeps), LUT text, optical data, targets, the error-check file and the table
// cache. No file and no host layer is involved, so this target builds for a device as it is.
// Input: one byte choosing the reader, then the bytes.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backend/LutTextFile.h"
#include "cache/CacheFileReader.h"
#include "config/PropertyReader.h"
#include "frontend/OdfCheckReader.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"

using namespace postblend;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t* bytes = data + 1;
  const size_t n = size - 1;
  const std::string text(reinterpret_cast<const char*>(bytes), n);
  auto lut = std::make_unique<lut3d_info>();
  PanelCorvaneBase::OpticalDataFile odf{};
  PanelCorvaneBase::ODFErrorCheck check{};
  std::vector<lut3d_info> tables;
  const std::function<void()> readers[] = {
      [&] {
        for (const PropertyLine& entry : readProperties(text).accepted) {
          propertyInt(entry.value);
          panelIndexOf(entry.value);
        }
      },
      [&] { LutTextFile::parse(text.data(), text.size(), lut.get()); },
      [&] { readOdf(bytes, n, odf); },
      [&] { readTarget(text); },
      [&] { readOdfCheck(text, check); },
      [&] { readCacheImage(bytes, n, tables); },
  };
  readers[data[0] % 6]();
  return 0;
}
