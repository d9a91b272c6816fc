// Static numeric helpers shared by the backend (table verification) and the front end (CRC).
#pragma once

#include <cstdint>

#include "postblend/color_records.h"

namespace postblend {

class Algorithm {
 public:
  // Logs entries moved by more than 50 dE76, a histogram and the pass figure; 0 when at least
  // 80 % of the entries stay below 50, else -1.
  static int check3DLut(lut3d_info& lut);
  // dE*ab of two linear-light sRGB colours, single precision.
  static float DeltaE76(float r1, float g1, float b1, float r2, float g2, float b2);
  // CRC-16/CCITT-FALSE, computed bit by bit.
  static uint32_t crc_cal_by_bit(unsigned char* data, unsigned int length);
};

}  // namespace postblend
