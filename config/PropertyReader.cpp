#include "config/PropertyReader.h"

#include <cstdlib>

namespace postblend {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// A short quotation of a line for a message, control characters shown as '?'.
std::string quote(const std::string& text) {
  constexpr size_t kShown = 40;
  std::string q = text.substr(0, kShown);
  for (char& c : q) {
    if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
  }
  return "'" + q + (text.size() > kShown ? "...'" : "'");
}

std::string at(uint32_t line) { return "line " + std::to_string(line) + ": "; }

}  // namespace

PropertyRead readProperties(const std::string& content) {
  PropertyRead r;
  size_t size = content.size();
  if (size > kMaxPropertyBytes) {
    size = kMaxPropertyBytes;
    r.diagnosis.note(
        PropertyProblem::TooLarge, 0,
        "larger than " + std::to_string(kMaxPropertyBytes / 1024) + " KiB: not a property file");
  }
  uint32_t lineNo = 0;
  size_t start = 0;
  for (;;) {
    const size_t nl = content.find('\n', start);
    ++lineNo;
    if (nl == std::string::npos || nl >= size) {
      if (start < size) {
        r.diagnosis.note(PropertyProblem::Unterminated, lineNo,
                         at(lineNo) + "no line feed at the end: " +
                             quote(content.substr(start, size - start)) + " is ignored");
      }
      break;
    }
    const std::string line = content.substr(start, nl - start);
    start = nl + 1;
    if (line.empty() || line[0] == '#') continue;
    const size_t eq = line.find('=');
    if (eq == std::string::npos) {
      r.diagnosis.note(PropertyProblem::NoEquals, lineNo,
                       at(lineNo) + quote(line) + " has no '=': skipped");
      continue;
    }
    PropertyLine entry{line.substr(0, eq), line.substr(eq + 1), lineNo};
    const std::string& key = entry.key;
    if (!key.empty() && (isBlank(key.front()) || isBlank(key.back()))) {
      r.diagnosis.note(
          PropertyProblem::PaddedKey, lineNo,
          at(lineNo) + "key " + quote(key) + " has blanks around it, which are part of the key");
    }
    if (!entry.value.empty() && entry.value.back() == '\r') {
      r.diagnosis.note(PropertyProblem::CarriageReturn, lineNo,
                       at(lineNo) + "value of " + quote(key) +
                           " ends in a carriage return (a file saved with CR LF)");
    }
    r.accepted.push_back(std::move(entry));
  }
  return r;
}

int32_t propertyInt(const std::string& value) {
  return static_cast<int32_t>(strtol(value.c_str(), nullptr, 10));
}

uint32_t panelIndexOf(const std::string& value) {
  const uint32_t id = static_cast<uint32_t>(strtol(value.c_str(), nullptr, 10));
  return (id >= 100 && id < 200) ? 1 : 0;
}

}  // namespace postblend
