#include "frontend/ColorMath.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

namespace fe = postblend::fe;
using ColorMath = FeTest;
float kIdentity[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// Published matrices (rounded to 4 places) through the front end's operations.
TEST_F(ColorMath, PrimariesGiveThePublishedMatricesAndInvert) {
  const Chroma kBt2020 = {{{0.708f, 0.292f}, {0.170f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.3290f}}};
  const struct {
    const char* name;
    Chroma chroma;
    float m[3][3];
  } cases[] = {
      {"sRGB", kSrgb, {{0.4124f, 0.3576f, 0.1805f}, {0.2126f, 0.7152f, 0.0722f}, {0.0193f, 0.1192f, 0.9505f}}},
      {"P3-D65", kP3, {{0.4866f, 0.2657f, 0.1982f}, {0.2290f, 0.6917f, 0.0793f}, {0.0000f, 0.0451f, 1.0439f}}},
      {"BT.2020", kBt2020, {{0.6370f, 0.1446f, 0.1689f}, {0.2627f, 0.6780f, 0.0593f}, {0.0000f, 0.0281f, 1.0610f}}},
  };
  for (const auto& c : cases) {
    Chroma in = c.chroma;
    float m[3][3], inv[3][3];
    fe.RGB2XYZ_Matrix(in.xy, m);
    fe.inverseMatrix(m, inv);
    for (int r = 0; r < 3; ++r) {
      for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(m[r][k], c.m[r][k], 1e-4) << c.name << " " << r << k;
        const float prod = inv[r][0] * m[0][k] + inv[r][1] * m[1][k] + inv[r][2] * m[2][k];
        EXPECT_NEAR(prod, r == k ? 1.0f : 0.0f, 1e-5) << c.name;
      }
    }
  }
  float flat[3][3] = {{1, 2, 3}, {2, 4, 6}, {0, 1, 1}}, dst[3][3];
  for (auto& row : dst) for (float& v : row) v = 9;
  fe.inverseMatrix(flat, dst);
  for (int r = 0; r < 3; ++r)
    for (int k = 0; k < 3; ++k) EXPECT_EQ(dst[r][k], r == k ? 1.0f : 9.0f) << "singular: only the diagonal is set";
}

// The grid tables are a shortcut: at every grid node they must give exactly what the direct
// conversion of the node's codes gives, for either output curve.
TEST(ColorMathCore, GridShortcutEqualsDirectConversionBitForBit) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<float> u(-0.3f, 1.3f);
  for (int trial = 0; trial < 4; ++trial) {
    fe::Mat3 m;
    for (auto& row : m.m)
      for (float& v : row) v = u(rng);
    for (bool powerLaw : {true, false}) {
      const fe::GridProducts grid = fe::gridProducts(m, fe::gridLinear(powerLaw));
      for (unsigned n = 0; n < postblend::kLut3dEntries; n += 3) {
        const unsigned level[3] = {n % 17, n / 17 % 17, n / 289};
        int codes[3], viaGrid[3], direct[3];
        for (int c = 0; c < 3; ++c) codes[c] = level[c] == 16 ? 4095 : 256 * static_cast<int>(level[c]);
        fe::gridLevelsToPanel(grid, level, 1 / 2.2f, powerLaw, viaGrid);
        if (powerLaw) {
          fe::powerCodesToPanel(codes, m, 1 / 2.2f, direct);
        } else {
          fe::srgbCodesToPanel(codes, m, direct);
        }
        ASSERT_EQ(std::vector<int>(viaGrid, viaGrid + 3), std::vector<int>(direct, direct + 3))
            << "trial " << trial << " power " << powerLaw << " entry " << n;
      }
    }
  }
}

TEST_F(ColorMath, EncodingRoundTripsAndTheTailScalesClampsAndSurvivesNonFiniteValues) {
  for (int code = 0; code < 4096; code += 5) {
    int in[3] = {code, 4095 - code, code / 2}, srgb[3], power[3];
    fe.nonlinearRGB2Panel(in, kIdentity, srgb);
    fe.nonlinearRGB2Panel(in, kIdentity, 1 / 2.2f, power);
    for (int c = 0; c < 3; ++c) ASSERT_TRUE(std::abs(srgb[c] - in[c]) <= 1 && std::abs(power[c] - in[c]) <= 1) << code;
  }
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  struct Case {
    float in[3];
    int out[3];
  } cases[] = {
      {{-0.5f, 0.0f, 1.0f}, {0, 0, 4095}},
      {{nan, 0.0f, 1.0f}, {0, 0, 0}},     // 0 * NaN spreads NaN to every row
      {{inf, 0.0f, 0.0f}, {4095, 0, 0}},  // NaN rows leave the largest NaN: no scaling
      {{-inf, nan, 1e30f}, {0, 0, 0}},
      {{1e30f, 1e30f, 0.0f}, {4095, 4095, 0}},
  };
  for (auto& c : cases) {
    int out[3];
    fe.nonlinearRGB2Panel(c.in, kIdentity, out);
    EXPECT_EQ(std::vector<int>(out, out + 3), std::vector<int>(c.out, c.out + 3));
  }
  // An out-of-range triple is scaled as a whole: the largest channel ends at full scale.
  float big[3] = {4.0f, 2.0f, 1.0f};
  int out[3];
  fe.nonlinearRGB2Panel(big, kIdentity, out);
  EXPECT_EQ(out[0], 4095);
  auto encode = [](double v) { return std::pow(v, 1 / 2.4) * 1.055 - 0.055; };
  EXPECT_NEAR(out[1], 4095 * encode(2) / encode(4), 1.5);
  EXPECT_NEAR(out[2], 4095 * encode(1) / encode(4), 1.5);
  EXPECT_EQ(fe.max(0xFFFFFFFFu, 7, 0x80000000u), 0xFFFFFFFFu);
  for (bool gc : {false, true}) {  // the grid operations, on either decoding curve
    PanelCorvaneBase::sIsGammaCorrectionOn = gc;
    fe.initPreCalLut3D();
    fe.initPreCalLutRGB(kIdentity);
    unsigned white[3] = {16, 16, 16}, black[3] = {0, 0, 0};
    int w[3], b[3];
    fe.nonlinearRGB2Panel(white, nullptr, 1 / 2.2f, w);
    fe.nonlinearRGB2Panel(black, nullptr, 1 / 2.2f, b);
    EXPECT_EQ(w[0] + w[1] + w[2] + b[0] + b[1] + b[2], 3 * 4095) << gc;
  }
}

}  // namespace
}  // namespace fetest
