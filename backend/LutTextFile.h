// The LUT text format shared by the hook tables, the debug table and the workbench.
//
// Plain text, no header: 4913 x 6 = 29478 unsigned decimal integers separated by any white
// space, entry by entry in lut3d_info order; within an entry input red, green, blue, then
// output red, green, blue. The plugin takes values as written (no range check); nothing after
// the 29478th integer is read. Reading stops at the first character that is neither white
// space nor a digit; a number too large for 32 bits saturates. At most kMaxBytes are looked at.
//
// Beside that lenient result the reader tells the first thing wrong with the text: a character
// that is no digit, a value above 4095, fewer than 29478 numbers, or inputs that are not the
// device grid in entry order (red fastest), which would put every output on the wrong node.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

#include "base/ReadDiagnosis.h"
#include "postblend/color_records.h"

namespace postblend {

enum class LutTextProblem {
  None,
  TooLarge,    // more than kMaxBytes; the rest is not read
  Malformed,   // a token that is not a whole number; reading stops at it
  AboveRange,  // a value above 4095 (taken as written)
  TooFew,      // the text ends before the 29478th number
  OutOfOrder,  // the inputs are not the device grid in entry order
};

struct LutTextRead {
  int values = 0;       // integers taken into the table, at most kValueCount
  uint32_t tokens = 0;  // numbers in the text, those after the 29478th included
  ReadDiagnosis<LutTextProblem> diagnosis;
};

class LutTextFile {
 public:
  static constexpr int kValuesPerEntry = 6;
  static constexpr int kValueCount = static_cast<int>(kLut3dEntries) * kValuesPerEntry;  // 29478
  static constexpr size_t kMaxBytes = 4u << 20;

  // Fills lut->entries from the text; values it does not supply are zero. The header is left
  // alone.
  static LutTextRead parse(const char* data, size_t size, lut3d_info* lut);

  // The plugin's readers: the stream or file through parse(), diagnosis dropped. Return how
  // many integers were read; readFile -1 when the file cannot be opened (a host path as given).
  static int read(FILE* in, lut3d_info* lut);
  static int readFile(const char* path, lut3d_info* lut);

  // One entry per line, six numbers separated by single spaces. False on a write error.
  static bool write(FILE* out, const lut3d_info& lut);
  static bool writeFile(const char* path, const lut3d_info& lut);
};

}  // namespace postblend
