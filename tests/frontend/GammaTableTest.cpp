#include "frontend/GammaTable.h"

#include <vector>

#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

namespace fe = postblend::fe;
using fe::GammaPass;

std::vector<unsigned> table(const Odf& odf, const Target& t, GammaPass pass, fe::GammaKnots* knots = nullptr) {
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

// Whatever the data, code 0 stays 0, 4095 stays 4095 and no entry leaves the code range; a
// rising panel gives a rising table.
TEST(GammaTableCore, EndsFixedEntriesBoundedAndMonotonic) {
  const struct {
    double whiteY, gamma;
    float p;
    bool rising;
  } cases[] = {{500, 1.8, 1 / 1.9f, true}, {500, 2.2, 1 / 2.2f, true}, {500, 2.6, 1 / 2.5f, true},
               {0, 2.2, 0.45f, false},     {500, 2.2, 0.0f, false},     {500, 2.2, -0.5f, false},
               {500, 0.0, 0.45f, false},   {500, 9.0, 0.45f, false},    {-3, 2.2, 0.45f, false}};
  for (const auto& c : cases) {
    const auto t = table(makeOdf(kPanel, c.whiteY, c.gamma), makeTarget(kP3, c.p), GammaPass::Final);
    EXPECT_EQ(t[0], 0u);
    EXPECT_EQ(t[4095], 4095u);
    for (int i = 1; i < fe::kGammaSize; ++i) {
      ASSERT_LE(t[i], 4095u);
      ASSERT_TRUE(!c.rising || t[i - 1] <= t[i]) << c.gamma << " " << c.p << " " << i;
    }
  }
}

using GammaTableWrapper = FeTest;

// The operations are the core plus the intermediate pass's log lines and dump.
TEST_F(GammaTableWrapper, OperationsGiveTheCoreTablesAndTheIntermediatePassDumps) {
  PanelCorvaneBase::sDebug = 0x12;
  const Odf odf = makeOdf(kPanel, 420, 2.3);
  Target t = makeTarget(kSrgb, 0.5f);
  t.values[12] = 0.05f;
  t.values[17] = -0.05f;
  std::vector<unsigned> viaFe(fe::kGammaSize);
  fe.GammaCorrectionFinal(odf, t, viaFe.data());
  EXPECT_EQ(viaFe, table(odf, t, GammaPass::Final));
  EXPECT_EQ(log.countContaining("1-GammaCorrection"), 0);
  EXPECT_FALSE(root.exists("/data/vendor/display/gamma-4096.txt"));
  fe.GammaCorrection(odf, t, viaFe.data());
  EXPECT_EQ(viaFe, table(odf, t, GammaPass::Intermediate));
  EXPECT_TRUE(log.has("1-GammaCorrection: targetGamma is 2.000000")) << log.dump();
  const std::string dump = root.read("/data/vendor/display/gamma-4096.txt");
  EXPECT_EQ(dump.rfind("0 0\n", 0), 0u);
  EXPECT_NE(dump.find("\n4095 4095\n"), std::string::npos);
}

}  // namespace
}  // namespace fetest
