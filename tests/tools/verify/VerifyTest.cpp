// The panel and target models and what a table is predicted to leave of the target.
#include "tools/lib/verify/Verify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/verify/PanelModel.h"
#include "tools/lib/verify/VerifyPage.h"

using postblend::lut3d_info;

namespace {


// A 500-nit panel of these primaries and white, grey level k at the power 2.2 + step * k.
pctool::OpticalDataFile panel(const pctool::Chroma (&c)[4], double step = 0) {
  pctool::Mat3 m;
  EXPECT_TRUE(pctool::rgbToXyzMatrix(c, m));
  pctool::OdfMeasurements meas;
  double* prim[3] = {meas.red, meas.green, meas.blue};
  for (int p = 0; p < 3; ++p)
    for (int r = 0; r < 3; ++r) prim[p][r] = 500 * m[r][p];
  const pctool::Xyz w = pctool::apply(m, 500, 500, 500);
  meas.white[0] = w.X, meas.white[1] = w.Y, meas.white[2] = w.Z;
  for (int k = 0; k < 7; ++k) meas.greyY[k] = 500 * std::pow(pctool::kOdfGreyLevels[k] / 4095.0, 2.2 + step * k);
  pctool::OdfValues v;
  pctool::placeMeasurements(meas, &v);
  pctool::OpticalDataFile odf{};
  std::memcpy(odf.values, v.v, sizeof odf.values);
  return odf;
}

const pctool::Chroma kP3[4] = {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}};

pctool::TargetParm srgbTarget() {
  pctool::TargetParm t{};
  const float v[9] = {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f, 1.0f / 2.2f};
  std::memcpy(t.values, v, sizeof v);
  return t;
}

TEST(PanelModel, ToneCurvePassesThroughEveryMeasuredGreyLevel) {
  const pctool::OpticalDataFile odf = panel(kP3, 0.05);  // darker shadows than 2.2
  pctool::PanelModel model(odf);
  ASSERT_TRUE(model.valid());
  EXPECT_TRUE(model.notes().empty());
  for (int k = 0; k < 7; ++k) {
    const double level = pctool::kOdfGreyLevels[k];
    EXPECT_NEAR(model.toneCurve(level), std::pow(level / 4095.0, 2.2 + 0.05 * k), 1e-6) << level;
  }
  EXPECT_EQ(model.toneCurve(0), 0.0);
  EXPECT_EQ(model.toneCurve(4095), 1.0);
  for (int c = 1; c <= 4095; ++c) ASSERT_GT(model.toneCurve(c), model.toneCurve(c - 1)) << c;
  EXPECT_NEAR(model.xyz(4095, 4095, 4095).Y, 1.0, 1e-9);
  EXPECT_NEAR(pctool::chromaOf(model.xyz(4095, 4095, 4095)).x, 0.3127, 2e-4);
}

TEST(PanelModel, UnusableMeasurementsAreToldApart) {
  pctool::OpticalDataFile odf = panel(kP3);
  odf.values[pctool::odfGreyYAt(3)] = odf.values[pctool::odfGreyYAt(2)] * 1.01f;  // 2048 brighter than 2560
  pctool::PanelModel flat(odf);
  EXPECT_TRUE(flat.valid());
  EXPECT_EQ(flat.notes().size(), 1u);
  EXPECT_NEAR(flat.toneCurve(2048), std::pow(2048 / 4095.0, 2.2), 1e-12);  // 2.2 stands in
  odf = panel(kP3);
  std::copy(odf.values + pctool::kOdfRedAt, odf.values + pctool::kOdfRedAt + 3, odf.values + pctool::kOdfBlueAt);
  EXPECT_FALSE(pctool::PanelModel(odf).valid()) << "two primaries on one point";
}

TEST(Verify, De2000StatsRankTheWorstEntries) {
  auto lut = std::make_unique<lut3d_info>(pctest::identityTables(1)[0]);
  pctool::De2000Stats s = pctool::de2000Stats(*lut);
  EXPECT_EQ(s.max, 0.0);
  EXPECT_EQ(s.worst.size(), 10u);
  for (auto& e : lut->entries) e.out[0] = 4095 - e.in[0], e.out[2] = e.in[2] / 3;  // red inverted, blue darkened
  s = pctool::de2000Stats(*lut);
  EXPECT_GT(s.mean, 5.0);
  EXPECT_LE(s.mean, s.p95);
  EXPECT_LE(s.p95, s.max);
  EXPECT_EQ(s.worst.front().de, s.max);
  for (size_t i = 1; i < s.worst.size(); ++i) EXPECT_GE(s.worst[i - 1].de, s.worst[i].de);
}

TEST(Verify, PredictionIsNearZeroForTheTableThatFitsThePanel) {
  const pctool::OpticalDataFile odf = panel(kP3);
  const pctool::TargetParm target = srgbTarget();
  // The table that puts the target's colours on the panel: target XYZ back through the panel.
  pctool::PanelModel model(odf);
  pctool::TargetModel goal(target);
  pctool::Mat3 mp, inv;
  ASSERT_TRUE(pctool::rgbToXyzMatrix(model.chroma(), mp));
  ASSERT_TRUE(pctool::invert(mp, inv));
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  for (auto& e : lut->entries) {
    const pctool::Xyz x = goal.xyz(e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0);
    const pctool::Xyz lin = pctool::apply(inv, x.X, x.Y, x.Z);
    const double l[3] = {lin.X, lin.Y, lin.Z};
    for (int c = 0; c < 3; ++c) e.out[c] = uint32_t(std::lround(4095 * std::pow(std::clamp(l[c], 0.0, 1.0), 1 / 2.2)));
  }
  pctool::Prediction p;
  std::string err;
  ASSERT_TRUE(pctool::predict(*lut, odf, target, p, err)) << err;
  ASSERT_EQ(p.reference.size(), 21u);
  ASSERT_EQ(p.grey.size(), 17u);
  EXPECT_EQ(p.reference[17].name, "red");
  EXPECT_NEAR(p.targetDecodeExponent, 2.2, 1e-6);
  // Only quantisation and interpolation between nodes remain; without the table the wide panel
  // oversaturates the sRGB colours.
  EXPECT_LT(p.referenceSummary.max, 1.0);
  EXPECT_LT(p.greySummary.max, 1.0);
  EXPECT_GT(p.referenceSummary.maxUncalibrated, 5.0);

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

// The page says what it shows and keeps its axis for what the table leaves: the far values of
// the panel without the table stand at the edge with their value.
TEST(VerifyPage, NamesItsSubjectAndShowsFarValuesAtTheEdge) {
  auto lut = std::make_unique<lut3d_info>(pctest::identityTables(1)[0]);
  pctool::VerifyResult r;
  std::string err;
  ASSERT_TRUE(pctool::predict(*lut, panel(kP3), srgbTarget(), r.prediction, err)) << err;
  r.hasPrediction = true;
  pctool::LoadedTable cache{pctool::FileKind::Cache, "cofc.fw table 1 of 8", nullptr, {}};
  r.subject = pctool::describeSubject(cache, 1, "PanelCorvane_primary_Vivid.txt", "PanelCorvane_primary_1_max.odf", "");
  const pctool::VerifyPagePlan plan = pctool::planVerifyPage(r, 2.0);
  EXPECT_EQ(plan.title, "Verification: Vivid, full brightness");
  EXPECT_EQ(plan.subtitle[0], "mode: Vivid, full brightness     table: cofc.fw table 1 of 8 (table cache)");
  EXPECT_EQ(plan.subtitle[3], "note: the table of Vivid, full brightness is made from measurement set 2_max; the "
                              "optical data given is set 1_max");
  EXPECT_EQ(plan.subtitle[4].rfind("white: 500.0 cd/m2, 6507 K", 0), 0u) << plan.subtitle[4];
  EXPECT_EQ(plan.subtitle[6].rfind("grey ramp: predicted mean ", 0), 0u);
  EXPECT_EQ(plan.top, 6);  // three times the limit, though the identity leaves 6.83 in red
  EXPECT_EQ(plan.beyond, (std::vector<std::string>{"red: predicted 6.83", "red: without the table 6.83"}));
  pctool::LoadedTable cube{pctool::FileKind::Cube, "x.cube", nullptr, {}};
  EXPECT_EQ(pctool::describeSubject(cube, -1, "P_Cinema_100nits.txt", "x.odf", "").mode, "Cinema (its 100-nit target)");
  const pctool::WhiteFigures& w = r.prediction.white;
  EXPECT_NEAR(w.panel.Y, 500, 1e-3);
  EXPECT_NEAR(w.target.cct, 6504, 10);
  EXPECT_EQ(w.costPercent, 0);
}

}  // namespace
