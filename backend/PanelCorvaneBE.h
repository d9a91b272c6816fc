// The backend: applies a chosen mode number to the colour manager's output payload, decides
// whether the fitted panel is the one the factory calibrated, loads the hook and cached tables.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "base/Hardening.h"
#include "base/PanelCorvaneBase.h"
#include "cache/TableSet.h"
#include "postblend/color_records.h"
#include "postblend/post_blend_interface.h"

namespace postblend {

// The factory's identity stamp of a panel: "panel_id" for the primary panel, "panel_id_d1" for
// any other.
const char* identityStampPath(uint32_t panelIndex);

class PanelCorvaneBE : public PanelCorvaneBase {
 public:
  static constexpr int kNumHooks = 4;
  static constexpr int kHookModeFirst = 305;
  static constexpr size_t kTextBufSize = 256;

  // `owner` is the plugin object that created this backend; it is not owned and must outlive it.
  explicit PanelCorvaneBE(PanelCorvaneBase* owner);
  ~PanelCorvaneBE() override;

  void dump() override;

  // Mode selection on the output payload (op 0), copying from `tables`; the first form copies
  // from the panel's build area (single-threaded callers).
  int ProcessModeRenderIntent(const ScPayload& input, ScPayload* output, int mode);
  int ProcessModeRenderIntent(const ScPayload& input, ScPayload* output, int mode,
                              const FrameTables& tables);

  // Panel identity. Every buffer is kTextBufSize characters.
  bool isPaneIdMatched();
  bool readFactorPanelId(char* out);
  bool getSnByHidl(char* out);
  bool readSysSn(char* out);
  bool transferAndCmp(char* sn, char* factoryId);

  // Table sources.
  int init3dlutByTxt(int hookIndex);
  // Copies the mode's table into `target`; false when nothing was copied. Under the hardened
  // switch a table that fails its rules is not copied either (base/Hardening.h).
  bool fillGamutInfo(lut3d_info* target, int mode);
  bool fillGamutInfo(lut3d_info* target, int mode, const FrameTables& tables);
  int loadCfgFile(bool matched);
  int calLut3d(int mode, int brightness);
  int calLut3d(int mode, int brightness, const FrameTables& tables);
  int calLut3dDelta();
  // Hardened: whether a table of this verdict may go to the hardware, logging once per cause
  // (as `fn`) why not.
  static bool mayHand(const char* fn, TableVerdict verdict, int mode);
  // A gamut record for a payload without a gamut asset, and the debug table's read buffer:
  // made with the backend, so that a frame allocates neither.
  GamutConfig& scratchGamut();
  lut3d_info& debugTable() { return *mDebugLut; }

  // Property switches of the output assets, read once per process; -1 = not read yet.
  static std::atomic<int> sGCDisable;
  static std::atomic<int> sIGCDisable;
  static std::atomic<int> sGamutDisable;
  static std::atomic<int> sPaConfigDisable;
  static std::atomic<int> sDitherConfigDisable;
  static std::atomic<int> sPaDitherConfigDisable;
  // Puts the six switches back to "not read" (a new process, as far as they are concerned).
  static void resetAssetSwitches();

 private:
  uint32_t panelIndex() const;
  const char* displayName() const;

  PanelCorvaneBase* mOwner;
  // The hook tables, colour manager's thread only. Storage made with the backend; a slot is
  // filled (its file read, or found missing) on its first use and kept.
  std::unique_ptr<lut3d_info[]> mHookLut;
  bool mHookFilled[kNumHooks] = {};
  bool mHookWhole[kNumHooks] = {};  // the file held all 29478 numbers
  TableVerdict mHookVerdict[kNumHooks] = {};
  std::unique_ptr<GamutConfig> mScratchGamut;
  std::unique_ptr<lut3d_info> mDebugLut;
};

}  // namespace postblend
