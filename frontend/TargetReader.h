// A mode's target parameter file (.txt), read for the plugin and the workbench.
//
// White-space separated decimal numbers, taken one by one with the stream's float extraction:
// chromaticities x, y of red, green, blue and white, the target exponent parameter (9 numbers),
// and, for gamma correction, eleven more (20 in all). The first extraction that fails ends the
// reading: the fields from there on keep what they held. The plugin reads 9 numbers, or 20 with
// gamma correction on. At most kMaxTargetBytes are looked at (a target is a few hundred bytes),
// so a runaway file cannot make one number grow without bound.
//
// Beside that lenient result the reader tells the first thing wrong: a token that is not a
// number, more than 20 numbers, fewer than 9, or a chromaticity outside 0..1 or an exponent
// parameter that is not positive (no target can be that).
#pragma once

#include <cstddef>
#include <string>

#include "base/ReadDiagnosis.h"

namespace postblend {

constexpr size_t kMaxTargetBytes = 64 * 1024;
constexpr int kTargetValues = 20;
constexpr int kTargetBaseValues = 9;  // without the gamma-correction parameters

enum class TargetProblem {
  None,
  TooLarge,    // more than kMaxTargetBytes; the rest is not read
  Malformed,   // a token that is not a number
  TooMany,     // more than 20 numbers
  TooFew,      // fewer than 9 numbers
  OutOfRange,  // a chromaticity outside 0..1 or an exponent parameter that is not positive
};

struct TargetRead {
  int count = 0;  // numbers extracted before the first failure, at most 20
  float values[kTargetValues] = {};
  ReadDiagnosis<TargetProblem> diagnosis;
};

TargetRead readTarget(const std::string& text);

// How many of a target's numbers a generation takes: 9, or all 20 with gamma correction on.
inline int targetValuesUsed(bool gammaCorrection) {
  return gammaCorrection ? kTargetValues : kTargetBaseValues;
}

// Display names of the first nine target values.
extern const char* const kTargetFieldNames[kTargetBaseValues];

}  // namespace postblend
