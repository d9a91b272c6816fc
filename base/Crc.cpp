// CRC-16/CCITT-FALSE (polynomial 0x1021, start 0xFFFF, MSB first, no reflection, no final XOR)
// that guards the optical data files. Kept bit by bit, without a table, in the factory tool's
// form so that the two agree on every byte.
#include "base/Algorithm.h"

namespace postblend {

uint32_t Algorithm::crc_cal_by_bit(unsigned char* data, unsigned int length) {
  uint32_t crc = 0xFFFF;
  if (length == 0 || data == nullptr) return crc;
  for (unsigned int n = 0; n < length; ++n) {
    for (unsigned int mask = 0x80; mask != 0; mask >>= 1) {
      crc <<= 1;
      // Bit 16 set: XOR with 0x11021 clears it and applies the polynomial.
      if (crc & 0x10000) crc ^= 0x11021;
      if (data[n] & mask) crc ^= 0x1021;
    }
  }
  return crc;
}

}  // namespace postblend
