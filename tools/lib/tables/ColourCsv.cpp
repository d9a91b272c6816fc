#include "tools/lib/tables/ColourCsv.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tools/lib/common/TextLines.h"
#include "tools/lib/tables/DeviceGrid.h"

namespace pctool {

namespace {

std::string trim(const std::string& s) {
  size_t a = s.find_first_not_of(" \t"), b = s.find_last_not_of(" \t");
  return a == std::string::npos ? "" : s.substr(a, b - a + 1);
}

// A decimal number, as strtod reads the whole of it; false with the fault. `signal` tells a
// value written as a signal (a decimal point or an exponent) from a whole number.
bool parseValue(const std::string& s, double& v, bool& signal, std::string& fault) {
  if (s.empty() || s.size() > 32 || s.find_first_not_of("0123456789.+-eEnaifNAIFty") != std::string::npos) {
    fault = "'" + s + "' is not a number";
    return false;
  }
  char* end = nullptr;
  errno = 0;
  v = std::strtod(s.c_str(), &end);
  if (end == s.c_str() || *end != '\0') {
    fault = "'" + s + "' is not a number";
    return false;
  }
  if (!std::isfinite(v) || errno == ERANGE) {
    fault = "'" + s + "' is not a finite number";
    return false;
  }
  signal = s.find_first_of(".eE") != std::string::npos;
  return true;
}

std::string lineError(size_t line, const std::string& what) {
  return "line " + std::to_string(line) + " " + what;
}

// The three fields of a line; false when there are not three.
bool splitFields(const std::string& line, std::string (&field)[3]) {
  size_t start = 0;
  for (int c = 0; c < 3; ++c) {
    const size_t comma = line.find(',', start);
    if ((c < 2) != (comma != std::string::npos)) return false;
    field[c] = trim(line.substr(start, c < 2 ? comma - start : std::string::npos));
    start = comma + 1;
  }
  return true;
}

// A header names its columns: a first line none of whose fields is a number.
bool isHeader(const std::string& line) {
  std::string field[3];
  if (!splitFields(line, field)) return std::isalpha(static_cast<unsigned char>(line[0])) || line[0] == '"';
  for (const auto& f : field) {
    char* end = nullptr;
    std::strtod(f.c_str(), &end);
    if (!f.empty() && *end == '\0') return false;
  }
  return true;
}

}  // namespace

bool ColourCsv::parse(const std::string& text, ColourList& out, std::string& error) {
  out = ColourList{};
  if (text.size() > kMaxBytes) {
    error = "larger than " + std::to_string(kMaxBytes >> 20) + " MiB";
    return false;
  }
  if (text.find('\0') != std::string::npos) {
    error = "binary data: not a CSV list of colours";
    return false;
  }
  TextLines lines(text, kMaxLineBytes);
  std::string line;
  error.clear();
  bool seenContent = false;
  // The first value that only one scale can hold decides the list's: a signal (decimal point or
  // exponent) or a whole number above 1.
  size_t decidedAt = 0;
  std::string decidedBy;
  while (lines.next(line, error)) {
    const size_t lineNo = lines.lineNo();
    line = trim(line);
    if (line.empty() || line[0] == '#') continue;
    const bool first = !seenContent;
    seenContent = true;
    if (first && isHeader(line)) continue;
    ColourRow row{lineNo, {}, {}};
    if (!splitFields(line, row.text)) {
      error = lineError(lineNo, "malformed: want three values r,g,b");
      return false;
    }
    for (int c = 0; c < 3; ++c) {
      bool signal = false;
      std::string fault;
      double& v = row.value[c];
      if (!parseValue(row.text[c], v, signal, fault)) {
        error = lineError(lineNo, "malformed: " + fault);
        return false;
      }
      if (decidedAt == 0 && (signal || v > 1.0)) {
        decidedAt = lineNo;
        decidedBy = row.text[c];
        out.fractions = signal;
      }
      if (signal && !out.fractions) {
        error = lineError(lineNo, "malformed: " + row.text[c] + " is written as a signal 0..1, but the 8-bit value " +
                                      decidedBy + " on line " + std::to_string(decidedAt) +
                                      " makes this a list of 8-bit values");
        return false;
      }
      if (v < 0.0 || (out.fractions ? v > 1.0 : (v > 255.0 || v != std::floor(v)))) {
        error = lineError(lineNo, "out of range: " + row.text[c] +
                                      (out.fractions ? " (signals are 0..1)" : " (8-bit values are 0..255)"));
        return false;
      }
    }
    if (out.rows.size() >= kMaxRows) {
      error = lineError(lineNo, "more than " + std::to_string(kMaxRows) + " colours");
      return false;
    }
    out.rows.push_back(row);
  }
  if (!error.empty()) return false;
  if (out.rows.empty()) {
    error = "no colour in the list (want lines r,g,b after an optional header)";
    return false;
  }
  if (!out.fractions)
    for (auto& row : out.rows)
      for (double& v : row.value) v /= 255.0;
  return true;
}

std::string ColourCsv::apply(const ColourList& list, const postblend::lut3d_info& lut, Interp interp,
                             NodeGrid grid) {
  std::string o = list.fractions ? "r,g,b" : "r8_in,g8_in,b8_in";
  o += ",r12,g12,b12,r8,g8,b8\n";
  char buf[128];
  for (const auto& row : list.rows) {
    Rgb s = sampleLut(lut, Rgb{row.value[0], row.value[1], row.value[2]}, interp, grid);
    const double code[3] = {s.r, s.g, s.b};
    o += row.text[0] + "," + row.text[1] + "," + row.text[2];
    for (double c : code) {
      std::snprintf(buf, sizeof buf, ",%ld", std::lround(std::clamp(c, 0.0, kFullScale)));
      o += buf;
    }
    for (double c : code) o += "," + std::to_string(codeTo8(c));
    o += "\n";
  }
  return o;
}

}  // namespace pctool
