#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "frontend/ColorMath.h"

namespace {

using postblend::fe::Chromaticities;
using postblend::fe::Mat3;
namespace fe = postblend::fe;

constexpr Chromaticities kSrgb = {
    {{0.64f, 0.33f}, {0.30f, 0.60f}, {0.15f, 0.06f}, {0.3127f, 0.3290f}}};
constexpr Chromaticities kBt2020 = {
    {{0.708f, 0.292f}, {0.170f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.3290f}}};

void expectNear(const Mat3& got, const Mat3& want, double tol, const char* what) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c)
      EXPECT_NEAR(got.m[r][c], want.m[r][c], tol) << what << " " << r << c;
}

TEST(ColorMathCore, PublishedMatrices) {
  const struct {
    const char* name;
    Chromaticities c;
    Mat3 toXyz, fromXyz;
  } cases[] = {
      {"sRGB",
       kSrgb,
       {{{0.4124f, 0.3576f, 0.1805f}, {0.2126f, 0.7152f, 0.0722f}, {0.0193f, 0.1192f, 0.9505f}}},
       {{{3.2406f, -1.5372f, -0.4986f},
         {-0.9689f, 1.8758f, 0.0415f},
         {0.0557f, -0.2040f, 1.0570f}}}},
      {"BT.2020",
       kBt2020,
       {{{0.6370f, 0.1446f, 0.1689f}, {0.2627f, 0.6780f, 0.0593f}, {0.0000f, 0.0281f, 1.0610f}}},
       {{{1.7167f, -0.3557f, -0.2534f},
         {-0.6667f, 1.6165f, 0.0158f},
         {0.0176f, -0.0428f, 0.9421f}}}},
  };
  for (const auto& c : cases) {
    const Mat3 m = fe::rgbToXyz(c.c);
    expectNear(m, c.toXyz, 1e-4, c.name);
    Mat3 inv = {};
    ASSERT_TRUE(fe::invert(m, inv)) << c.name;
    // The published inverses are rounded from the rounded forward matrices.
    expectNear(inv, c.fromXyz, 1e-3, c.name);
  }
}

TEST(ColorMathCore, SingularInverseLeavesOffDiagonalAlone) {
  const Mat3 flat = {{{1, 2, 3}, {2, 4, 6}, {0, 1, 1}}};
  Mat3 dst = {{{9, 9, 9}, {9, 9, 9}, {9, 9, 9}}};
  EXPECT_FALSE(fe::invert(flat, dst));
  expectNear(dst, Mat3{{{1, 9, 9}, {9, 1, 9}, {9, 9, 1}}}, 0, "singular");
}

// Between gamuts of one white the conversion takes full white to full white; a gamut to itself
// is the identity.
TEST(ColorMathCore, TargetToPanelKeepsWhite) {
  Chromaticities panel = {{{0.685f, 0.314f}, {0.245f, 0.715f}, {0.14f, 0.05f}, {0.3127f, 0.3290f}}};
  for (const Chromaticities& target : {kSrgb, kBt2020, panel}) {
    Mat3 panelInv = {};
    ASSERT_TRUE(fe::invert(fe::rgbToXyz(panel), panelInv));
    const Mat3 m = fe::multiply(panelInv, fe::rgbToXyz(target));
    const float one[3] = {1, 1, 1};
    int out[3];
    fe::linearToPanel(one, m, out);
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(out[c], 4095, 1);
  }
  panel.xy[3][0] = 0.31f;
  panel.xy[3][1] = 0.33f;
  Mat3 inv = {};
  fe::invert(fe::rgbToXyz(panel), inv);
  expectNear(fe::multiply(inv, fe::rgbToXyz(panel)), Mat3{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, 1e-5,
             "self");
}

// The grid tables are a shortcut: at every grid node they must give exactly what the direct
// conversion of the node's codes gives, for either output curve.
TEST(ColorMathCore, GridShortcutEqualsDirectConversionBitForBit) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<float> u(-0.3f, 1.3f);
  for (int trial = 0; trial < 4; ++trial) {
    Mat3 m;
    for (auto& row : m.m)
      for (float& v : row) v = u(rng);
    for (bool powerLaw : {true, false}) {
      const fe::GridProducts grid = fe::gridProducts(m, fe::gridLinear(powerLaw));
      for (unsigned b = 0; b < 17; b += 3) {
        for (unsigned g = 0; g < 17; ++g) {
          for (unsigned r = 0; r < 17; ++r) {
            const unsigned level[3] = {r, g, b};
            int codes[3];
            for (int c = 0; c < 3; ++c) codes[c] = level[c] == 16 ? 4095 : 256 * level[c];
            int viaGrid[3], direct[3];
            fe::gridLevelsToPanel(grid, level, 1 / 2.2f, powerLaw, viaGrid);
            if (powerLaw) {
              fe::powerCodesToPanel(codes, m, 1 / 2.2f, direct);
            } else {
              fe::srgbCodesToPanel(codes, m, direct);
            }
            ASSERT_EQ(std::memcmp(viaGrid, direct, sizeof(direct)), 0)
                << "trial " << trial << " power " << powerLaw << " node " << r << "," << g << ","
                << b << ": " << viaGrid[0] << " " << viaGrid[1] << " " << viaGrid[2] << " vs "
                << direct[0] << " " << direct[1] << " " << direct[2];
          }
        }
      }
    }
  }
}

}  // namespace
