// 8-bit RGB and RGBA PNG images through libpng, for applying a table to a picture. A build
// without libpng keeps the interface and refuses with a reason.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pctool {

struct Image8 {
  uint32_t width = 0, height = 0;
  int channels = 3;              // 3 (RGB) or 4 (RGBA: alpha kept as it is)
  std::vector<uint8_t> pixels;   // rows top to bottom, channels interleaved
};

class PngImage {
 public:
  // Bounds memory: 2^25 pixels (8192 x 4096) of four bytes.
  static constexpr uint64_t kMaxPixels = uint64_t(1) << 25;

  static bool available();
  // Reads an 8-bit PNG: RGB or RGBA as such, grey and palette images expanded to RGB(A).
  // 16-bit images are refused (they would be rescaled, not read), as is any image above
  // kMaxPixels. A gAMA chunk other than sRGB's makes libpng convert the values to sRGB.
  static bool read(const std::string& path, Image8& img, std::string& error);
  static bool write(const std::string& path, const Image8& img, std::string& error);
};

}  // namespace pctool
