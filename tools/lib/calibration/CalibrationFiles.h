// The calibration inputs for the workbench commands, read by the plugin's own readers
// (frontend/OdfReader.h, frontend/TargetReader.h) from host paths as given; the first problem
// those readers find is the command's one-line error, where the plugin only logs.
#pragma once

#include <cstdint>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "frontend/TargetReader.h"
#include "tools/lib/calibration/OdfWriter.h"

namespace pctool {

using OpticalDataFile = postblend::PanelCorvaneBase::OpticalDataFile;
using TargetParm = postblend::PanelCorvaneBase::TargetParm;
using postblend::kMaxTargetBytes;
using postblend::kTargetFieldNames;

struct OdfCheck {
  uint64_t fileBytes = 0;
  bool whole = false;     // all 510 bytes were there
  uint16_t stored = 0;    // CRC stored in bytes 508-509
  uint16_t computed = 0;  // CRC of bytes 0-507
  bool crcOk() const { return stored == computed; }
};

// For a file longer than an optical data file: what the plugin reads of it and what it ignores
// ("warning: 1024 bytes, padded beyond ..."); "" for 510 bytes or fewer.
std::string odfLengthWarning(const OdfCheck& check);

// False with a one-line reason when the file cannot be read, is shorter than 510 bytes or
// fails its CRC ("CRC mismatch: stored 0x1234, computed 0xabcd"); on a CRC failure `odf` and
// `check` still hold what was read.
bool readOdfFile(const std::string& path, OpticalDataFile& odf, OdfCheck& check,
                 std::string& error);

// False with a reason naming the line when a token is not a number, fewer than 9 or more than
// 20 numbers are given, or a chromaticity or the exponent is out of range. `count` is how many
// numbers the file holds; fields beyond it are zero.
bool readTargetFile(const std::string& path, TargetParm& target, int& count, std::string& error);
bool parseTarget(const std::string& text, TargetParm& target, int& count, std::string& error);

}  // namespace pctool
