// What every fuzz target needs around the plugin: a quiet platform (no log output, no pauses), a
// private device root, the shared state put back between inputs, and a running two-panel device
// for the targets that drive the plugin object itself.
#pragma once

#include <cstdint>
#include <string>

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

// Both panels of the device (a synthetic eight-table one on the host), initialised, tables
// ready; made once.
struct TwoPanels {
  postblend::PanelCorvane* primary;
  postblend::PanelCorvane* secondary;
};
TwoPanels& runningDevice();

}  // namespace pcfuzz
