// What every fuzz target needs around the plugin: a quiet platform (no log output, no pauses), a
// private device root, the shared state put back between inputs, and a running two-panel device
// for the targets that drive the plugin object itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace postblend {
class PanelCorvane;
}

namespace pcfuzz {

// Log lines dropped (PC_FUZZ_LOG=1 keeps them), pauses scaled to 0, device paths rooted in a
// fresh temporary folder. Returns that folder. Idempotent.
const std::string& quietPlatform();

// Writes `size` bytes at device path `devicePath` under the root, creating folders.
void writeDeviceFile(const std::string& devicePath, const uint8_t* data, size_t size);
void writeDeviceFile(const std::string& devicePath, const std::string& text);
void removeDeviceFile(const std::string& devicePath);

// Every static of the shared state back to its start value (bypass off, as after a good Init).
void resetSharedState();

// Both panels of a synthetic eight-table device, initialised, tables ready; made once.
struct TwoPanels {
  postblend::PanelCorvane* primary;
  postblend::PanelCorvane* secondary;
};
TwoPanels& runningDevice();

}  // namespace pcfuzz
