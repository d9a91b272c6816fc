// Adobe/Resolve ".cube" tables, the exchange format of grading tools.
//
// Format, as written and accepted here: text lines; '#' starts a comment line; blank lines are
// ignored. Header keywords, each once, before the first data line:
//   TITLE "text"                 optional
//   LUT_3D_SIZE N                N = 2..65 nodes per axis; this system's tables have 17
//   LUT_1D_SIZE N                or a per-channel curve of N = 2..65536 entries (not both)
//   DOMAIN_MIN 0 0 0             optional, must be 0 0 0
//   DOMAIN_MAX 1 1 1             optional, must be 1 1 1
// then N^3 (or N) lines of three numbers (output red, green, blue in 0..1), red varying fastest,
// then green, then blue - the same order as the entries of lut3d_info. A .cube places its nodes
// uniformly over 0..1, while the device grid puts level i at code 256*i and level 16 at 4095, so
// its last interval is 255 codes wide. A 17-node cube carries over node for node; any other size
// is resampled onto the device grid (see CubeResample.h).
//
// Limits: at most kMaxFileBytes bytes and kMaxLineBytes per line; any other keyword is refused;
// numbers must be finite. Outputs outside 0..1 are clamped and counted.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "postblend/color_records.h"
#include "tools/lib/tables/CellInterp.h"
#include "tools/lib/tables/DeviceGrid.h"

namespace pctool {

struct CubeReadInfo {
  std::string title;
  uint32_t clamped = 0;  // output values outside 0..1 that were clamped
  uint32_t dims = 3;     // 3 for LUT_3D_SIZE, 1 for LUT_1D_SIZE
  uint32_t size = 0;     // its N
  bool resampled = false;  // anything but 17 nodes in 3D
  std::string note() const;  // "resampled from 33 nodes (tetrahedral)" when resampled, else ""
  Interp interp = Interp::Tetrahedral;
};

class CubeFile {
 public:
  static constexpr size_t kMaxFileBytes = 32u << 20;  // 65^3 lines of three 9-digit numbers
  static constexpr size_t kMaxLineBytes = 1024;

  // Writes the table's outputs as code / 4095 with enough digits to read back exactly.
  static void write(std::ostream& os, const postblend::lut3d_info& lut, const std::string& title);
  static bool writeFile(const std::string& path, const postblend::lut3d_info& lut,
                        const std::string& title, std::string& error);

  // Parses a .cube into a device table: header flags 0, the given id, uniform 1, 4913 entries;
  // inputs on the device grid, outputs rounded to 12-bit codes; a 3D cube of another size than
  // 17 is resampled with `interp`. On failure `error` holds one line such as "line 7 malformed"
  // and the outputs of `lut` are unspecified.
  static bool parse(std::istream& is, postblend::lut3d_info& lut, uint32_t lutId,
                    CubeReadInfo& info, std::string& error, Interp interp = Interp::Tetrahedral);
  static bool readFile(const std::string& path, postblend::lut3d_info& lut, uint32_t lutId,
                       CubeReadInfo& info, std::string& error, Interp interp = Interp::Tetrahedral);
};

}  // namespace pctool
