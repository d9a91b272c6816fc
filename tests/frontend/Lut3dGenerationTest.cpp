#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "frontend/Lut3dGeneration.h"
#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

namespace fe = postblend::fe;
using postblend::lut3d_info;

std::unique_ptr<lut3d_info> generate(const Odf& odf, const Target& t, fe::Lut3dSwitches s,
                                     fe::Lut3dObserver* obs = nullptr) {
  auto lut = std::make_unique<lut3d_info>();
  fe::generateLut3D(odf, t, s, *lut, obs);
  return lut;
}

// First entry where the two tables differ, or -1.
int firstDifference(const lut3d_info& a, const lut3d_info& b) {
  for (int n = 0; n < static_cast<int>(postblend::kLut3dEntries); ++n)
    if (std::memcmp(&a.entries[n], &b.entries[n], sizeof(a.entries[n])) != 0) return n;
  return -1;
}

Target shiftedTarget() {
  Target t = makeTarget(kP3, 1 / 2.2f);
  t.values[9] = 0.02f;
  t.values[12] = 0.01f;
  t.values[17] = -0.02f;
  return t;
}

using Lut3dCore = FeTest;

// The front end's operation is the core plus logging: node by node the same table, whatever
// switches the shared state holds.
TEST_F(Lut3dCore, OperationGivesTheCoreTable) {
  const Odf odf = makeOdf(kPanel, 450, 2.25);
  const struct {
    bool gamma;
    uint32_t debug;
  } cases[] = {{false, 0}, {true, 0}, {true, 0x02}, {false, 0x16}};
  for (const auto& c : cases) {
    PanelCorvaneBase::sIsGammaCorrectionOn = c.gamma;
    PanelCorvaneBase::sDebug = c.debug;
    Target t = shiftedTarget();
    Odf o = odf;
    lut3d_info viaFe{};
    fe.generateLut3D(o, t, &viaFe, 0);
    const auto core = generate(odf, t, {c.gamma, (c.debug & 0x02) != 0});
    EXPECT_EQ(firstDifference(viaFe, *core), -1) << c.gamma << " " << c.debug;
  }
}

class Recorder : public fe::Lut3dObserver {
 public:
  void conversionReady(const fe::Conversion&) override { stages += "conversion "; }
  void gammaTableReady(fe::GammaPass p, const fe::GammaTable&, const fe::GammaKnots&) override {
    stages += p == fe::GammaPass::Final ? "final " : "intermediate ";
  }
  void mainPassDone(const lut3d_info& lut) override {
    stages += "main ";
    afterMain = lut;
  }
  void protectWhiteStarting(const lut3d_info&) override { stages += "protect "; }
  void protectWhiteDone(const lut3d_info&) override { stages += "done"; }
  std::string stages;
  lut3d_info afterMain{};
};

TEST(Lut3dCoreStages, ObserverSeesEachStageOnceInOrder) {
  const Odf odf = makeOdf(kPanel, 450, 2.25);
  const Target t = shiftedTarget();
  Recorder off, on;
  generate(odf, t, {false, false}, &off);
  EXPECT_EQ(off.stages, "conversion main ");
  const auto lut = generate(odf, t, {true, false}, &on);
  EXPECT_EQ(on.stages, "conversion intermediate main protect final done");
  // The protect-white pass touches the grey axis below white and the corner next to it only.
  for (unsigned n = 0; n < postblend::kLut3dEntries; ++n) {
    const unsigned r = n % 17, g = n / 17 % 17, b = n / 289;
    const bool grey = r == g && g == b && r < 16;
    const bool corner = r >= 15 && g >= 15 && b >= 15 && !(r == 16 && g == 16 && b == 16);
    if (!grey && !corner) {
      ASSERT_EQ(std::memcmp(&lut->entries[n], &on.afterMain.entries[n], sizeof(lut->entries[n])), 0)
          << n;
    }
  }
}

// The panel's chromaticities come back from its measured XYZ, and a target of the panel's own
// gamut converts by the identity.
TEST(Lut3dCoreStages, ConversionOfThePanelsOwnGamutIsIdentity) {
  const Odf odf = makeOdf(kPanel, 450, 2.25);
  Target own{};
  const fe::Chromaticities panel = fe::panelChromaticities(odf);
  for (int k = 0; k < 4; ++k)
    own.values[2 * k] = panel.xy[k][0], own.values[2 * k + 1] = panel.xy[k][1];
  const fe::Conversion c = fe::conversion(own, odf);
  EXPECT_TRUE(c.targetPrimariesRegular && c.panelPrimariesRegular && c.panelToXyzRegular);
  for (int r = 0; r < 3; ++r)
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(c.targetToPanel.m[r][k], r == k ? 1 : 0, 1e-4);
  for (int k = 0; k < 4; ++k) {
    EXPECT_NEAR(panel.xy[k][0], kPanel.xy[k][0], 1e-5) << k;
    EXPECT_NEAR(panel.xy[k][1], kPanel.xy[k][1], 1e-5) << k;
  }
}

// No scratch is shared between calls: generations with different switches on several threads at
// once give the tables they give one at a time.
TEST(Lut3dCoreStages, ConcurrentGenerationsDoNotShareScratch) {
  const Odf odf[2] = {makeOdf(kPanel, 120, 2.2), makeOdf(kPanel, 480, 2.3)};
  const Target t[2] = {shiftedTarget(), makeTarget(kSrgb, 1 / 2.4f)};
  const fe::Lut3dSwitches sw[4] = {{false, false}, {true, false}, {true, true}, {true, false}};
  std::vector<std::unique_ptr<lut3d_info>> serial, parallel(4);
  for (int k = 0; k < 4; ++k) serial.push_back(generate(odf[k % 2], t[k / 2], sw[k]));
  std::vector<std::thread> threads;
  for (int k = 0; k < 4; ++k)
    threads.emplace_back([&, k] {
      for (int round = 0; round < 3; ++round) parallel[k] = generate(odf[k % 2], t[k / 2], sw[k]);
    });
  for (auto& th : threads) th.join();
  for (int k = 0; k < 4; ++k) EXPECT_EQ(firstDifference(*serial[k], *parallel[k]), -1) << k;
}

}  // namespace
}  // namespace fetest
