// See Lut3dGeneration.h for the rules; the order of every operation is deliberate.
#include "frontend/Lut3dGeneration.h"

#include "base/LutGrid.h"
#include "frontend/OdfLayout.h"

namespace postblend {
namespace fe {

namespace {
constexpr unsigned kLevels = kGridLevels;

// Hue-preserving remap through the value of the largest channel; all-zero stays zero.
void remapByMax(const GammaTable& table, int* rgb) {
  const unsigned m = max3((unsigned)rgb[0], (unsigned)rgb[1], (unsigned)rgb[2]);
  if (m == 0) return;
  // Codes are 0..4095 after quantisation and table entries at most 4095, so the scaled value
  // never exceeds 4095 and the conversion is always defined.
  const float ratio = (float)table.code[m] / (float)m;
  for (int c = 0; c < 3; ++c) rgb[c] = (int)(unsigned)(ratio * (float)rgb[c]);
}

void store(lut3d_entry& e, const int out[3]) {
  for (int c = 0; c < 3; ++c) e.out[c] = (uint32_t)out[c];
}

// Blue slowest, red fastest; each node's matrix product comes from the grid tables.
void mainPass(const Mat3& m, float p, bool gammaOn, const GammaTable* t1, lut3d_info& lut) {
  const GridProducts grid = gridProducts(m, gridLinear(gammaOn));
  for (unsigned b = 0; b < kLevels; ++b) {
    for (unsigned g = 0; g < kLevels; ++g) {
      for (unsigned r = 0; r < kLevels; ++r) {
        lut3d_entry& e = lut.entries[lutEntryIndex(r, g, b)];
        e.in[0] = lutGridCode(r);
        e.in[1] = lutGridCode(g);
        e.in[2] = lutGridCode(b);
        const unsigned level[3] = {r, g, b};
        int out[3];
        gridLevelsToPanel(grid, level, p, gammaOn, out);
        if (gammaOn) remapByMax(*t1, out);
        store(e, out);
      }
    }
  }
}

// Recomputes one node from its input codes through the 2.2 decode and remaps it by `t2`.
void protectNode(const Mat3& m, float p, const GammaTable& t2, unsigned r, unsigned g, unsigned b,
                 lut3d_info& lut) {
  lut3d_entry& e = lut.entries[lutEntryIndex(r, g, b)];
  const int in[3] = {(int)e.in[0], (int)e.in[1], (int)e.in[2]};
  int out[3];
  powerCodesToPanel(in, m, p, out);
  remapByMax(t2, out);
  store(e, out);
}

void protectWhite(const Mat3& m, float p, const GammaTable& t2, bool shortened, lut3d_info& lut) {
  static constexpr unsigned kCorner[7][3] = {{15, 15, 15}, {16, 15, 15}, {15, 16, 15}, {16, 16, 15},
                                             {15, 15, 16}, {16, 15, 16}, {15, 16, 16}};
  for (unsigned i = 0; i < kLevels - 1; ++i) {
    protectNode(m, p, t2, i, i, i, lut);
    for (const auto& n : kCorner) protectNode(m, p, t2, n[0], n[1], n[2], lut);
    if (shortened) break;
  }
}
}  // namespace

Chromaticities targetChromaticities(const PanelCorvaneBase::TargetParm& target) {
  Chromaticities c;
  for (int k = 0; k < 4; ++k) {
    c.xy[k][0] = target.values[2 * k];
    c.xy[k][1] = target.values[2 * k + 1];
  }
  return c;
}

Chromaticities panelChromaticities(const PanelCorvaneBase::OpticalDataFile& odf) {
  static constexpr int kXyzAt[4] = {odf::kRedXyzAt, odf::kGreenXyzAt, odf::kBlueXyzAt,
                                    odf::kWhiteXyzAt};
  Chromaticities c;
  for (int k = 0; k < 4; ++k) {
    const float X = odf.values[kXyzAt[k]];
    const float Y = odf.values[kXyzAt[k] + 1];
    const float Z = odf.values[kXyzAt[k] + 2];
    const float sum = (X + Y) + Z;
    c.xy[k][0] = X / sum;
    c.xy[k][1] = Y / sum;
  }
  return c;
}

Conversion conversion(const PanelCorvaneBase::TargetParm& target,
                      const PanelCorvaneBase::OpticalDataFile& odf) {
  Conversion c = {};  // every inverse starts zeroed
  c.target = targetChromaticities(target);
  c.panel = panelChromaticities(odf);
  c.targetPrimaries = primaryMatrix(c.target);
  c.targetPrimariesRegular = invert(c.targetPrimaries, c.targetPrimariesInverse);
  c.targetToXyz = scaleToWhite(c.target, c.targetPrimariesInverse);
  c.panelPrimaries = primaryMatrix(c.panel);
  c.panelPrimariesRegular = invert(c.panelPrimaries, c.panelPrimariesInverse);
  c.panelToXyz = scaleToWhite(c.panel, c.panelPrimariesInverse);
  c.panelToXyzRegular = invert(c.panelToXyz, c.xyzToPanel);
  c.targetToPanel = multiply(c.xyzToPanel, c.targetToXyz);
  return c;
}

void generateLut3D(const PanelCorvaneBase::OpticalDataFile& odf,
                   const PanelCorvaneBase::TargetParm& target, const Lut3dSwitches& switches,
                   lut3d_info& lut, Lut3dObserver* observer) {
  Lut3dObserver silent;
  Lut3dObserver& obs = observer != nullptr ? *observer : silent;
  const bool gammaOn = switches.gammaCorrection;
  const float p = target.values[8];

  const Conversion conv = conversion(target, odf);
  obs.conversionReady(conv);
  const Mat3& m = conv.targetToPanel;

  GammaTable table;  // the intermediate table, then the final one
  GammaKnots knots;
  if (gammaOn) {
    buildGammaTable(odf, target, GammaPass::Intermediate, table, &knots);
    obs.gammaTableReady(GammaPass::Intermediate, table, knots);
  }
  mainPass(m, p, gammaOn, &table, lut);
  obs.mainPassDone(lut);
  if (!gammaOn) return;

  obs.protectWhiteStarting(lut);
  buildGammaTable(odf, target, GammaPass::Final, table, &knots);
  obs.gammaTableReady(GammaPass::Final, table, knots);
  protectWhite(m, p, table, switches.shortProtectWhite, lut);
  obs.protectWhiteDone(lut);
}

}  // namespace fe
}  // namespace postblend
