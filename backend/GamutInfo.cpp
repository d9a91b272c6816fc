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
  if (mHookFilled[hookIndex]) return 0;

  // Kept even when the file is missing: later calls use the header-only table. By design.
  mHookFilled[hookIndex] = true;
  lut3d_info& lut = mHookLut[hookIndex];
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
  // A short file leaves the rest zero; not reported.
  mHookWhole[hookIndex] = LutTextFile::read(in, &lut) == LutTextFile::kValueCount;
  fclose(in);
  mHookVerdict[hookIndex] = tableVerdict(lut);
  return 0;
}

bool PanelCorvaneBE::fillGamutInfo(lut3d_info* target, int mode) {
  return fillGamutInfo(target, mode, Lut3DCacheManager::buildAreaTables(panelIndex()));
}

bool PanelCorvaneBE::mayHand(const char* fn, TableVerdict verdict, int mode) {
  if (verdict == TableVerdict::kCodeBeyondRange && hardenedFirst(HardenedCause::kCodeBeyondRange)) {
    PC_LOGE_AS(fn, "hardened: table of mode %d has a code above 4095, not applied\n", mode);
  } else if (verdict == TableVerdict::kAllZero && hardenedFirst(HardenedCause::kAllZero)) {
    PC_LOGE_AS(fn, "hardened: table of mode %d is all zero, not applied\n", mode);
  }
  return verdict == TableVerdict::kSound;
}

bool PanelCorvaneBE::fillGamutInfo(lut3d_info* target, int mode, const FrameTables& tables) {
  if (target == nullptr) return false;
  const bool strict = hardened();
  const int hook = mode - kHookModeFirst;
  if (hook >= 0 && hook < kNumHooks) {
    const bool read = init3dlutByTxt(hook) == 0;  // the file is looked at once, on first use
    if (strict && !mHookWhole[hook]) {
      if (hardenedFirst(HardenedCause::kUnreadTable)) {
        PC_LOGE("hardened: hook table %d missing or short, not applied\n", mode);
      }
      return false;
    }
    if (read) {
      if (strict && !mayHand(__func__, mHookVerdict[hook], mode)) return false;
      if (dbgOn(kDbgVerbose)) PC_LOGD("isLut3dHook %d\n", mode);
      std::memcpy(target, &mHookLut[hook], sizeof(lut3d_info));
      return true;
    }
  }
  // A hook whose file is missing lands here with its own mode number as the index.
  const int count = tables.present ? static_cast<int>(tables.slots) : 0;
  if (mode < 0 || mode >= count || tables.table[mode] == nullptr) {
    PC_LOGE("GAMUT INFO is NULL.\n");
    return false;
  }
  const lut3d_info& source = *tables.table[mode];
  if (strict) {
    const bool judged = ((tables.judged >> mode) & 1) != 0;
    if (!mayHand(__func__, judged ? tables.verdict[mode] : tableVerdict(source), mode)) return false;
  }
  std::memcpy(target, &source, sizeof(lut3d_info));
  return true;
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
  return calLut3d(mode, brightness, Lut3DCacheManager::buildAreaTables(panelIndex()));
}

int PanelCorvaneBE::calLut3d(int mode, int brightness, const FrameTables& tables) {
  Lut3DCacheManager::calLut3d(panelIndex(), static_cast<unsigned>(mode),
                              static_cast<unsigned>(brightness), tables);
  return 0;
}

int PanelCorvaneBE::calLut3dDelta() {
  Lut3DCacheManager::calLut3dDelta(panelIndex());
  return 0;
}

void PanelCorvaneBE::dump() { PC_LOGD("%s %s\n", __DATE__, __TIME__); }

}  // namespace postblend
