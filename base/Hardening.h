// The hardened-tables switch (property key "HardenedTables", off by default): with it on, the
// hardware is never handed something that is not a colour table, and a panel's tables survive a
// fold. Off, the plugin behaves exactly as it always has; every rule tests hardened() where it
// applies. Its notices are logged once per process and cause.
#pragma once

#include <cstdint>

#include "base/PanelCorvaneBase.h"
#include "postblend/color_records.h"

namespace postblend {

inline bool hardened() {
  return PanelCorvaneBase::sHardenedTables.load(std::memory_order_relaxed);
}

enum class HardenedCause : uint32_t {
  kCodeBeyondRange,  // a table with a code above 4095 was not handed
  kAllZero,          // an all-zero table was not handed
  kLevelClamped,     // a brightness level outside 0..8191 was clamped
  kUnreadTable,      // a hook or debug table missing or short was not handed
  kModeNotOffered,   // a mode whose tables were never made was not taken
  kCacheIncomplete,  // a cache some of whose tables were never made was not written
  kNotPanelOwner,    // an object without the panel's registry slot left its tables alone
  kCount
};

// True the first time a cause is met in this process (then log the notice), false after.
bool hardenedFirst(HardenedCause cause);
// Every cause unmet again (tests).
void resetHardenedNotices();

enum class TableVerdict : uint8_t { kSound, kCodeBeyondRange, kAllZero };

// Every code of every entry (inputs and outputs) within 0..4095, and not every output zero.
TableVerdict tableVerdict(const lut3d_info& table);

}  // namespace postblend
