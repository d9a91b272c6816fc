#include "frontend/Lut3dGeneration.h"

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

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

using Lut3dGen = FeTest;

// The front end's operation is the core plus logging and dumps: node by node the same table,
// whatever switches the shared state holds; the dumps are named by table and panel.
TEST_F(Lut3dGen, OperationGivesTheCoreTableAndNamesItsDumps) {
  root.write("/data/vendor/display/.keep", "");
  const Odf odf = makeOdf(kPanel, 450, 2.25);
  const struct {
    bool gamma;
    uint32_t debug;
  } cases[] = {{false, 0}, {true, 0}, {true, 0x02}, {false, 0x16}, {true, 0x10}};
  PanelCorvaneFE second(&owner, 1);
  for (const auto& c : cases) {
    PanelCorvaneBase::sIsGammaCorrectionOn = c.gamma;
    PanelCorvaneBase::sDebug = c.debug;
    Target t = shiftedTarget();
    Odf o = odf;
    lut3d_info viaFe{};
    second.generateLut3D(o, t, &viaFe, 3);
    EXPECT_EQ(firstDifference(viaFe, *generate(odf, t, {c.gamma, (c.debug & 0x02) != 0})), -1) << c.gamma << c.debug;
  }
  for (const char* f : {"/data/vendor/display/lut3d3-P1-orignal-before-gamma.txt", "/data/vendor/display/lut3d31-orignal.txt"}) {
    const std::string text = root.read(f);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4913) << f;
    EXPECT_EQ(text.rfind("0 0 0 0 0 0\n", 0), 0u) << f;
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

// The protect-white pass redoes the grey axis below white and the corner next to it only;
// under verbose logging only grey node 0 and that corner.
TEST(Lut3dCore, StagesInOrderAndWhatProtectWhiteTouches) {
  const Odf odf = makeOdf(kPanel, 450, 2.25);
  const Target t = shiftedTarget();
  Recorder off, on, shortened;
  generate(odf, t, {false, false}, &off);
  EXPECT_EQ(off.stages, "conversion main ");
  const auto lut = generate(odf, t, {true, false}, &on);
  EXPECT_EQ(on.stages, "conversion intermediate main protect final done");
  const auto lutShort = generate(odf, t, {true, true}, &shortened);
  for (unsigned n = 0; n < postblend::kLut3dEntries; ++n) {
    const unsigned r = n % 17, g = n / 17 % 17, b = n / 289;
    const bool grey = r == g && g == b && r < 16;
    const bool corner = r >= 15 && g >= 15 && b >= 15 && !(r == 16 && g == 16 && b == 16);
    const auto& e = lut->entries[n];
    ASSERT_TRUE(grey || corner || std::memcmp(&e, &on.afterMain.entries[n], sizeof e) == 0) << n;
    const bool redoneShort = corner || n == 0;
    const auto& shortRef = redoneShort ? e : shortened.afterMain.entries[n];
    ASSERT_EQ(std::memcmp(&lutShort->entries[n], &shortRef, sizeof e), 0) << n;
  }
}

TEST(Lut3dCore, DegenerateDataStillGivesCodesInRange) {
  for (bool gc : {false, true})
    for (const Odf& data : {Odf{}, makeOdf(kPanel, 0, 2.2), makeOdf(kPanel, 300, -1)})
      for (const Target& t : {Target{}, makeTarget(kP3, -0.5f)}) {
        const auto lut = generate(data, t, {gc, false});
        for (const auto& e : lut->entries) ASSERT_LE(std::max({e.out[0], e.out[1], e.out[2]}), 4095u);
      }
}

// No scratch is shared between calls: generations with different switches on several threads at
// once give the tables they give one at a time.
TEST(Lut3dCore, ConcurrentGenerationsDoNotShareScratch) {
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
