// Optical data (.odf) images for host tools: the plugin's layout (frontend/OdfLayout.h) filled
// from measurements and written with its CRC. Reading one is the plugin's reader's job
// (frontend/OdfReader.h, through CalibrationFiles.h).
//
// Measurement text format (for `odf write`), one item per line, '#' starts a comment line:
//   red   X Y Z
//   green X Y Z
//   blue  X Y Z
//   white X Y Z
//   grey  LEVEL Y        LEVEL one of 3584 3072 2560 2048 1536 1024 512
//   value INDEX NUMBER   raw position 0..126, applied after everything above
// red, green, blue, white and all seven grey levels are required; every number must round to a
// finite float, as the file stores it (5e39 is a finite double but no float).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

#include "frontend/OdfLayout.h"

namespace pctool {

constexpr size_t kOdfBytes = postblend::odf::kBytes;
constexpr int kOdfFloats = postblend::odf::kFloats;
using OdfImage = std::array<uint8_t, kOdfBytes>;

// Grey levels below white, in the order of their positions 11, 17, ..., 47.
constexpr int kOdfGreyLevels[7] = {3584, 3072, 2560, 2048, 1536, 1024, 512};
constexpr int kOdfRedAt = postblend::odf::kRedXyzAt;
constexpr int kOdfGreenAt = postblend::odf::kGreenXyzAt;
constexpr int kOdfBlueAt = postblend::odf::kBlueXyzAt;
constexpr int kOdfWhiteAt = postblend::odf::kWhiteXyzAt;
inline int odfGreyYAt(int greyIndex) {
  return postblend::odf::greyLuminanceAt(greyIndex + 1);
}

struct OdfMeasurements {
  double red[3] = {}, green[3] = {}, blue[3] = {}, white[3] = {};  // XYZ
  double greyY[7] = {};                                            // luminance at kOdfGreyLevels
};

struct OdfValues {
  float v[kOdfFloats] = {};
};

// Whether `v` rounds to a finite float.
bool fitsOdfFloat(double v);

void placeMeasurements(const OdfMeasurements& m, OdfValues* out);
OdfMeasurements measurementsOf(const OdfValues& values);

// The little-endian image with its checksum.
OdfImage encodeOdf(const OdfValues& values);

// Parses the measurement text format above; `source` names the input in error messages
// ("SOURCE:LINE: reason").
bool parseOdfText(std::istream& in, const std::string& source, OdfValues* out, std::string* error);

// Refuses (nothing written) values that hold a float that is not finite, naming its position.
bool writeOdfFile(const std::string& path, const OdfValues& values, std::string* error);

}  // namespace pctool
