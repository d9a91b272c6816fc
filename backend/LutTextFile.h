// The LUT text format shared by the hook tables, the debug table and the host tools.
//
// Plain text, no header: 4913 x 6 = 29478 unsigned decimal integers separated by any white
// space, entry by entry in lut3d_info order; within an entry input red, green, blue, then
// output red, green, blue. Values are taken as written (no range check); nothing after the
// 29478th integer is read. Reading stops at the first character that is neither white space
// nor a digit; a number too large for 32 bits saturates.
#pragma once

#include <cstdio>

#include "snapdragoncolor/sc_color_records.h"

namespace snapdragoncolor {

class LutTextFile {
 public:
  static constexpr int kValuesPerEntry = 6;
  static constexpr int kValueCount = static_cast<int>(kLut3dEntries) * kValuesPerEntry;  // 29478

  // Fills lut->entries from the stream; values the stream does not supply are zero. The header
  // is left alone. Returns how many integers were read.
  static int read(FILE* in, lut3d_info* lut);
  // Same from a file path as given (not a device path); -1 when it cannot be opened.
  static int readFile(const char* path, lut3d_info* lut);

  // One entry per line, six numbers separated by single spaces. False on a write error.
  static bool write(FILE* out, const lut3d_info& lut);
  static bool writeFile(const char* path, const lut3d_info& lut);
};

}  // namespace snapdragoncolor
