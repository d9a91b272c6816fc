// The key=value property file, "/odm/etc/PanelCorvane/panelcorvane", read the plugin's way for
// the plugin and the workbench alike.
//
// Format: lines end at a line feed; text after the last line feed is ignored. Empty lines and
// lines starting with '#' are skipped, as are lines without '='. The key is everything before
// the first '=', the value everything after; nothing is trimmed (a carriage return stays part
// of the value). The first occurrence of a key wins, but every accepted line is counted.
// Integers are read like atoi: leading blanks, optional sign, digits up to the first non-digit.
// A display name's value chooses its panel by the hundreds: 100..199 the secondary one.
// At most kMaxPropertyBytes are looked at; a property file is a handful of lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/ReadDiagnosis.h"

namespace postblend {

constexpr size_t kMaxPropertyBytes = 1 << 20;

// Lines the reader skips or takes in a way their author likely did not mean.
enum class PropertyProblem {
  None,
  TooLarge,        // more than kMaxPropertyBytes; the rest is not read
  NoEquals,        // a line that is neither empty, a comment nor key=value: skipped
  PaddedKey,       // blanks or a carriage return around a key: they are part of it
  CarriageReturn,  // a value ending in a carriage return (a file saved with CR LF)
  Unterminated,    // text after the last line feed: ignored
};

struct PropertyLine {
  std::string key, value;
  uint32_t line = 0;
};

struct PropertyRead {
  std::vector<PropertyLine> accepted;  // in file order, later duplicates included
  ReadDiagnosis<PropertyProblem> diagnosis;
};

PropertyRead readProperties(const std::string& content);

// A value read as an integer the plugin's way (strtol, base 10, narrowed to 32 bits).
int32_t propertyInt(const std::string& value);
// The panel index a display name's value chooses: 1 for 100..199, else 0.
uint32_t panelIndexOf(const std::string& value);

}  // namespace postblend
