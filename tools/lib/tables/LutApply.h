// Evaluating a 3D table between its nodes, the way display hardware or a grading tool would.
#pragma once

#include <cstddef>
#include <cstdint>

#include "postblend/color_records.h"
#include "tools/lib/tables/CellInterp.h"
#include "tools/lib/tables/ImageColour.h"
#include "tools/lib/tables/PngImage.h"

namespace pctool {

// Where the 17 nodes sit on the 0..1 input axis.
enum class NodeGrid {
  Device,   // level i at code 256*i / 4095, level 16 at 1: the hardware's grid
  Uniform,  // level i at i / 16: how a .cube file describes the same nodes
};

struct Rgb {
  double r = 0, g = 0, b = 0;
};

// Output of the table for an input in 0..1 per channel (clamped), as 12-bit codes (not rounded).
Rgb sampleLut(const postblend::lut3d_info& lut, const Rgb& in01, Interp interp, NodeGrid grid);

// A 12-bit output code (not rounded) as an 8-bit value: code / 4095 rescaled to 255, rounded.
uint8_t codeTo8(double code);

// Puts an image through the table: its RGB samples as signals (sample / 255 or / 65535),
// through `conversion` to the table's input space, then the table. Outputs at the image's depth:
// 8-bit the code rescaled to 255 and rounded; 16-bit the 12-bit code, rounded, rescaled to 65535
// (round(v * 4095 / 65535) gives the code back). Alpha is left as it is. Returns how many pixels
// the conversion put outside the table's input range (the table clamps them).
size_t applyLutToImage(const postblend::lut3d_info& lut, Image& img, ImageConversion& conversion, Interp interp,
                       NodeGrid grid);

}  // namespace pctool
