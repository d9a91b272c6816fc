// Brings a .cube of any size onto the 17-node device grid. Device node i sits at code 256 i
// (node 16 at 4095), read as code / 4095 in the cube's 0..1 domain, where the cube's N nodes
// are uniform; a 3D cube is interpolated trilinearly or tetrahedrally there, a 1D table
// linearly per channel.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/tables/CellInterp.h"

namespace pctool {

struct CubeTable {
  uint32_t dims = 3;           // 3: LUT_3D_SIZE, 1: LUT_1D_SIZE (per channel)
  uint32_t size = 0;           // nodes per axis (3D) or entries (1D)
  std::vector<double> values;  // rows of output red, green, blue in 0..1; red fastest for 3D
};

// Bounds the memory a file can ask for: 65^3 rows (OpenColorIO bakes up to 65) and 64 Ki 1D rows.
constexpr uint32_t kMinCubeSize = 2;
constexpr uint32_t kMax3dSize = 65;
constexpr uint32_t kMax1dSize = 65536;

// Rows a table of this shape holds.
inline uint64_t cubeRows(uint32_t dims, uint32_t size) {
  return dims == 1 ? size : uint64_t(size) * size * size;
}

// Fills the outputs of `lut` (whose inputs are the device grid) from `cube`, rounded to 12-bit
// codes. `interp` only matters for a 3D cube.
void resampleCube(const CubeTable& cube, Interp interp, postblend::lut3d_info& lut);

// "resampled from 33 nodes (tetrahedral)", "resampled from a 1D table of 1024 entries (linear)".
std::string resampleNote(uint32_t dims, uint32_t size, Interp interp);

}  // namespace pctool
