// The backend: applies a chosen mode number to the colour manager's output payload, decides
// whether the fitted panel is the one the factory calibrated, loads the hook and cached tables.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "base/PanelCorvaneBase.h"
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

  // Mode selection on the output payload (op 0).
  int ProcessModeRenderIntent(const ScPayload& input, ScPayload* output, int mode);

  // Panel identity. Every buffer is kTextBufSize characters.
  bool isPaneIdMatched();
  bool readFactorPanelId(char* out);
  bool getSnByHidl(char* out);
  bool readSysSn(char* out);
  bool transferAndCmp(char* sn, char* factoryId);

  // Table sources.
  int init3dlutByTxt(int hookIndex);
  void fillGamutInfo(lut3d_info* target, int mode);
  int loadCfgFile(bool matched);
  int calLut3d(int mode, int brightness);
  int calLut3dDelta();

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
  std::unique_ptr<lut3d_info> mHookLut[kNumHooks];
};

}  // namespace postblend
