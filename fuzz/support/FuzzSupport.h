// What every fuzz target needs around the plugin: a quiet platform (no log output, no pauses), a
// private device root, the shared state put back between inputs, and a running two-panel device
// for the targets that drive the plugin object itself.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/Hardening.h"
#include "core/PanelCorvane.h"

namespace pcfuzz {

// Log lines dropped (PC_FUZZ_LOG=1 keeps them), pauses scaled to 0, device paths rooted in a
// fresh temporary folder. Returns that folder. Idempotent; writeDeviceFile calls it.
const std::string& quietPlatform();

// Writes `size` bytes at device path `devicePath` under the root, creating folders.
void writeDeviceFile(const std::string& devicePath, const uint8_t* data, size_t size);
void removeDeviceFile(const std::string& devicePath);

// Every static of the shared state back to its start value (bypass off, as after a good Init).
inline void resetSharedState() {
  using B = postblend::PanelCorvaneBase;
  B::sDebug = 1;
  B::sIsByPass = false;
  B::sBrightness = 0;
  B::sCFGMode = -1;
  B::sDEStatus = -1;
  B::sNeedUpdate = false;
  B::sIsLut3dHook = false;
  B::sCurrentPanel = 0;
}

// A gamut record as the colour manager hands it over, its table a pattern no table has (every
// word above 4095), so that a record that got a table shows it.
inline void markUnhanded(postblend::GamutConfig& g) {
  std::memset(&g.gamut_info, 0xA5, sizeof(g.gamut_info));
}

// Under the hardened switch a record that got a table got a table: every code within 0..4095 and
// not all zero. Aborts otherwise.
inline void checkHanded(const postblend::GamutConfig& g) {
  if (!postblend::hardened()) return;
  static const postblend::GamutConfig* const unhanded = [] {
    auto* u = new postblend::GamutConfig();
    markUnhanded(*u);
    return u;
  }();
  if (std::memcmp(&g.gamut_info, &unhanded->gamut_info, sizeof(g.gamut_info)) == 0) return;
  if (postblend::tableVerdict(g.gamut_info) != postblend::TableVerdict::kSound) {
    std::fprintf(stderr, "hardened: the hardware was handed something that is not a table\n");
    std::abort();
  }
}

// Both panels of the device (a synthetic eight-table one on the host), initialised, tables
// ready; made once.
struct TwoPanels {
  postblend::PanelCorvane* primary;
  postblend::PanelCorvane* secondary;
};
TwoPanels& runningDevice();

}  // namespace pcfuzz
