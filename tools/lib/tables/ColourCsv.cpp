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

// A plain non-negative decimal: digits with at most one point, no sign or exponent.
bool plainNumber(const std::string& s, double& v) {
  if (s.empty() || s.size() > 32 || s == ".") return false;
  int points = 0;
  for (char c : s) {
    if (c == '.') ++points;
    else if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  if (points > 1) return false;
  errno = 0;
  v = std::strtod(s.c_str(), nullptr);
  return errno == 0 && std::isfinite(v);
}

std::string lineError(size_t line, const std::string& what) {
  return "line " + std::to_string(line) + " " + what;
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
  while (lines.next(line, error)) {
    const size_t lineNo = lines.lineNo();
    line = trim(line);
    if (line.empty() || line[0] == '#') continue;
    const bool first = !seenContent;
    seenContent = true;
    // A header names its columns: the first line is one when it starts with a name.
    if (first && (std::isalpha(static_cast<unsigned char>(line[0])) || line[0] == '"')) continue;
    ColourRow row{lineNo, {}, {}};
    size_t start = 0;
    for (int c = 0; c < 3; ++c) {
      size_t comma = line.find(',', start);
      if ((c < 2) != (comma != std::string::npos)) {
        error = lineError(lineNo, "malformed: want three values r,g,b");
        return false;
      }
      row.text[c] = trim(line.substr(start, c < 2 ? comma - start : std::string::npos));
      if (!plainNumber(row.text[c], row.value[c])) {
        error = lineError(lineNo, "malformed: '" + row.text[c] + "' is not a number");
        return false;
      }
      if (row.text[c].find('.') != std::string::npos) out.fractions = true;
      start = comma + 1;
    }
    if (out.rows.size() >= kMaxRows) {
      error = lineError(lineNo, "more than " + std::to_string(kMaxRows) + " colours");
      return false;
    }
    out.rows.push_back(row);
  }
  if (!error.empty()) return false;
  // The scale is the file's, decided once all of it is read.
  for (auto& row : out.rows)
    for (int c = 0; c < 3; ++c) {
      double& v = row.value[c];
      if (out.fractions ? v > 1.0 : (v > 255.0 || v != std::floor(v))) {
        error = lineError(row.line, "out of range: " + row.text[c] +
                                        (out.fractions ? " (signals are 0..1)" : " (8-bit values are 0..255)"));
        return false;
      }
      if (!out.fractions) v /= 255.0;
    }
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
