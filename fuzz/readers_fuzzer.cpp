// The plugin's readers of outside input, from memory: the property file, LUT text, optical data,
// targets, the error-check file and the table cache. No file and no host layer is involved, so
// this target builds for a device as it is. Input: one byte choosing the reader, then the bytes.
#include <memory>
#include <string>
#include <vector>

#include "backend/LutTextFile.h"
#include "base/PanelCorvaneBase.h"
#include "cache/CacheFileReader.h"
#include "config/PropertyReader.h"
#include "frontend/OdfCheckReader.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"

using namespace postblend;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int reader = data[0] % 6;
  const uint8_t* bytes = data + 1;
  const size_t n = size - 1;
  const std::string text(reinterpret_cast<const char*>(bytes), n);
  switch (reader) {
    case 0: {
      const PropertyRead read = readProperties(text);
      for (const PropertyLine& entry : read.accepted) {
        propertyInt(entry.value);
        panelIndexOf(entry.value);
      }
      break;
    }
    case 1: {
      auto lut = std::make_unique<lut3d_info>();
      LutTextFile::parse(text.data(), text.size(), lut.get());
      break;
    }
    case 2: {
      PanelCorvaneBase::OpticalDataFile odf{};
      readOdf(bytes, n, odf);
      break;
    }
    case 3:
      readTarget(text);
      break;
    case 4: {
      PanelCorvaneBase::ODFErrorCheck check{};
      readOdfCheck(text, check);
      break;
    }
    default: {
      std::vector<lut3d_info> tables;
      readCacheImage(bytes, n, tables);
      break;
    }
  }
  return 0;
}
