// Applies a chosen mode number to the colour manager's output payload: finds the post-blend
// assets it offers, switches off those the property file (or the mode) says to, and places
// the mode's 3D table in the gamut asset.
#define LOG_TAG "PanelCorvaneBE"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "backend/LutTextFile.h"
#include "backend/ModeTable.h"
#include "backend/PanelCorvaneBE.h"
#include "base/Algorithm.h"
#include "base/DeviceIo.h"
#include "base/Log.h"
#include "base/Trace.h"
#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"

namespace postblend {

std::atomic<int> PanelCorvaneBE::sGCDisable{-1};
std::atomic<int> PanelCorvaneBE::sIGCDisable{-1};
std::atomic<int> PanelCorvaneBE::sGamutDisable{-1};
std::atomic<int> PanelCorvaneBE::sPaConfigDisable{-1};
std::atomic<int> PanelCorvaneBE::sDitherConfigDisable{-1};
std::atomic<int> PanelCorvaneBE::sPaDitherConfigDisable{-1};

void PanelCorvaneBE::resetAssetSwitches() {
  for (std::atomic<int>* s : {&sGCDisable, &sIGCDisable, &sGamutDisable, &sPaConfigDisable,
                              &sDitherConfigDisable, &sPaDitherConfigDisable}) {
    s->store(-1, std::memory_order_relaxed);
  }
}

namespace {

constexpr const char* kFn = "ProcessModeRenderIntent";

// Post-blend asset names, matched exactly and case-sensitively.
const std::string kPostBlendGamut = "PostBlendGamut";
const std::string kPostBlendPCC = "PostBlendPCC";
const std::string kPostBlendGC = "PostBlendGC";
const std::string kPostBlendIGC = "PostBlendIGC";
const std::string kPostBlendPa = "PostBlendPa";
const std::string kPostBlendDither = "PostBlendDither";
const std::string kPostBlendPaDither = "PostBlendPaDither";
// Offered by the colour manager too, but left alone here.
const std::string kPostBlendCWBDither = "PostBlendCWBDither";
const std::string kPostBlendHdrBlob = "PostBlendHdrBlob";
const std::string kHwCapIgcDither = "HwCapIgcDither";
const std::string kPostBlendDE = "PostBlendDE";
const std::string kPostBlendGameBlob = "PostBlendGameBlob";
const std::string kPostBlendMixerGc = "PostBlendMixerGc";

// In lookup order; the first equal name wins.
enum Slot { kGamut, kPCC, kGC, kIGC, kPA, kDither, kPaDither, kNumSlots };
const std::string* const kSlotNames[kNumSlots] = {
    &kPostBlendGamut, &kPostBlendPCC,    &kPostBlendGC,       &kPostBlendIGC,
    &kPostBlendPa,    &kPostBlendDither, &kPostBlendPaDither,
};

constexpr int kModeDebugFile = 50;
constexpr int kModeAllOff = 100;
constexpr const char* kDebugLutPath = "/odm/etc/PanelCorvane/Lut3D.txt";
constexpr uint32_t kDebugLutId = 50;

using Slots = HwConfigPayload* [kNumSlots];

int slotOf(const std::string& name) {
  for (int s = 0; s < kNumSlots; ++s) {
    if (name == *kSlotNames[s]) return s;
  }
  return -1;
}

bool isOrdinaryMode(int mode) {
  return (mode >= 0 && mode <= 7) ||
         (mode >= PanelCorvaneBE::kHookModeFirst && mode <= kModeVividNoPa);
}

// Dither and PA dither are told as "output" assets in the log; the others are not.
void logSlot(bool closing, int slot, const std::string& name, const HwConfigPayload& cfg) {
  const int on = cfg.enabled ? 1 : 0;
  if (closing) {
    if (slot >= kDither) {
      PC_LOGD_AS(kFn, "--- output hw asset %s(%d)\n", name.c_str(), on);
    } else {
      PC_LOGD_AS(kFn, "--- hw asset %s(%d)\n", name.c_str(), on);
    }
  } else if (slot >= kDither) {
    PC_LOGD_AS(kFn, "output hw asset %s(%d)\n", name.c_str(), on);
  } else {
    PC_LOGD_AS(kFn, "hw asset %s(%d)\n", name.c_str(), on);
  }
}

// Each switch is read on the first ordinary call that finds the property file, then kept.
// Once all six are read the frame path takes no lock here.
void readSwitchesOnce() {
  struct Key {
    std::atomic<int>* value;
    const char* name;
    int def;
  };
  const Key keys[] = {
      {&PanelCorvaneBE::sGCDisable, "GCDisable", 1},
      {&PanelCorvaneBE::sIGCDisable, "IGCDisable", 1},
      {&PanelCorvaneBE::sGamutDisable, "GamutDisable", 0},
      {&PanelCorvaneBE::sPaConfigDisable, "PaConfigDisable", 1},
      {&PanelCorvaneBE::sDitherConfigDisable, "DitherConfigDisable", 0},
      {&PanelCorvaneBE::sPaDitherConfigDisable, "PaDitherConfigDisable", 0},
  };
  for (const Key& k : keys) {
    int value = 0;
    if (k.value->load(std::memory_order_relaxed) == -1 &&
        Prop::readSharedInt(k.name, k.def, &value)) {
      k.value->store(value, std::memory_order_relaxed);
    }
  }
}

// Only the value 1 switches an asset off.
void disableIf(HwConfigPayload* asset, const std::atomic<int>& sw) {
  if (asset != nullptr && sw.load(std::memory_order_relaxed) == 1) asset->enabled = false;
}

// Without a gamut asset the table still goes somewhere, but the payload is not extended.
GamutConfig* gamutTarget(PanelCorvaneBE& be, Slots& slots) {
  // The asset's name fixes its record type.
  return slots[kGamut] != nullptr ? static_cast<GamutConfig*>(slots[kGamut]) : &be.scratchGamut();
}

// Ordinary tables, hook tables and 309/310.
void applyTable(PanelCorvaneBE& be, Slots& slots, int mode, const FrameTables& tables) {
  readSwitchesOnce();
  disableIf(slots[kGC], PanelCorvaneBE::sGCDisable);
  disableIf(slots[kIGC], PanelCorvaneBE::sIGCDisable);
  if (mode == kModeCinemaNoPa) {
    mode = tableOfMode(mode);
    if (dbgOn(kDbgVerbose)) PC_LOGD_AS(kFn, "%d-->%d (%d)\n", kModeCinemaNoPa, mode, 302);
  } else if (mode == kModeVividNoPa) {
    mode = tableOfMode(mode);
    if (dbgOn(kDbgVerbose)) PC_LOGD_AS(kFn, "%d-->%d\n", kModeVividNoPa, mode);
  } else {
    disableIf(slots[kPA], PanelCorvaneBE::sPaConfigDisable);
    disableIf(slots[kDither], PanelCorvaneBE::sDitherConfigDisable);
    disableIf(slots[kPaDither], PanelCorvaneBE::sPaDitherConfigDisable);
  }
  if (slots[kGamut] != nullptr &&
      PanelCorvaneBE::sGamutDisable.load(std::memory_order_relaxed) == 1) {
    slots[kGamut]->enabled = false;
    return;
  }

  GamutConfig* target = gamutTarget(be, slots);
  // Hardened, a record that got no table keeps what it holds, its switch included.
  if (be.fillGamutInfo(&target->gamut_info, mode, tables) || !hardened()) target->enabled = true;
  if (dbgOn(kDbgVerbose)) {
    // "%D" is no conversion but part of the line; the platform's printf decides what it shows.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
    PC_LOGD_AS(kFn, "--- (%d) Gamut enabled(%d),version(%d),lut3d_id(%D)\n", mode, 1,
               static_cast<int>(target->version), target->gamut_info.lut3d_id);
#pragma GCC diagnostic pop
  }
  if (dbgOn(kDbgEntry)) Algorithm::check3DLut(target->gamut_info);
}

// Mode 50: the whole table from the debug file, read on every call; false if it is missing.
bool applyDebugTable(PanelCorvaneBE& be, Slots& slots) {
  FILE* in = devio::fopen(kDebugLutPath, "r");
  PC_LOGD_AS(kFn, "- %s\n", kDebugLutPath);
  if (in == nullptr) {
    PC_LOGE_AS(kFn, "fail to open output file!\n");
    return false;
  }
  lut3d_info& lut = be.debugTable();
  std::memset(&lut, 0, sizeof(lut));  // what a short file does not supply stays zero
  lut.lut3d_id = kDebugLutId;
  lut.uniform = 1;
  lut.num_entries = kLut3dEntries;
  const bool whole = LutTextFile::read(in, &lut) == LutTextFile::kValueCount;
  fclose(in);
  if (hardened()) {
    if (!whole) {
      if (hardenedFirst(HardenedCause::kUnreadTable)) {
        PC_LOGE_AS(kFn, "hardened: debug table short, not applied\n");
      }
      return false;
    }
    if (!PanelCorvaneBE::mayHand(kFn, tableVerdict(lut), kModeDebugFile)) return false;
  }

  GamutConfig* target = gamutTarget(be, slots);
  target->enabled = true;
  std::memcpy(&target->gamut_info, &lut, sizeof(lut3d_info));

  const lut3d_info& g = target->gamut_info;
  PC_LOGD_AS(kFn, "LUT3D flags:%d\n", static_cast<int>(g.flags));
  PC_LOGD_AS(kFn, "LUT3D lut3d_id:%d\n", static_cast<int>(g.lut3d_id));
  PC_LOGD_AS(kFn, "LUT3D uniform:%d\n", static_cast<int>(g.uniform));
  PC_LOGD_AS(kFn, "LUT3D num_entries:%d\n", static_cast<int>(g.num_entries));
  PC_LOGD_AS(kFn, "set 3DLUT[%d]\n", kModeDebugFile);
  PC_LOGD_AS(kFn, "Gamut enabled(%d),version(%d)\n", target->enabled ? 1 : 0,
             static_cast<int>(target->version));
  return true;
}

}  // namespace

int PanelCorvaneBE::ProcessModeRenderIntent(const ScPayload& input, ScPayload* output, int mode) {
  return ProcessModeRenderIntent(input, output, mode,
                                 Lut3DCacheManager::buildAreaTables(panelIndex()));
}

int PanelCorvaneBE::ProcessModeRenderIntent(const ScPayload& input, ScPayload* output, int mode,
                                            const FrameTables& tables) {
  ScopedTrace trace(kFn);
  if (dbgOn(kDbgEntry)) PC_LOGD("start...\n");
  if (output == nullptr || output->payload == 0) return -1;
  auto* out = reinterpret_cast<HwConfigOutputParams*>(static_cast<uintptr_t>(output->payload));
  const bool verbose = dbgOn(kDbgVerbose);

  if (verbose && input.payload != 0) {
    const auto* in =
        reinterpret_cast<const ModeRenderInputParams*>(static_cast<uintptr_t>(input.payload));
    for (const std::string& name : in->color_mode.hw_assets) PC_LOGD("HW asset:%s\n", name.c_str());
  }

  Slots slots = {};
  for (const auto& entry : out->payload) {
    if (verbose) PC_LOGD("output hw asset %s\n", entry.first.c_str());
    const int s = slotOf(entry.first);
    if (s < 0 || !entry.second) continue;  // an asset without a record cannot be switched
    slots[s] = entry.second.get();
    if (verbose) logSlot(false, s, entry.first, *entry.second);
  }

  if (isOrdinaryMode(mode)) {
    applyTable(*this, slots, mode, tables);
  } else if (mode == kModeDebugFile) {
    if (!applyDebugTable(*this, slots)) return 0;  // nothing touched, no closing listing
  } else if (mode == kModeAllOff) {
    for (HwConfigPayload* asset : slots) {
      if (asset != nullptr) asset->enabled = false;
    }
    PC_LOGD("disable ALL output hw asset!\n");
  }

  if (verbose) {
    for (const auto& entry : out->payload) {
      PC_LOGD("+++ output hw asset %s\n", entry.first.c_str());
      const int s = slotOf(entry.first);
      if (s >= 0 && entry.second) logSlot(true, s, entry.first, *entry.second);
    }
  }
  return 0;
}

}  // namespace postblend
