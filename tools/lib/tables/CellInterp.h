// Interpolation inside one cell of a 3D table, shared by every grid the workbench evaluates: the
// 17-node device table and the .cube tables of any size it resamples onto it.
#pragma once

namespace pctool {

enum class Interp { Trilinear, Tetrahedral };

const char* interpName(Interp interp);

// `corner[i]` holds the three outputs at the cell corner i = r + 2 g + 4 b (0 or 1 per axis);
// fr, fg, fb are the position inside the cell, 0..1 per axis.
void interpolateCell(const double (&corner)[8][3], double fr, double fg, double fb, Interp interp,
                     double (&out)[3]);

}  // namespace pctool
