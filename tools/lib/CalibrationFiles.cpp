#include "tools/lib/CalibrationFiles.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include "tools/lib/FileAccess.h"

namespace pctool {

const char* const kTargetFieldNames[9] = {"red x",   "red y",   "green x", "green y", "blue x",
                                          "blue y",  "white x", "white y", "exponent"};

namespace {

char hex(unsigned v) { return "0123456789abcdef"[v & 15]; }

std::string hex16(unsigned v) {
  std::string s = "0x";
  for (int shift = 12; shift >= 0; shift -= 4) s += hex(v >> shift);
  return s;
}

}  // namespace

bool readOdfFile(const std::string& path, OpticalDataFile& odf, OdfCheck& check, std::string& error) {
  check = OdfCheck{};
  if (!checkInputFile(path, error)) return false;
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  check.fileBytes = static_cast<uint64_t>(in.tellg());
  if (check.fileBytes < kOdfBytes) {
    error = "wrong size: " + std::to_string(check.fileBytes) + " bytes, an .odf has 510";
    return false;
  }
  in.seekg(0);
  // Only the first 510 bytes count, as on the device.
  uint8_t bytes[kOdfBytes];
  DecodedOdf decoded;
  std::string why;
  if (!in.read(reinterpret_cast<char*>(bytes), kOdfBytes) || !decodeOdf(bytes, kOdfBytes, &decoded, &why)) {
    error = why.empty() ? "read failed" : why;
    return false;
  }
  std::memcpy(odf.values, decoded.values.v, sizeof odf.values);
  odf.crc = decoded.storedCrc;
  check.stored = decoded.storedCrc;
  check.computed = decoded.computedCrc;
  if (!check.crcOk()) {
    error = "CRC mismatch: stored " + hex16(check.stored) + ", computed " + hex16(check.computed);
    return false;
  }
  return true;
}

bool parseTarget(const std::string& text, TargetParm& target, int& count, std::string& error) {
  target = TargetParm{};
  count = 0;
  size_t line = 1;
  size_t i = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c == '\n') ++line;
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++i;
      continue;
    }
    size_t end = text.find_first_of(" \t\r\n", i);
    if (end == std::string::npos) end = text.size();
    std::string tok = text.substr(i, end - i);
    char* stop = nullptr;
    double v = std::strtod(tok.c_str(), &stop);
    if (stop != tok.c_str() + tok.size() || !std::isfinite(v)) {
      error = "line " + std::to_string(line) + " malformed: '" + tok.substr(0, 40) + "' is not a number";
      return false;
    }
    if (count == 20) {
      error = "line " + std::to_string(line) + " malformed: more than 20 numbers";
      return false;
    }
    target.values[count++] = static_cast<float>(v);
    i = end;
  }
  if (count < 9) {
    error = "too short: " + std::to_string(count) + " numbers, a target has 9 or 20";
    return false;
  }
  for (int k = 0; k < 8; ++k) {
    float v = target.values[k];
    if (!(v > 0.0f && v < 1.0f)) {
      error = std::string("not a target: ") + kTargetFieldNames[k] + " = " + std::to_string(v) +
              " is outside 0..1";
      return false;
    }
  }
  if (!(target.values[8] > 0.0f)) {
    error = "not a target: exponent parameter " + std::to_string(target.values[8]) + " is not positive";
    return false;
  }
  return true;
}

bool readTargetFile(const std::string& path, TargetParm& target, int& count, std::string& error) {
  if (!checkInputFile(path, error)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  std::vector<char> buf(kMaxTargetBytes + 1);
  in.read(buf.data(), static_cast<std::streamsize>(buf.size()));
  size_t n = static_cast<size_t>(in.gcount());
  if (n > kMaxTargetBytes) {
    error = "too large for a target file (over " + std::to_string(kMaxTargetBytes) + " bytes)";
    return false;
  }
  return parseTarget(std::string(buf.data(), n), target, count, error);
}

}  // namespace pctool
