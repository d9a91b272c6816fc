#include "tools/lib/verify/PanelModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tools/lib/calibration/OdfWriter.h"

namespace {

pctool::OpticalDataFile odfWith(const pctool::OdfMeasurements& m) {
  pctool::OdfValues v;
  pctool::placeMeasurements(m, &v);
  pctool::OpticalDataFile odf{};
  std::memcpy(odf.values, v.v, sizeof odf.values);
  return odf;
}

pctool::OdfMeasurements srgbLike() {
  pctool::OdfMeasurements m;
  const double red[3] = {41.24, 21.26, 1.93}, green[3] = {35.76, 71.52, 11.92}, blue[3] = {18.05, 7.22, 95.05};
  for (int c = 0; c < 3; ++c) {
    m.red[c] = red[c], m.green[c] = green[c], m.blue[c] = blue[c];
    m.white[c] = red[c] + green[c] + blue[c];
  }
  // A ramp that is not a pure power: darker shadows than 2.2.
  for (int k = 0; k < 7; ++k) m.greyY[k] = 100 * std::pow(pctool::kOdfGreyLevels[k] / 4095.0, 2.2 + 0.05 * k);
  return m;
}

TEST(PanelModel, ToneCurvePassesThroughEveryMeasuredGreyLevel) {
  pctool::OdfMeasurements m = srgbLike();
  pctool::PanelModel panel(odfWith(m));
  ASSERT_TRUE(panel.valid());
  EXPECT_TRUE(panel.notes().empty());
  for (int k = 0; k < 7; ++k)
    EXPECT_NEAR(panel.toneCurve(pctool::kOdfGreyLevels[k]), m.greyY[k] / 100, 1e-6) << pctool::kOdfGreyLevels[k];
  EXPECT_EQ(panel.toneCurve(0), 0.0);
  EXPECT_EQ(panel.toneCurve(4095), 1.0);
  for (int c = 1; c <= 4095; ++c) ASSERT_GT(panel.toneCurve(c), panel.toneCurve(c - 1)) << c;
  pctool::Xyz w = panel.xyz(4095, 4095, 4095);
  EXPECT_NEAR(w.Y, 1.0, 1e-9);
  EXPECT_NEAR(pctool::chromaOf(w).x, 0.3127, 2e-4);
}

TEST(PanelModel, UnusableMeasurementsAreToldApart) {
  pctool::OdfMeasurements m = srgbLike();
  m.greyY[3] = m.greyY[2] * 1.01;  // 2048 brighter than 2560
  pctool::PanelModel flatRamp(odfWith(m));
  EXPECT_TRUE(flatRamp.valid());
  ASSERT_EQ(flatRamp.notes().size(), 1u);
  EXPECT_NEAR(flatRamp.toneCurve(2048), std::pow(2048 / 4095.0, 2.2), 1e-12);

  m = srgbLike();
  for (int c = 0; c < 3; ++c) m.blue[c] = m.red[c];  // two primaries on one point
  EXPECT_FALSE(pctool::PanelModel(odfWith(m)).valid());
}

}  // namespace
