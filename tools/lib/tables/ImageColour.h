// An image's colours brought to a table's input space before the table. The PNG's chunks say
// what its values are (PngImage.h); the table expects signals of its mode's target: sRGB unless
// a target file names its primaries, white and exponent. Little CMS converts (relative
// colorimetric, no black point compensation, unbounded: values outside the table's gamut are
// counted and clipped by the table's domain). An untagged image, or one tagged as the table's
// own space, goes in as it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/tables/PngImage.h"

namespace pctool {

struct RgbSpace {
  std::string name;      // "sRGB", or the target file's name
  double xy[4][2] = {};  // red, green, blue, white
  double decodePower = 0;  // signal^power is linear light; 0: the sRGB curve
};

RgbSpace srgbSpace();
// The space a mode's target asks for: its primaries and white, signals decoding with power
// 1 / exponent parameter.
RgbSpace targetSpace(const TargetParm& target, const std::string& name);

class ImageConversion {
 public:
  ImageConversion();
  ~ImageConversion();
  // Makes the conversion from what `from` says to `to`; false with the reason when it cannot be
  // made (a profile Little CMS refuses, one that is not RGB, a build without Little CMS).
  bool prepare(const PngColour& from, const RgbSpace& to, std::string& error);
  // One line for the user: what the values were taken as and what was done with them.
  const std::string& summary() const { return summary_; }
  // `pixels` RGB signals 0..1 in place; returns how many fell outside 0..1 in the table's space
  // by more than half a 12-bit code (less is the arithmetic's noise at the gamut's edge).
  size_t convert(double* rgb, size_t pixels);

 private:
  struct Lcms;
  std::unique_ptr<Lcms> lcms_;
  std::string summary_;
};

}  // namespace pctool
