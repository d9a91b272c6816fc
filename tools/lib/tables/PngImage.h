// PNG images through libpng, for applying a table to a picture: 8- and 16-bit RGB and RGBA (grey
// and palette images expanded to RGB(A)), with what the file says of its colours (the iCCP,
// sRGB, gAMA and cHRM chunks). A build without libpng keeps the interface and refuses with a
// reason.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pctool {

// The colour chunks of a PNG, as the file has them.
struct PngColour {
  std::string iccName, icc;  // iCCP: the profile's name and bytes
  bool srgb = false;         // an sRGB chunk
  double gamma = 0;          // gAMA: the file gamma (0.45455 for a 2.2 display); 0 without
  bool hasChrm = false;      // cHRM: white, red, green, blue as x, y
  double chrm[8] = {};
  bool tagged() const { return !icc.empty() || srgb || gamma > 0 || hasChrm; }
  // "iCCP profile 'Display P3'", "sRGB", "gAMA 0.45455, cHRM white 0.3127 0.3290 ...", "untagged".
  std::string text() const;
};

struct Image {
  uint32_t width = 0, height = 0;
  int channels = 3;               // 3 (RGB) or 4 (RGBA: alpha kept as it is)
  int depth = 8;                  // bits per sample: 8 or 16
  std::vector<uint16_t> samples;  // rows top to bottom, channels interleaved, 0..2^depth-1
  PngColour colour;               // as read; written images carry none
  uint32_t maxValue() const { return depth == 16 ? 65535u : 255u; }
};

class PngImage {
 public:
  // Bounds memory: 2^25 pixels (8192 x 4096).
  static constexpr uint64_t kMaxPixels = uint64_t(1) << 25;
  static constexpr size_t kMaxFileBytes = size_t(1) << 30;

  static bool available();
  // Refuses an image above kMaxPixels before reading its pixels, and one whose colour chunks
  // cannot be taken as they are: a cICP chunk, or a colour chunk libpng found invalid.
  static bool read(const std::string& path, Image& img, std::string& error);
  // Writes no colour chunk: the samples are what the caller says in `description` (a tEXt
  // chunk "Description"), not an image in a colour space.
  static bool write(const std::string& path, const Image& img, const std::string& description, std::string& error);
};

}  // namespace pctool
