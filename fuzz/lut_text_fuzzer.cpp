// LUT text files: the hook tables and the debug table, read as the backend reads them when a
// frame asks for their mode, and the table that comes out checked as the verbose log level
// checks it. Input: one byte (bits 0-1 the hook, bit 2 also the debug table, bit 3 verbose),
// then the file.
#include <memory>

#include "backend/PanelCorvaneBE.h"
#include "base/Algorithm.h"
#include "base/PanelCorvaneBase.h"
#include "fuzz/support/FuzzSupport.h"
#include "postblend/color_records.h"

using namespace postblend;

constexpr const char* kHookFiles[] = {
    "/odm/etc/PanelCorvane/3D-Lut_Center_sRGB.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Center_P3.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Enhance_sRGB.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Enhance_P3.txt",
};
constexpr const char* kDebugFile = "/odm/etc/PanelCorvane/Lut3D.txt";

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int hook = data[0] & 3;
  const bool debugTable = (data[0] & 4) != 0;
  PanelCorvaneBase::sDebug = (data[0] & 8) != 0 ? 0x03 : 0;
  pcfuzz::writeDeviceFile(kHookFiles[hook], data + 1, size - 1);
  if (debugTable) pcfuzz::writeDeviceFile(kDebugFile, data + 1, size - 1);

  PanelCorvaneBase owner;
  PanelCorvaneBE be(&owner);
  auto gamut = std::make_shared<GamutConfig>();
  HwConfigOutputParams out;
  out.payload.emplace_back("PostBlendGamut", gamut);
  ScPayload in{}, outP{24, 0, 0, reinterpret_cast<uint64_t>(&out)};
  be.ProcessModeRenderIntent(in, &outP, PanelCorvaneBE::kHookModeFirst + hook);
  Algorithm::check3DLut(gamut->gamut_info);
  if (debugTable) be.ProcessModeRenderIntent(in, &outP, 50);

  pcfuzz::removeDeviceFile(kHookFiles[hook]);
  if (debugTable) pcfuzz::removeDeviceFile(kDebugFile);
  return 0;
}
