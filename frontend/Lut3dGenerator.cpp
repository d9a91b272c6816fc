// One 17x17x17 table from one optical data record (the panel as measured) and one mode target:
// target-linear RGB goes through Mp^-1 * Mt into panel-linear RGB, then through the output
// curve; with gamma correction on, each node is remapped through the grey-level table by the
// value of its largest channel (hue kept), and the grey axis and the corner next to white are
// recomputed against the final table. Operation order is deliberate (bit-exact results).
#define LOG_TAG "PanelCorvaneFE"

#include <fstream>
#include <string>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "base/LutGrid.h"
#include "base/Trace.h"
#include "frontend/OdfLayout.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

namespace {
constexpr unsigned kLevels = PanelCorvaneFE::kGridLevels;

unsigned levelCode(unsigned level) { return lutGridCode(level); }
unsigned entryOf(unsigned r, unsigned g, unsigned b) { return lutEntryIndex(r, g, b); }

// Hue-preserving remap through the value of the largest channel; all-zero stays zero.
void remapByMax(PanelCorvaneFE& fe, const unsigned int* table, int* rgb) {
  const unsigned m = fe.max((unsigned)rgb[0], (unsigned)rgb[1], (unsigned)rgb[2]);
  if (m == 0) return;
  // Codes are 0..4095 after quantisation and table entries at most 4095, so the scaled
  // value never exceeds 4095 and the conversion is always defined.
  const float ratio = (float)table[m] / (float)m;
  for (int c = 0; c < 3; ++c) rgb[c] = (int)(unsigned)(ratio * (float)rgb[c]);
}

void dumpTable(const std::string& path, const lut3d_info& lut) {
  std::ofstream out(devio::path(path.c_str()), std::ios::out | std::ios::trunc);
  if (!out.is_open()) return;
  for (const lut3d_entry& e : lut.entries) {
    out << e.in[0] << ' ' << e.in[1] << ' ' << e.in[2] << ' ' << e.out[0] << ' ' << e.out[1] << ' '
        << e.out[2] << '\n';
  }
}

void logGreyAxis(const lut3d_info& lut, bool after) {
  for (unsigned i = 0; i < kLevels; ++i) {
    const lut3d_entry& e = lut.entries[entryOf(i, i, i)];
    const float rg = (float)e.out[0] / (float)e.out[1];
    const float bg = (float)e.out[2] / (float)e.out[1];
    if (after) {
      PC_LOGD_AS("generateLut3D",
                 "After Protect W: %4d %4d %4d %4d %4d %4d    %6.3f  %6.3f  %6.3f\n\n", e.in[0],
                 e.in[1], e.in[2], e.out[0], e.out[1], e.out[2], rg, 1.0, bg);
    } else {
      PC_LOGD_AS("generateLut3D",
                 "Before Protect W %4d %4d %4d %4d %4d %4d    %6.3f  %6.3f  %6.3f\n\n", e.in[0],
                 e.in[1], e.in[2], e.out[0], e.out[1], e.out[2], rg, 1.0, bg);
    }
  }
}
}  // namespace

void PanelCorvaneFE::protectNode(lut3d_info* lut, unsigned r, unsigned g, unsigned b, float (*m)[3],
                                 float p, const unsigned int* table) {
  lut3d_entry& e = lut->entries[entryOf(r, g, b)];
  int in[3] = {(int)e.in[0], (int)e.in[1], (int)e.in[2]};
  int out[3];
  nonlinearRGB2Panel(in, m, p, out);
  remapByMax(*this, table, out);
  for (int c = 0; c < 3; ++c) e.out[c] = (uint32_t)out[c];
}

void PanelCorvaneFE::generateLut3D(OpticalDataFile& odf, TargetParm& target, lut3d_info* lut,
                                   int index) {
  ScopedTrace trace("generateLut3D");
  const bool verbose = dbgOn(kDbgVerbose);
  const bool gammaOn = sIsGammaCorrectionOn;
  const float p = target.values[8];

  float targetXY[4][2];
  for (int k = 0; k < 4; ++k) {
    targetXY[k][0] = target.values[2 * k];
    targetXY[k][1] = target.values[2 * k + 1];
  }
  if (verbose) {
    PC_LOGD("Target R G B W is:\n\n");
    for (int k = 0; k < 4; ++k) PC_LOGD("%f %f\n\n", targetXY[k][0], targetXY[k][1]);
  }

  // Panel chromaticities from the measured XYZ of red, green, blue and white.
  static constexpr int kXyzAt[4] = {odf::kRedXyzAt, odf::kGreenXyzAt, odf::kBlueXyzAt,
                                    odf::kWhiteXyzAt};
  static const char* const kLabel[4] = {"R", "G", "B", "W"};
  float panelXY[4][2];
  for (int k = 0; k < 4; ++k) {
    const float X = odf.values[kXyzAt[k]];
    const float Y = odf.values[kXyzAt[k] + 1];
    const float Z = odf.values[kXyzAt[k] + 2];
    if (verbose) PC_LOGD("panel %s %f, %f, %f\n", kLabel[k], X, Y, Z);
    const float sum = (X + Y) + Z;
    panelXY[k][0] = X / sum;
    panelXY[k][1] = Y / sum;
  }
  if (verbose) {
    PC_LOGD("Panel R G B W is:\n\n");
    for (int k = 0; k < 4; ++k) PC_LOGD("%10.8f %10.8f\n\n", panelXY[k][0], panelXY[k][1]);
  }

  float mt[3][3], mp[3][3], mpInv[3][3] = {}, m[3][3];
  RGB2XYZ_Matrix(targetXY, mt);
  RGB2XYZ_Matrix(panelXY, mp);
  inverseMatrix(mp, mpInv);
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c)
      m[r][c] = mpInv[r][0] * mt[0][c] + mpInv[r][1] * mt[1][c] + mpInv[r][2] * mt[2][c];
  }
  if (dbgOn(kDbgEntry)) {
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) PC_LOGD("matrixContent2Panel:%f \n", m[r][c]);
  }

  unsigned int t1[kGammaSize];
  if (gammaOn) GammaCorrection(odf, target, t1);
  initPreCalLutRGB(m);

  // Main pass: blue slowest, red fastest; the matrix product comes from preCalLutRGB.
  for (unsigned b = 0; b < kLevels; ++b) {
    for (unsigned g = 0; g < kLevels; ++g) {
      for (unsigned r = 0; r < kLevels; ++r) {
        lut3d_entry& e = lut->entries[entryOf(r, g, b)];
        e.in[0] = levelCode(r);
        e.in[1] = levelCode(g);
        e.in[2] = levelCode(b);
        unsigned int level[3] = {r, g, b};
        int out[3];
        nonlinearRGB2Panel(level, m, p, out);
        if (gammaOn) remapByMax(*this, t1, out);
        for (int c = 0; c < 3; ++c) e.out[c] = (uint32_t)out[c];
      }
    }
  }

  const unsigned panelDigit = mPanelIndex;
  if (dbgOn(kDbgDump)) {
    std::string path = "/data/vendor/display/lut3d0-P0-orignal-before-gamma.txt";
    const size_t at = path.find("lut3d") + 5;
    path[at] = (char)('0' + index);
    path[at + 3] = (char)('0' + panelDigit);
    dumpTable(path, *lut);
  }
  if (!gammaOn) return;

  // Protect-white pass.
  if (verbose) logGreyAxis(*lut, false);
  unsigned int t2[kGammaSize];
  GammaCorrectionFinal(odf, target, t2);
  static constexpr unsigned kCorner[7][3] = {{15, 15, 15}, {16, 15, 15}, {15, 16, 15}, {16, 16, 15},
                                             {15, 15, 16}, {16, 15, 16}, {15, 16, 16}};
  for (unsigned i = 0; i < kLevels - 1; ++i) {
    protectNode(lut, i, i, i, m, p, t2);
    for (const auto& n : kCorner) protectNode(lut, n[0], n[1], n[2], m, p, t2);
    // Under verbose logging the pass stops after the first grey node, as the factory tool does.
    if (verbose) {
      logGreyAxis(*lut, true);
      break;
    }
  }

  if (dbgOn(kDbgDump)) {
    std::string path = "/data/vendor/display/lut3d00-orignal.txt";
    const size_t at = path.find("lut3d") + 5;
    path[at] = (char)('0' + index);
    path[at + 1] = panelDigit == 1 ? '1' : '0';
    dumpTable(path, *lut);
  }
}

}  // namespace snapdragoncolor
