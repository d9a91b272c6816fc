// The property file's switches and what they mean, for the plugin (Prop's typed getters, the
// copy into the shared state at Init) and the workbench alike. A switch is on only when its
// value reads as exactly 1; a missing key, or a file without usable lines, gives the default.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "base/Log.h"

namespace postblend {

// The parsed file: the first occurrence of each key.
using PropertyEntries = std::map<std::string, std::string, std::less<>>;

// The 100-nit key is read lazily by the front end, through the logging getter.
constexpr const char* kIn100nitsKey = "inParam100nits";

struct PanelSwitches {
  int32_t logLevel = 1;          // LogLevel: the log mask (sDebug)
  int32_t paramVersion = 0;      // ParamVersion: a cache is taken only when made with it
  int32_t fwVersion = 0;         // FWVersion: the one cache length taken
  bool calibration = false;      // PanelCalibration: without it no tables are made
  bool nitsCalibration = false;  // PanelNitsCalibration: SetProperty 769 sets the brightness
  bool gammaCorrection = false;  // GammaCorrection: targets of 20 numbers, the grey ramp corrected
  bool cmDebug = false;          // CMDebug: 8 table slots per panel, else 6 (tableSlots)
  bool use100nits = false;       // inParam100nits: the 100-nit targets for the even tables
  bool hardenedTables = false;   // HardenedTables: the rules of base/Hardening.h
  // LogLevel bit 0x02: verbose lines, and the shortened protect-white pass of a generation.
  bool verbose() const { return (static_cast<uint32_t>(logLevel) & kDbgVerbose) != 0; }
};

PanelSwitches panelSwitches(const PropertyEntries& entries);

// What a switch's integer value means: on only at exactly 1.
inline bool switchOn(int value) { return value == 1; }

}  // namespace postblend
