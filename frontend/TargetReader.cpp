#include "frontend/TargetReader.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace postblend {

const char* const kTargetFieldNames[kTargetBaseValues] = {
    "red x", "red y", "green x", "green y", "blue x", "blue y", "white x", "white y", "exponent"};

namespace {

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string tokenAt(const std::string& text, size_t pos) {
  size_t end = pos;
  while (end < text.size() && !isSpace(text[end])) ++end;
  return text.substr(pos, std::min<size_t>(end - pos, 40));
}

std::string malformed(uint32_t line) { return "line " + std::to_string(line) + " malformed: "; }

}  // namespace

TargetRead readTarget(const std::string& whole) {
  TargetRead r;
  const std::string text = whole.substr(0, kMaxTargetBytes);
  if (whole.size() > kMaxTargetBytes) {
    r.diagnosis.note(
        TargetProblem::TooLarge, 0,
        "too large for a target file (over " + std::to_string(kMaxTargetBytes) + " bytes)");
  }
  std::istringstream in(text);
  uint32_t line = 1;
  size_t counted = 0;  // text before this offset has had its line feeds counted
  for (;;) {
    in >> std::ws;
    if (in.eof()) break;
    const size_t pos = static_cast<size_t>(in.tellg());
    line += static_cast<uint32_t>(std::count(text.begin() + counted, text.begin() + pos, '\n'));
    counted = pos;
    if (r.count == kTargetValues) {
      r.diagnosis.note(TargetProblem::TooMany, line, malformed(line) + "more than 20 numbers");
      break;
    }
    float v;
    // A failed extraction leaves the stream failed: nothing after it is read.
    if (!(in >> v)) {
      r.diagnosis.note(TargetProblem::Malformed, line,
                       malformed(line) + "'" + tokenAt(text, pos) + "' is not a number");
      break;
    }
    r.values[r.count++] = v;
    // A number that runs into other text: the extraction took its front, the rest is read next.
    const int next = in.peek();
    if (next != std::char_traits<char>::eof() && !isSpace(static_cast<char>(next))) {
      r.diagnosis.note(TargetProblem::Malformed, line,
                       malformed(line) + "'" + tokenAt(text, pos) + "' is not a number");
    }
  }
  if (r.count < kTargetBaseValues) {
    r.diagnosis.note(TargetProblem::TooFew, 0,
                     "too short: " + std::to_string(r.count) + " numbers, a target has 9 or 20");
  }
  if (!r.diagnosis.ok()) return r;
  for (int k = 0; k < kTargetBaseValues - 1; ++k) {
    const float v = r.values[k];
    if (!(v > 0.0f && v < 1.0f)) {
      r.diagnosis.note(TargetProblem::OutOfRange, 0,
                       std::string("not a target: ") + kTargetFieldNames[k] + " = " +
                           std::to_string(v) + " is outside 0..1");
      return r;
    }
  }
  if (!(r.values[8] > 0.0f)) {
    r.diagnosis.note(
        TargetProblem::OutOfRange, 0,
        "not a target: exponent parameter " + std::to_string(r.values[8]) + " is not positive");
  }
  return r;
}

}  // namespace postblend
