// Lists of colours to put through a table: CSV lines "r,g,b", 8-bit values 0..255, or signals
// 0..1. The first value only one scale holds decides the list's (a decimal point or an exponent
// makes a signal, a whole number above 1 an 8-bit value); a value of the other scale after it is
// refused on its own line. An optional header line (no field a number) comes first; blank lines
// and lines starting with '#' are skipped. A list without a colour is refused.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/tables/LutApply.h"

namespace pctool {

struct ColourRow {
  size_t line;            // in the file, 1-based
  std::string text[3];    // the values as written
  double value[3];        // as read; 0..1 once parsed
};

struct ColourList {
  bool fractions = false;  // the file gave 0..1 signals rather than 8-bit values
  std::vector<ColourRow> rows;
};

class ColourCsv {
 public:
  static constexpr size_t kMaxBytes = 16u << 20;
  static constexpr size_t kMaxLineBytes = 256;
  static constexpr size_t kMaxRows = 1u << 20;

  // False with "line N ..." (or a size limit) on the first problem.
  static bool parse(const std::string& text, ColourList& out, std::string& error);

  // One line per colour: the input as given, the table's output as 12-bit codes, then as 8-bit.
  static std::string apply(const ColourList& list, const postblend::lut3d_info& lut, Interp interp,
                           NodeGrid grid);
};

}  // namespace pctool
