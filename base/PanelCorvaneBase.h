// Root of the plugin, backend and front-end classes: the process-wide state that the panels and
// the control services share, and each object's display name and panel index.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

namespace postblend {

class Prop;

class PanelCorvaneBase {
 public:
  // Image of one 510-byte .odf file: 127 little-endian floats, then the CRC-16 of bytes 0-507.
  struct OpticalDataFile {
    float values[127];
    uint16_t crc;
  };
  // One mode's colour target (chromaticities, exponent, gamma-correction parameters).
  struct TargetParm {
    float values[20];
  };
  struct ODFErrorCheck {
    float values[32];
  };

  PanelCorvaneBase();
  virtual void generateCfgFile() {}
  virtual void refresh() {}
  virtual void dump() {}
  virtual int set(int /*in_cmd*/) { return 0; }
  virtual bool IsPaneIdMatched() { return false; }
  virtual ~PanelCorvaneBase() = default;

  // Shared by both panels and the service threads; each is one word written whole.
  static std::atomic<uint32_t> sDebug;
  static std::atomic<bool> sIsByPass;
  static std::atomic<bool> sIsPanelCalibrationOn;
  static std::atomic<bool> sIsPanelNitsCalibrationOn;
  static std::atomic<bool> sIsGammaCorrectionOn;
  static std::atomic<bool> sIsCMDebugOn;
  static std::atomic<uint32_t> sParamVersion;
  static std::atomic<uint32_t> sFWVersion;
  static std::atomic<uint32_t> sBrightness;
  static std::atomic<int32_t> sCFGMode;
  static std::atomic<int32_t> sDEStatus;
  static std::atomic<bool> sNeedUpdate;
  static std::atomic<bool> sIsLut3dHook;
  static std::atomic<bool> sIsHidlRegitsered;
  static std::atomic<int32_t> sCurrentPanel;
  // The property file's HardenedTables switch (base/Hardening.h), copied at Init.
  static std::atomic<bool> sHardenedTables;
  // Written only under the panel registry's lock (base/PanelRegistry.h); service threads
  // reach an object through a pin of the registry, never through a bare load.
  static std::atomic<PanelCorvaneBase*> sPrimaryPanel;
  static std::atomic<PanelCorvaneBase*> sSecondaryPanel;
  // Created, read and destroyed only under base_lock_: any DeInit may destroy it.
  static std::atomic<Prop*> sProp;
  static std::mutex base_lock_;

  static constexpr int kNumRefColors = 21;
  uint32_t mRefColors[kNumRefColors][3];
  // The colour manager's display name: up to 256 characters, plus a terminator that is always
  // there so the name can be printed safely.
  char mName[257];
  std::atomic<uint32_t> mPanelIndex{0};  // written by Init while the worker may read it

 private:
  friend class PanelRegistry;
  // Guarded by PanelRegistry's lock: service calls pinned to this object, and whether its
  // destructor has withdrawn it.
  int mPins = 0;
  bool mWithdrawn = false;
};

static_assert(sizeof(PanelCorvaneBase::OpticalDataFile) >= 510, "odf image holds the whole file");

}  // namespace postblend
