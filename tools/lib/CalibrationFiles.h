// Host-side readers of the calibration inputs for the workbench commands. They open host paths
// as given (the plugin's own readers resolve device paths) and say precisely what is wrong
// with a file, which the plugin only logs. The .odf image itself is decoded by OdfWriter.h.
//
// Optical data (.odf): 510 bytes, 127 little-endian floats then the CRC-16 of bytes 0-507;
// a longer file is used up to byte 510, as the plugin does. Target (.txt): 9 numbers
// (chromaticities x, y of red, green, blue, white, then the exponent parameter) or 20 (with the
// eleven gamma-correction parameters), separated by white space; at most kMaxTargetBytes.
#pragma once

#include <cstdint>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "tools/lib/OdfWriter.h"

namespace pctool {

using OpticalDataFile = snapdragoncolor::PanelCorvaneBase::OpticalDataFile;
using TargetParm = snapdragoncolor::PanelCorvaneBase::TargetParm;

constexpr size_t kMaxTargetBytes = 64 * 1024;

struct OdfCheck {
  uint64_t fileBytes = 0;
  uint16_t stored = 0;    // CRC stored in bytes 508-509
  uint16_t computed = 0;  // CRC of bytes 0-507
  bool crcOk() const { return stored == computed; }
};

// False with a one-line reason when the file cannot be read, is shorter than 510 bytes or
// fails its CRC ("CRC mismatch: stored 0x1234, computed 0xabcd"); on a CRC failure `odf` and
// `check` still hold what was read.
bool readOdfFile(const std::string& path, OpticalDataFile& odf, OdfCheck& check, std::string& error);

// False with a reason naming the line when a token is not a number, fewer than 9 or more than
// 20 numbers are given, or a chromaticity or the exponent is out of range. `count` is how many
// numbers the file holds; fields beyond it are zero.
bool readTargetFile(const std::string& path, TargetParm& target, int& count, std::string& error);
bool parseTarget(const std::string& text, TargetParm& target, int& count, std::string& error);

// Display names of the first nine target values.
extern const char* const kTargetFieldNames[9];

}  // namespace pctool
