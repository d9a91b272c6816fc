// Adobe/Resolve ".cube" 3D tables, the exchange format of grading tools.
//
// Format, as written and accepted here: text lines; '#' starts a comment line; blank lines are
// ignored. Header keywords, each once, before the first data line:
//   TITLE "text"                 optional
//   LUT_3D_SIZE 17               required; this system's tables are 17 x 17 x 17
//   DOMAIN_MIN 0 0 0             optional, must be 0 0 0
//   DOMAIN_MAX 1 1 1             optional, must be 1 1 1
// then 17^3 = 4913 lines of three numbers (output red, green, blue in 0..1), red varying fastest,
// then green, then blue - the same order as the entries of lut3d_info. A .cube places its 17
// nodes uniformly over 0..1, while the device grid puts level i at code 256*i and level 16 at
// 4095, so its last interval is 255 codes wide: the node values carry over one to one, the
// positions between nodes differ slightly.
//
// Limits: at most kMaxFileBytes bytes and kMaxLineBytes per line; any other keyword (including
// LUT_1D_SIZE) is refused; numbers must be finite. Outputs outside 0..1 are clamped and counted.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "snapdragoncolor/sc_color_records.h"
#include "tools/lib/DeviceGrid.h"

namespace pctool {

struct CubeReadInfo {
  std::string title;
  uint32_t clamped = 0;  // output values outside 0..1 that were clamped
};

class CubeFile {
 public:
  static constexpr size_t kMaxFileBytes = 16u << 20;
  static constexpr size_t kMaxLineBytes = 1024;

  // Writes the table's outputs as code / 4095 with enough digits to read back exactly.
  static void write(std::ostream& os, const snapdragoncolor::lut3d_info& lut, const std::string& title);
  static bool writeFile(const std::string& path, const snapdragoncolor::lut3d_info& lut,
                        const std::string& title, std::string& error);

  // Parses a .cube into a device table: header flags 0, the given id, uniform 1, 4913 entries;
  // inputs on the device grid, outputs rounded to 12-bit codes. On failure `error` holds one
  // line such as "line 7 malformed" and `lut` holds whatever was parsed.
  static bool parse(std::istream& is, snapdragoncolor::lut3d_info& lut, uint32_t lutId,
                    CubeReadInfo& info, std::string& error);
  static bool readFile(const std::string& path, snapdragoncolor::lut3d_info& lut, uint32_t lutId,
                       CubeReadInfo& info, std::string& error);
};

}  // namespace pctool
