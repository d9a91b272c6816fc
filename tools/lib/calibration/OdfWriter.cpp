#include "tools/lib/calibration/OdfWriter.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "base/Algorithm.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace {
constexpr size_t kMaxLine = 1024;

void putXyz(OdfValues* out, int at, const double* xyz) {
  for (int k = 0; k < 3; ++k) out->v[at + k] = static_cast<float>(xyz[k]);
}
void getXyz(const OdfValues& in, int at, double* xyz) {
  for (int k = 0; k < 3; ++k) xyz[k] = in.v[at + k];
}

uint16_t crcOf(const uint8_t* bytes) {
  std::vector<unsigned char> copy(bytes, bytes + 508);
  return static_cast<uint16_t>(postblend::Algorithm::crc_cal_by_bit(copy.data(), 508));
}

bool fail(std::string* error, const std::string& text) {
  if (error) *error = text;
  return false;
}
}  // namespace

bool fitsOdfFloat(double v) { return std::isfinite(static_cast<float>(v)); }

void placeMeasurements(const OdfMeasurements& m, OdfValues* out) {
  putXyz(out, kOdfRedAt, m.red);
  putXyz(out, kOdfGreenAt, m.green);
  putXyz(out, kOdfBlueAt, m.blue);
  putXyz(out, kOdfWhiteAt, m.white);
  for (int k = 0; k < 7; ++k) out->v[odfGreyYAt(k)] = static_cast<float>(m.greyY[k]);
}

OdfMeasurements measurementsOf(const OdfValues& values) {
  OdfMeasurements m;
  getXyz(values, kOdfRedAt, m.red);
  getXyz(values, kOdfGreenAt, m.green);
  getXyz(values, kOdfBlueAt, m.blue);
  getXyz(values, kOdfWhiteAt, m.white);
  for (int k = 0; k < 7; ++k) m.greyY[k] = values.v[odfGreyYAt(k)];
  return m;
}

OdfImage encodeOdf(const OdfValues& values) {
  OdfImage img{};
  for (int i = 0; i < kOdfFloats; ++i) {
    uint32_t bits;
    std::memcpy(&bits, &values.v[i], 4);
    for (int b = 0; b < 4; ++b) img[4 * i + b] = static_cast<uint8_t>(bits >> (8 * b));
  }
  const uint16_t crc = crcOf(img.data());
  img[508] = static_cast<uint8_t>(crc & 0xFF);
  img[509] = static_cast<uint8_t>(crc >> 8);
  return img;
}

bool parseOdfText(std::istream& in, const std::string& source, OdfValues* out, std::string* error) {
  OdfMeasurements m;
  bool haveXyz[4] = {}, haveGrey[7] = {};
  std::vector<std::pair<int, float>> raw;
  std::string line;
  int lineNo = 0;
  auto bad = [&](const std::string& why) {
    return fail(error, source + ":" + std::to_string(lineNo) + ": " + why);
  };
  while (std::getline(in, line)) {
    ++lineNo;
    if (line.size() > kMaxLine) return bad("line longer than 1024 characters");
    std::istringstream ls(line);
    std::string key;
    if (!(ls >> key) || key[0] == '#') continue;
    std::vector<double> nums;
    std::string tok;
    while (ls >> tok) {
      char* end = nullptr;
      double d = std::strtod(tok.c_str(), &end);
      if (end == tok.c_str() || *end != '\0' || !std::isfinite(d)) {
        return bad("'" + tok + "' is not a finite number");
      }
      if (!fitsOdfFloat(d)) return bad("'" + tok + "' does not fit a float of the optical data file (largest 3.4e38)");
      nums.push_back(d);
    }
    static const char* const kXyzKeys[4] = {"red", "green", "blue", "white"};
    double* const xyz[4] = {m.red, m.green, m.blue, m.white};
    int xyzIndex = -1;
    for (int k = 0; k < 4; ++k)
      if (key == kXyzKeys[k]) xyzIndex = k;
    if (xyzIndex >= 0) {
      if (nums.size() != 3) return bad("'" + key + "' needs X Y Z");
      if (haveXyz[xyzIndex]) return bad("'" + key + "' given twice");
      haveXyz[xyzIndex] = true;
      for (int k = 0; k < 3; ++k) xyz[xyzIndex][k] = nums[k];
    } else if (key == "grey") {
      if (nums.size() != 2) return bad("'grey' needs LEVEL Y");
      int slot = -1;
      for (int k = 0; k < 7; ++k)
        if (nums[0] == kOdfGreyLevels[k]) slot = k;
      if (slot < 0) return bad("grey level must be one of 3584 3072 2560 2048 1536 1024 512");
      if (haveGrey[slot]) return bad("grey level given twice");
      haveGrey[slot] = true;
      m.greyY[slot] = nums[1];
    } else if (key == "value") {
      if (nums.size() != 2 || nums[0] != std::floor(nums[0]) || nums[0] < 0 ||
          nums[0] >= kOdfFloats)
        return bad("'value' needs INDEX (0..126) NUMBER");
      raw.emplace_back(static_cast<int>(nums[0]), static_cast<float>(nums[1]));
    } else {
      return bad("unknown item '" + key + "'");
    }
  }
  static const char* const kNames[4] = {"red", "green", "blue", "white"};
  for (int k = 0; k < 4; ++k)
    if (!haveXyz[k]) return fail(error, source + ": missing '" + kNames[k] + "'");
  for (int k = 0; k < 7; ++k)
    if (!haveGrey[k])
      return fail(error, source + ": missing grey level " + std::to_string(kOdfGreyLevels[k]));
  *out = OdfValues{};
  placeMeasurements(m, out);
  for (const auto& r : raw) out->v[r.first] = r.second;
  return true;
}

bool writeOdfFile(const std::string& path, const OdfValues& values, std::string* error) {
  for (int i = 0; i < kOdfFloats; ++i)
    if (!std::isfinite(values.v[i]))
      return fail(error, path + ": float " + std::to_string(i) + " is not finite: not written");
  const OdfImage img = encodeOdf(values);
  std::string why;
  if (!writeWholeFile(path, std::string(img.begin(), img.end()), why))
    return fail(error, path + ": " + why);
  return true;
}

}  // namespace pctool
