// The optical data's error-check file (.txt), read for the plugin.
//
// 32 numbers taken with the C library's "%f" conversion, one conversion per value: a
// conversion that fails leaves its value as it was, and so, in practice, every later one. The
// values are kept but not interpreted. At most kMaxOdfCheckBytes are looked at.
#pragma once

#include <cstddef>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "base/ReadDiagnosis.h"

namespace postblend {

constexpr size_t kMaxOdfCheckBytes = 64 * 1024;
constexpr int kOdfCheckValues = 32;

enum class OdfCheckProblem {
  None,
  TooLarge,   // more than kMaxOdfCheckBytes; the rest is not read
  Malformed,  // a conversion failed on text that is not a number
  TooFew,     // the text ends before the 32nd number
};

struct OdfCheckRead {
  int converted = 0;  // values a conversion filled
  ReadDiagnosis<OdfCheckProblem> diagnosis;
};

OdfCheckRead readOdfCheck(const std::string& text, PanelCorvaneBase::ODFErrorCheck& check);

}  // namespace postblend
