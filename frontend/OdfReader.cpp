#include "frontend/OdfReader.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "base/Algorithm.h"
#include "frontend/OdfLayout.h"

namespace postblend {

static_assert(offsetof(PanelCorvaneBase::OpticalDataFile, crc) == odf::kCrcBytes,
              "the checksum follows the 127 measurements directly");

namespace {
std::string hex16(unsigned v) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "0x%04x", v & 0xFFFF);
  return buf;
}
}  // namespace

OdfRead readOdf(const uint8_t* data, size_t size, PanelCorvaneBase::OpticalDataFile& odf) {
  OdfRead r;
  r.bytes = size < odf::kBytes ? size : odf::kBytes;
  // The device is little-endian like the file: the bytes are the record.
  if (r.bytes > 0) std::memcpy(&odf, data, r.bytes);

  unsigned char covered[odf::kCrcBytes];
  std::memcpy(covered, odf.values, sizeof(covered));
  r.computedCrc =
      static_cast<uint16_t>(Algorithm::crc_cal_by_bit(covered, odf::kCrcBytes) & 0xFFFF);
  r.storedCrc = odf.crc;
  if (r.bytes < odf::kBytes) {
    r.diagnosis.note(OdfProblem::Short, 0,
                     std::to_string(size) + " bytes, an optical data file holds 510");
  } else if (!r.crcOk()) {
    r.diagnosis.note(
        OdfProblem::CrcMismatch, 0,
        "CRC mismatch: stored " + hex16(r.storedCrc) + ", computed " + hex16(r.computedCrc));
  }
  return r;
}

}  // namespace postblend
