#include <vector>

#include "frontend/GammaTable.h"
#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

namespace fe = postblend::fe;
using fe::GammaPass;

std::vector<unsigned> table(const Odf& odf, const Target& t, GammaPass pass,
                            fe::GammaKnots* knots = nullptr) {
  fe::GammaTable out;
  fe::buildGammaTable(odf, t, pass, out, knots);
  return std::vector<unsigned>(out.code, out.code + fe::kGammaSize);
}

TEST(GammaTableCore, KnotsOfAPowerLawPanel) {
  Target t = makeTarget(kP3, 0.5f);
  t.values[9] = 0.25f;
  t.values[10] = -0.125f;
  fe::GammaKnots k;
  table(makeOdf(kPanel, 400, 2.4), t, GammaPass::Intermediate, &k);
  EXPECT_FLOAT_EQ(k.white, 400);
  for (int j = 0; j < 7; ++j) {
    EXPECT_NEAR(k.brightness[j], 400 * std::pow(512.0 * (j + 1) / 4095, 2.4), 1e-3) << j;
    EXPECT_NEAR(k.knotGamma[j], 2.4, 1e-5) << j;
  }
  EXPECT_NEAR(k.gamma0, 2.65, 1e-5);
  EXPECT_NEAR(k.gamma256, 2.275, 1e-5);
  EXPECT_EQ(k.targetGamma, 2.0);
}

// Each pass reads its own tail offsets and exponent, and only those: a parameter of one pass
// moved alone leaves the other pass's table as it was.
TEST(GammaTableCore, EachPassReadsItsOwnParameters) {
  const Odf odf = makeOdf(kPanel, 420, 2.25);
  const Target base = makeTarget(kP3, 1 / 2.2f);
  const auto refI = table(odf, base, GammaPass::Intermediate);
  const auto refF = table(odf, base, GammaPass::Final);
  const struct {
    int index;
    float value;
    bool intermediate, final;
  } cases[] = {{8, 1 / 2.4f, true, false}, {11, 0.2f, true, false}, {12, 0.2f, true, false},
               {13, 0.2f, true, false},    {14, 0.2f, true, false}, {15, 1 / 2.4f, false, true},
               {16, 0.2f, false, true},    {17, 0.2f, false, true}, {18, 0.2f, false, true},
               {19, 0.2f, false, true},    {9, 0.3f, true, true},   {10, 0.3f, true, true}};
  for (const auto& c : cases) {
    Target t = base;
    t.values[c.index] = c.value;
    EXPECT_EQ(table(odf, t, GammaPass::Intermediate) != refI, c.intermediate) << c.index;
    EXPECT_EQ(table(odf, t, GammaPass::Final) != refF, c.final) << c.index;
  }
}

TEST(GammaTableCore, MonotonicPanelsGiveNonDecreasingTables) {
  for (double gamma : {1.8, 2.2, 2.6}) {
    for (float p : {1 / 1.9f, 1 / 2.2f, 1 / 2.5f}) {
      const auto t = table(makeOdf(kPanel, 500, gamma), makeTarget(kP3, p), GammaPass::Final);
      for (int i = 1; i < fe::kGammaSize; ++i)
        ASSERT_LE(t[i - 1], t[i]) << gamma << " " << p << " " << i;
    }
  }
}

using GammaTableWrapper = FeTest;

TEST_F(GammaTableWrapper, OperationsGiveTheCoreTables) {
  const Odf odf = makeOdf(kPanel, 420, 2.3);
  Target t = makeTarget(kSrgb, 1 / 2.2f);
  t.values[12] = 0.05f;
  t.values[17] = -0.05f;
  std::vector<unsigned> viaFe(fe::kGammaSize);
  fe.GammaCorrection(odf, t, viaFe.data());
  EXPECT_EQ(viaFe, table(odf, t, GammaPass::Intermediate));
  fe.GammaCorrectionFinal(odf, t, viaFe.data());
  EXPECT_EQ(viaFe, table(odf, t, GammaPass::Final));
}

}  // namespace
}  // namespace fetest
