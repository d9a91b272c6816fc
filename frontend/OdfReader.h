// The optical data file (.odf), read for the plugin and the workbench.
//
// Exactly 510 bytes, little-endian: 127 IEEE-754 floats of colorimeter measurements (where
// each sits: OdfLayout.h), then the CRC-16/CCITT-FALSE of bytes 0-507. The bytes are laid over
// the record as they come, the way one raw read fills it: a short input leaves the record's
// tail as it was, and the CRC is checked over the record as it then stands (so a short input
// over a zeroed record fails it). Bytes after the 510th are not looked at.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/PanelCorvaneBase.h"
#include "base/ReadDiagnosis.h"

namespace postblend {

enum class OdfProblem {
  None,
  Short,        // fewer than 510 bytes
  CrcMismatch,  // the stored CRC is not that of the 127 floats
};

struct OdfRead {
  size_t bytes = 0;  // bytes laid over the record, at most 510
  uint16_t storedCrc = 0;
  uint16_t computedCrc = 0;
  bool crcOk() const { return storedCrc == computedCrc; }
  ReadDiagnosis<OdfProblem> diagnosis;
};

OdfRead readOdf(const uint8_t* data, size_t size, PanelCorvaneBase::OpticalDataFile& odf);

}  // namespace postblend
