// Where things sit in an optical data (.odf) file: 510 bytes, 127 little-endian floats, then the
// CRC-16/CCITT-FALSE of bytes 0-507 in the last two. The plugin reads the measured XYZ of red,
// green, blue and white, and the luminance of the grey ramp; every other float is carried
// unread.
#pragma once

#include <cstddef>

namespace postblend {
namespace odf {

constexpr size_t kBytes = 510;
constexpr int kFloats = 127;
constexpr size_t kCrcBytes = 508;  // the bytes the CRC covers; it is stored right after them

// First of the three floats X, Y, Z of each primary and of white.
constexpr int kRedXyzAt = 106;
constexpr int kGreenXyzAt = 82;
constexpr int kBlueXyzAt = 118;
constexpr int kWhiteXyzAt = 4;

// The grey ramp: the luminance of grey code 4095 - 512 k sits at 5 + 6 k, k = 0..7 (k = 0 is
// white's Y).
constexpr int kGreySteps = 8;
constexpr int greyCodeOfStep(int k) { return k == 0 ? 4095 : 4096 - 512 * k; }
constexpr int greyLuminanceAt(int k) { return 5 + 6 * k; }

}  // namespace odf
}  // namespace postblend
