#include "tools/lib/verify/Verify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "base/Algorithm.h"
#include "tests/support/TestSupport.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/verify/PanelModel.h"

using postblend::lut3d_info;

namespace {

// A panel with P3-like primaries, D65 white of 500 nits and an exact 2.2 grey ramp.
pctool::OpticalDataFile p3Panel() {
  const pctool::Chroma c[4] = {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}};
  pctool::Mat3 m;
  EXPECT_TRUE(pctool::rgbToXyzMatrix(c, m));
  pctool::OdfMeasurements meas;
  double* prim[3] = {meas.red, meas.green, meas.blue};
  for (int p = 0; p < 3; ++p)
    for (int r = 0; r < 3; ++r) prim[p][r] = 500 * m[r][p];
  pctool::Xyz w = pctool::apply(m, 500, 500, 500);
  meas.white[0] = w.X, meas.white[1] = w.Y, meas.white[2] = w.Z;
  for (int k = 0; k < 7; ++k) meas.greyY[k] = 500 * std::pow(pctool::kOdfGreyLevels[k] / 4095.0, 2.2);
  pctool::OdfValues v;
  pctool::placeMeasurements(meas, &v);
  pctool::OpticalDataFile odf{};
  std::memcpy(odf.values, v.v, sizeof odf.values);
  return odf;
}

pctool::TargetParm srgbTarget() {
  pctool::TargetParm t{};
  const float v[9] = {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f, 1.0f / 2.2f};
  std::memcpy(t.values, v, sizeof v);
  return t;
}

// The table that puts the target's colours on the panel: target XYZ back through the panel.
std::unique_ptr<lut3d_info> calibratedTable(const pctool::OpticalDataFile& odf, const pctool::TargetParm& t) {
  pctool::PanelModel panel(odf);
  pctool::TargetModel goal(t);
  pctool::Mat3 mp, inv;
  EXPECT_TRUE(pctool::rgbToXyzMatrix(panel.chroma(), mp));
  EXPECT_TRUE(pctool::invert(mp, inv));
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  for (auto& e : lut->entries) {
    pctool::Xyz x = goal.xyz(e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0);
    pctool::Xyz lin = pctool::apply(inv, x.X, x.Y, x.Z);
    double l[3] = {lin.X, lin.Y, lin.Z};
    for (int c = 0; c < 3; ++c)
      e.out[c] = uint32_t(std::lround(4095 * std::pow(std::clamp(l[c], 0.0, 1.0), 1 / 2.2)));
  }
  return lut;
}

TEST(Verify, IdentityTableMovesNothing) {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  pctool::De76Report d = pctool::de76Report(*lut);
  EXPECT_EQ(d.bins[0], 4913u);
  EXPECT_EQ(d.passPercent, 100u);
  EXPECT_TRUE(d.pass);
  EXPECT_TRUE(d.far.empty());
  pctool::De2000Stats s = pctool::de2000Stats(*lut);
  EXPECT_EQ(s.max, 0.0);
  EXPECT_EQ(s.worst.size(), 10u);
}

TEST(Verify, Figures76MatchThePluginsOwnCheckOnAShiftedTable) {
  pctest::resetSharedState();
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  for (auto& e : lut->entries) e.out[0] = 4095 - e.in[0], e.out[2] = e.in[2] / 3;  // red inverted, blue darkened
  pctool::De76Report d = pctool::de76Report(*lut);
  pctest::LogCapture log;
  int rc = postblend::Algorithm::check3DLut(*lut);
  for (int k = 0; k < 10; ++k)
    EXPECT_TRUE(log.has("1-check3DLut: [" + std::to_string(k) + "] = " + std::to_string(d.bins[k]))) << k;
  EXPECT_EQ(rc == 0, d.pass);
  EXPECT_EQ(log.countContaining("-->"), static_cast<int>(d.far.size()));
  EXPECT_FALSE(d.far.empty());

  pctool::De2000Stats s = pctool::de2000Stats(*lut);
  EXPECT_GT(s.mean, 5.0);
  EXPECT_LE(s.mean, s.p95);
  EXPECT_LE(s.p95, s.max);
  EXPECT_EQ(s.worst.front().de, s.max);
  for (size_t i = 1; i < s.worst.size(); ++i) EXPECT_GE(s.worst[i - 1].de, s.worst[i].de);
}

TEST(Verify, PredictionIsNearZeroForTheTableThatFitsThePanel) {
  pctool::OpticalDataFile odf = p3Panel();
  pctool::TargetParm target = srgbTarget();
  auto lut = calibratedTable(odf, target);
  pctool::Prediction p;
  std::string err;
  ASSERT_TRUE(pctool::predict(*lut, odf, target, p, err)) << err;
  ASSERT_EQ(p.reference.size(), 21u);
  ASSERT_EQ(p.grey.size(), 17u);
  EXPECT_TRUE(p.notes.empty());
  EXPECT_NEAR(p.targetDecodeExponent, 2.2, 1e-6);
  // Only quantisation and interpolation between nodes remain.
  EXPECT_LT(p.referenceSummary.max, 1.0);
  EXPECT_LT(p.greySummary.max, 1.0);
  // Without the table the wide panel oversaturates the sRGB colours.
  EXPECT_GT(p.referenceSummary.maxUncalibrated, 5.0);
  EXPECT_EQ(p.reference[17].name, "red");

  // An identity table leaves the uncalibrated error, and grey stays neutral on a D65 panel.
  pctool::setIdentity(*lut, 0);
  ASSERT_TRUE(pctool::predict(*lut, odf, target, p, err));
  for (const auto& c : p.reference) EXPECT_NEAR(c.de, c.deUncalibrated, 0.05) << c.name;
  EXPECT_LT(p.greySummary.max, 0.05);

  pctool::TargetParm broken = target;
  broken.values[1] = 0;
  EXPECT_FALSE(pctool::predict(*lut, odf, broken, p, err));
  EXPECT_EQ(err, "target chromaticities or exponent are unusable");
}

TEST(Verify, JsonCarriesEveryFigure) {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  pctool::VerifyResult r;
  r.label = "a \"quoted\" name";
  r.de76 = pctool::de76Report(*lut);
  r.de2000 = pctool::de2000Stats(*lut);
  std::string err;
  r.hasPrediction = pctool::predict(*lut, p3Panel(), srgbTarget(), r.prediction, err);
  std::string j = pctool::toJson({r});
  for (const char* key : {"\"table\":\"a \\\"quoted\\\" name\"", "\"pass_percent\":100", "\"p95\":0.0000",
                          "\"reference_summary\":{", "\"grey\":[", "\"name\":\"dark blue\""})
    EXPECT_NE(j.find(key), std::string::npos) << key;
  EXPECT_EQ(j.find("nan"), std::string::npos);
}

}  // namespace
