// The backend's table sources: the four hook tables read from text files on first use, the
// panel's cached table array, and the thin wrappers around the cache and brightness code.
#define LOG_TAG "PanelCorvaneBE"

#include <cstdio>
#include <cstring>

#include "backend/LutTextFile.h"
#include "backend/PanelCorvaneBE.h"
#include "base/DeviceIo.h"
#include "base/Log.h"
#include "cache/Lut3DCacheManager.h"

namespace postblend {

namespace {

// By hook index = mode - 305.
constexpr const char* kHookFiles[PanelCorvaneBE::kNumHooks] = {
    "/odm/etc/PanelCorvane/3D-Lut_Center_sRGB.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Center_P3.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Enhance_sRGB.txt",
    "/odm/etc/PanelCorvane/3D-Lut_Enhance_P3.txt",
};
constexpr uint32_t kHookLutIdBase = 300;

}  // namespace

int PanelCorvaneBE::init3dlutByTxt(int hookIndex) {
  if (hookIndex < 0 || hookIndex >= kNumHooks) return -1;
  if (mHookLut[hookIndex]) return 0;

  // Kept even when the file is missing: later calls use the header-only table. By design.
  mHookLut[hookIndex].reset(new lut3d_info());
  lut3d_info& lut = *mHookLut[hookIndex];
  lut.flags = 0;
  lut.lut3d_id = kHookLutIdBase + static_cast<uint32_t>(hookIndex);
  lut.uniform = 1;
  lut.num_entries = kLut3dEntries;

  const char* path = kHookFiles[hookIndex];
  FILE* in = devio::fopen(path, "r");
  PC_LOGD("- %s\n", path);
  if (in == nullptr) {
    PC_LOGE("fail to open output file!\n");
    return -1;
  }
  LutTextFile::read(in, &lut);  // a short file leaves the rest zero; not reported
  fclose(in);
  return 0;
}

void PanelCorvaneBE::fillGamutInfo(lut3d_info* target, int mode) {
  if (target == nullptr) return;
  const int hook = mode - kHookModeFirst;
  if (hook >= 0 && hook < kNumHooks && init3dlutByTxt(hook) == 0) {
    if (dbgOn(kDbgVerbose)) PC_LOGD("isLut3dHook %d\n", mode);
    std::memcpy(target, mHookLut[hook].get(), sizeof(lut3d_info));
    return;
  }
  // A hook whose file is missing lands here with its own mode number as the index.
  lut3d_info* luts = nullptr;
  const int count = Lut3DCacheManager::getLutArrayPointer(panelIndex(), &luts);
  if (mode < 0 || mode >= count || luts == nullptr) {
    PC_LOGE("GAMUT INFO is NULL.\n");
    return;
  }
  std::memcpy(target, &luts[mode], sizeof(lut3d_info));
}

int PanelCorvaneBE::loadCfgFile(bool matched) {
  PC_LOGE("%s\n", displayName());  // the owner keeps its name terminated

  const uint32_t panel = panelIndex();
  Lut3DCacheManager::init(panel, sIsCMDebugOn.load(std::memory_order_relaxed) ? 1 : 0);
  const int32_t r =
      Lut3DCacheManager::loadCacheFromFile(panel, sFWVersion.load(std::memory_order_relaxed),
                                           matched, sParamVersion.load(std::memory_order_relaxed));
  if (r != 0) return r;
  Lut3DCacheManager::calLut3dDelta(panel);
  return 0;
}

int PanelCorvaneBE::calLut3d(int mode, int brightness) {
  Lut3DCacheManager::calLut3d(panelIndex(), static_cast<unsigned>(mode),
                              static_cast<unsigned>(brightness));
  return 0;
}

int PanelCorvaneBE::calLut3dDelta() {
  Lut3DCacheManager::calLut3dDelta(panelIndex());
  return 0;
}

void PanelCorvaneBE::dump() { PC_LOGD("%s %s\n", __DATE__, __TIME__); }

}  // namespace postblend
