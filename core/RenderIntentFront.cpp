// Turns the content's gamut and render intent (or a mode forced from outside) into the mode
// number whose table the backend applies. Runs for every frame configuration: no heap use.
#define LOG_TAG "PanelCorvane"

#include <utils/CallStack.h>

#include <cstdio>

#include "backend/ModeTable.h"
#include "backend/PanelCorvaneBE.h"
#include "base/Hardening.h"
#include "base/Log.h"
#include "base/Trace.h"
#include "cache/Lut3DCacheManager.h"
#include "cache/TablePublication.h"
#include "core/PanelCorvane.h"

namespace postblend {

namespace {
constexpr uint32_t kMaxLevel = 8191;

// The level an interpolation works with: as set, or hardened, clamped to 0..8191 (a negative one
// arrives as a large unsigned value).
uint32_t interpolationLevel(uint32_t brightness) {
  if (!hardened() || brightness <= kMaxLevel) return brightness;
  const uint32_t level = static_cast<int32_t>(brightness) < 0 ? 0 : kMaxLevel;
  if (hardenedFirst(HardenedCause::kLevelClamped)) {
    PC_LOGE_AS("ProcessModeRenderIntent", "hardened: level %d clamped to %d\n",
               static_cast<int>(brightness), static_cast<int>(level));
  }
  return level;
}

constexpr int kGamutSrgb = 1;
constexpr int kGamutP3 = 12;
constexpr int kModeBypass = -1;
constexpr int kModeAllOff = 100;
constexpr int kModeRegenerate = 104;
}  // namespace

int PanelCorvane::chooseMode(int gamut, int intent, int forced) {
  if (forced >= 0) {
    int mode = forced;
    if (forced == kModeRegenerate) {
      if (sIsCMDebugOn) {
        PC_LOGD_AS("ProcessModeRenderIntent", "0x146 -> left sRgb 6\n");
        mode = 6;
      } else {
        mode = 0;
      }
    }
    PC_LOGD_AS("ProcessModeRenderIntent",
               "Be set manually or EM,this mode(%d->%d) gets processed with the highest "
               "priority.\n",
               forced, mode);
    return mode;
  }

  const bool cmDebug = sIsCMDebugOn;
  int mode;
  const char* line;
  if (intent == 304 || (intent == 1 && gamut == kGamutSrgb)) {
    mode = 1;
    line = "1-%s: sRGB-Vivid-1(gamut:%d,it:%d)\n";
  } else if (intent == 301 || (intent == 256 && gamut == kGamutSrgb)) {
    mode = 3;
    line = "1-%s: sRGB-Nature-3(gamut:%d,it:%d)\n";
  } else if (intent == 302 || (intent == 258 && gamut == kGamutSrgb)) {
    mode = 5;
    line = "1-%s: sRGB-Cinema-5(gamut:%d,it:%d)\n";
  } else if (intent == 303 && cmDebug) {
    mode = 7;
    line = "1-%s: sRGB-LsRGB-7(gamut:%d,it:%d)\n";
  } else if (intent == 259) {
    mode = kModeBypass;
    line = "1-%s: colors bypass(gamut:%d,it:%d)\n";
  } else if (intent >= 305 && intent <= 310 && cmDebug) {
    mode = intent;
    line = "1-%s: CM-Blit-by-file(gamut:%d,it:%d)\n";
  } else if (intent == 1 && gamut == kGamutP3) {
    mode = 5;
    line = "1-%s: P3-Cinema-5(gamut:%d,it:%d)\n";
  } else if (gamut == kGamutP3) {
    mode = kModeBypass;
    line = "1-%s: hdr bypass(gamut:%d,it:%d)\n";
  } else if (intent == 300) {
    mode = kModeBypass;
    line = "1-%s: cwb bypass(gamut:%d,it:%d)\n";
  } else if (intent == 264) {
    mode = kModeBypass;
    line = "1-%s: 1000P bypass(gamut:%d,it:%d)\n";
  } else {
    mode = kModeBypass;
    line = "1-%s: NULL bypass(gamut:%d,it:%d)\n";
  }
  if (mode != mPreMode) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    __android_log_print(ANDROID_LOG_DEBUG, LOG_TAG, line, "ProcessModeRenderIntent", gamut, intent);
#pragma GCC diagnostic pop
  }
  return mode;
}

int PanelCorvane::offeredMode(int mode, const TableSet* set) {
  const int table = tableOfMode(mode);
  if (table < 0) return mode;  // no table of the panel's array
  if (set != nullptr && static_cast<uint32_t>(table) < set->made) return mode;
  if (hardenedFirst(HardenedCause::kModeNotOffered)) {
    PC_LOGE_AS("ProcessModeRenderIntent", "hardened: mode %d has no tables, mode %d kept\n", mode,
               mPreMode);
  }
  return mPreMode;
}

FrameTables PanelCorvane::frameTables(const TableSet* set) {
  FrameTables t;
  if (set == nullptr) {
    // Withdrawn (a DeInit of this panel): as released tables, whose count survives.
    t.slots = mPanelIndex < Lut3DCacheManager::kNumPanels
                  ? Lut3DCacheManager::sNumOfLut3D[mPanelIndex].load(std::memory_order_relaxed)
                  : 0;
    return t;
  }
  if (mScratchGeneration != set->generation) {
    // A new set: its full-brightness tables until the brightness next changes.
    for (uint32_t k = 1; k < set->count; k += 2) {
      mOddScratch[k / 2] = set->tables[k];
      mOddVerdict[k / 2] = set->verdict[k];
    }
    mOddJudged = ~0u;
    mScratchGeneration = set->generation;
  }
  t.slots = set->count;
  t.present = true;
  t.deltas = set->deltas.get();
  for (uint32_t k = 0; k < set->count; ++k) {
    if (k % 2 == 1) {
      t.table[k] = t.odd[k] = &mOddScratch[k / 2];
      t.judged |= mOddJudged & (1u << k);
      t.verdict[k] = mOddVerdict[k / 2];
    } else {
      t.table[k] = &set->tables[k];
      t.judged |= 1u << k;
      t.verdict[k] = set->verdict[k];
    }
  }
  return t;
}

void PanelCorvane::judgeOddScratch(int mode, FrameTables& tables) {
  const uint32_t bit = 1u << mode;
  // Hardened, the rewritten table is judged once here rather than on every frame that hands it.
  if (hardened() && tables.odd[mode] != nullptr) {
    tables.verdict[mode] = mOddVerdict[mode / 2] = tableVerdict(*tables.odd[mode]);
    tables.judged |= bit;
    mOddJudged |= bit;
  } else {
    tables.judged &= ~bit;
    mOddJudged &= ~bit;
  }
}

int PanelCorvane::ProcessModeRenderIntent(const ScPayload& input, ScPayload* output) {
  if (input.payload == 0 || input.len < sizeof(ModeRenderInputParams)) {
    PC_LOGE("payload error!\n");
    return 0;
  }
  const auto& params =
      *reinterpret_cast<const ModeRenderInputParams*>(static_cast<uintptr_t>(input.payload));
  const int gamut = static_cast<int>(params.color_mode.gamut);
  const int intent = static_cast<int>(params.color_mode.intent);
  const int hdr = params.valid_meta_data ? 1 : 0;
  sCurrentPanel = static_cast<int32_t>(mPanelIndex);

  traceMark("ProcessModeRenderIntent");
  if (dbgOn(kDbgVerbose)) {
    PC_LOGD("++ %s:gamut:%d,intent:%d-->%d, Premode:%d, hidl-mode:%d, sNeedUpdate:%d, HDR:%d,\n",
            mName, gamut, mPreIntent, intent, mPreMode, static_cast<int>(sCFGMode.load()),
            static_cast<int>(sNeedUpdate.load()), hdr);
  }
  if (dbgOn(kDbgCallStack)) android::CallStack stack(LOG_TAG);

  if (sIsByPass) {
    sNeedUpdate = false;
    return 0;
  }
  // One reading per frame, so the check below and the mode chosen agree.
  const int32_t forced = sCFGMode;
  const bool haveTables = mTablesReady;
  // The panel's set for the whole frame, pinned after the flag that a job sets once it has
  // published: never waits, and a job publishing meanwhile frees it only after this frame.
  const TablePublication::Pin set = TablePublication::pin(mPanelIndex);
  if (!haveTables && forced != kModeAllOff) {
    sNeedUpdate = false;
    if (dbgOn(kDbgEntry)) PC_LOGD("init failed\n");
    return 0;
  }

  if (intent != mPreIntent || gamut != mPreGamut) {
    PC_LOGD("Panel(%d) %s, Premode:%d, manual-mode:%d, sNeedUpdate:%d, valid_meta_data:%d\n",
            static_cast<int>(mPanelIndex), mName, mPreMode, static_cast<int>(forced),
            static_cast<int>(sNeedUpdate.load()), hdr);
    if (hdr) {
      const ColorMetaData& meta = params.meta_data;
      PC_LOGD("meta:%d, range:%d, dynamicMetaDataValid:%d, gamma:%d colorPrimaries:%d\n", hdr,
              static_cast<int>(meta.range), static_cast<int>(meta.dynamicMetaDataValid),
              static_cast<int>(meta.transfer), static_cast<int>(meta.colorPrimaries));
    }
    mPreIntent = intent;
    mPreGamut = gamut;
  }

  int mode = chooseMode(gamut, intent, forced);
  if (hardened()) mode = offeredMode(mode, set.get());
  if (mode != mPreMode) refresh();

  if (mode != kModeBypass) {
    FrameTables tables = frameTables(set.get());
    const uint32_t brightness = sBrightness;
    if (mode <= 7) {
      if (dbgOn(kDbgTrace)) {
        char label[128];
        snprintf(label, sizeof(label), "calLut3d %d", static_cast<int>(brightness));
        traceMark(label);
      }
      if (brightness != mLastTableBrightness) {
        if (mBE) mBE->calLut3d(mode, static_cast<int>(interpolationLevel(brightness)), tables);
        mLastTableBrightness = brightness;
        if (mode % 2 == 1) judgeOddScratch(mode, tables);
      }
    }
    traceMark("setLut3d");
    if (mBE) mBE->ProcessModeRenderIntent(input, output, mode, tables);
  }

  mPreMode = mode;
  sNeedUpdate = false;
  if (dbgOn(kDbgVerbose)) {
    PC_LOGD("-- %s:gamut:%d,intent:%d-->%d, mode:%d, hidl-mode:%d, sNeedUpdate:%d, HDR:%d,\n",
            mName, gamut, mPreIntent, intent, mode, static_cast<int>(sCFGMode.load()), 0, hdr);
  }
  return 0;
}

}  // namespace postblend
