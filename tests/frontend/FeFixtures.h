// Synthetic optical data and targets for the front-end tests.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "base/Algorithm.h"
#include "cache/Lut3DCacheManager.h"
#include "frontend/PanelCorvaneFE.h"
#include "tests/support/TestSupport.h"

namespace fetest {

using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneFE;
using Odf = PanelCorvaneBase::OpticalDataFile;
using Target = PanelCorvaneBase::TargetParm;

struct Chroma {
  float xy[4][2];  // red, green, blue, white
};
inline constexpr Chroma kSrgb = {{{0.64f, 0.33f}, {0.30f, 0.60f}, {0.15f, 0.06f}, {0.3127f, 0.3290f}}};
inline constexpr Chroma kP3 = {{{0.68f, 0.32f}, {0.265f, 0.69f}, {0.15f, 0.06f}, {0.3127f, 0.3290f}}};
inline constexpr Chroma kPanel = {{{0.685f, 0.314f}, {0.245f, 0.715f}, {0.14f, 0.05f}, {0.31f, 0.33f}}};
inline constexpr int kXyzAt[4] = {106, 82, 118, 4};

inline void seal(Odf& odf) {
  unsigned char bytes[508];
  std::memcpy(bytes, odf.values, sizeof(bytes));
  odf.crc = static_cast<uint16_t>(postblend::Algorithm::crc_cal_by_bit(bytes, 508));
}

// Primaries adding up to a white of luminance whiteY; grey ramp on a pure power curve.
inline Odf makeOdf(const Chroma& c, double whiteY, double gamma) {
  double col[4][3];
  for (int p = 0; p < 4; ++p) {
    const double x = c.xy[p][0], y = c.xy[p][1];
    col[p][0] = x / y, col[p][1] = 1.0, col[p][2] = (1.0 - x - y) / y;
  }
  auto det = [&](int a, int b, int d) {
    return col[a][0] * (col[b][1] * col[d][2] - col[b][2] * col[d][1]) -
           col[b][0] * (col[a][1] * col[d][2] - col[a][2] * col[d][1]) +
           col[d][0] * (col[a][1] * col[b][2] - col[a][2] * col[b][1]);
  };
  const double scale[4] = {det(3, 1, 2) / det(0, 1, 2), det(0, 3, 2) / det(0, 1, 2),
                           det(0, 1, 3) / det(0, 1, 2), 1.0};
  Odf odf{};
  for (int p = 0; p < 4; ++p)
    for (int k = 0; k < 3; ++k) odf.values[kXyzAt[p] + k] = static_cast<float>(col[p][k] * scale[p] * whiteY);
  for (int k = 1; k <= 7; ++k)
    odf.values[5 + 6 * (8 - k)] = static_cast<float>(whiteY * std::pow(512.0 * k / 4095.0, gamma));
  seal(odf);
  return odf;
}

inline std::string bytesOf(const Odf& odf) { return std::string(reinterpret_cast<const char*>(&odf), 510); }

inline Target makeTarget(const Chroma& c, float p) {
  Target t{};
  for (int k = 0; k < 4; ++k) t.values[2 * k] = c.xy[k][0], t.values[2 * k + 1] = c.xy[k][1];
  t.values[8] = t.values[15] = p;
  return t;
}

inline std::string textOf(const Target& t) {
  std::ostringstream os;
  os.precision(9);
  for (float v : t.values) os << v << "\n";
  return os.str();
}

// Clean shared state, a temporary device root and captured log lines for every test.
class FeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    PanelCorvaneFE::sIn100nits = -1;
    std::strcpy(owner.mName, "tpanel");
    root.write("/data/vendor/display/.keep", "");
  }
  void TearDown() override { pctest::resetSharedState(); }

  pctest::TempRoot root;
  pctest::LogCapture log;
  PanelCorvaneBase owner;
  PanelCorvaneFE fe{&owner, 0};
};

}  // namespace fetest
