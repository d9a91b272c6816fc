// Evaluating a 3D table between its nodes, the way display hardware or a grading tool would.
#pragma once

#include <cstddef>
#include <cstdint>

#include "postblend/color_records.h"
#include "tools/lib/tables/CellInterp.h"

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

// Applies the table in place to `pixels` pixels of `channels` (3 or 4) bytes each; a fourth
// channel (alpha) is left as it is.
void applyLutInPlace(const postblend::lut3d_info& lut, uint8_t* px, size_t pixels, int channels,
                     Interp interp, NodeGrid grid);

// Applies the table to `pixels` packed 8-bit RGB triples; 8-bit v stands for v / 255, and the
// output is the code / 4095 rescaled to 255 and rounded.
void applyLut8(const postblend::lut3d_info& lut, const uint8_t* in, uint8_t* out, size_t pixels,
               Interp interp, NodeGrid grid);

}  // namespace pctool
