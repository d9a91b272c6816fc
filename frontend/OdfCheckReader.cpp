#include "frontend/OdfCheckReader.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace postblend {

OdfCheckRead readOdfCheck(const std::string& whole, PanelCorvaneBase::ODFErrorCheck& check) {
  OdfCheckRead r;
  std::string text = whole.substr(0, kMaxOdfCheckBytes);
  if (whole.size() > kMaxOdfCheckBytes) {
    r.diagnosis.note(
        OdfCheckProblem::TooLarge, 0,
        "too large for an error-check file (over " + std::to_string(kMaxOdfCheckBytes) + " bytes)");
  }
  // The conversions run over a stream of the text, so they consume exactly what fscanf on the
  // file does (a failed conversion may eat a sign and let the next one go on).
  FILE* in = text.empty() ? nullptr : fmemopen(&text[0], text.size(), "r");
  for (float& value : check.values) {
    const long before = in != nullptr ? ftell(in) : 0;
    const int got = in != nullptr ? fscanf(in, "%f", &value) : EOF;
    if (got == 1) {
      ++r.converted;
      continue;
    }
    if (got == EOF) {
      r.diagnosis.note(OdfCheckProblem::TooFew, 0,
                       "too short: " + std::to_string(r.converted) + " of 32 numbers");
      continue;
    }
    size_t at = static_cast<size_t>(before);
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
    const uint32_t line =
        1 + static_cast<uint32_t>(std::count(text.begin(), text.begin() + at, '\n'));
    size_t end = at;
    while (end < text.size() && !std::isspace(static_cast<unsigned char>(text[end]))) ++end;
    r.diagnosis.note(OdfCheckProblem::Malformed, line,
                     "line " + std::to_string(line) + " malformed: '" +
                         text.substr(at, std::min<size_t>(end - at, 40)) + "' is not a number");
  }
  if (in != nullptr) fclose(in);
  return r;
}

}  // namespace postblend
