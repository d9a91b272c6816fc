#include <algorithm>
#include <memory>

#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

using postblend::lut3d_entry;
using postblend::lut3d_info;

class Lut3dGen : public FeTest {
 protected:
  std::unique_ptr<lut3d_info> run(Target t, int index = 0, PanelCorvaneFE* which = nullptr) {
    PanelCorvaneFE& f = which ? *which : fe;
    auto lut = std::make_unique<lut3d_info>();
    f.initPreCalLut3D();
    f.generateLut3D(odf, t, lut.get(), index);
    return lut;
  }
  static bool same(const lut3d_info& a, const lut3d_info& b, int r, int g, int bl) {
    const int n = 289 * bl + 17 * g + r;
    return std::memcmp(a.entries[n].out, b.entries[n].out, sizeof(a.entries[n].out)) == 0;
  }
  Odf odf = makeOdf(kPanel, 450, 2.25);
};

TEST_F(Lut3dGen, TargetEqualToPanelWithoutGammaCorrectionIsNearIdentity) {
  Chroma own;  // the panel's chromaticities as derived from its measurements
  for (int p = 0; p < 4; ++p) {
    const float* v = &odf.values[kXyzAt[p]];
    own.xy[p][0] = v[0] / ((v[0] + v[1]) + v[2]), own.xy[p][1] = v[1] / ((v[0] + v[1]) + v[2]);
  }
  auto lut = run(makeTarget(own, 1 / 2.2f));
  for (const auto& e : lut->entries)
    for (int c = 0; c < 3; ++c) ASSERT_NEAR((int)e.out[c], (int)e.in[c], 1);
  EXPECT_EQ(lut->entries[289 * 3 + 16].in[0], 4095u);
  EXPECT_EQ(lut->entries[289 * 3 + 16].in[2], 768u);
}

TEST_F(Lut3dGen, ProtectWhiteRecomputesGreysAndCornerButNotWhite) {
  PanelCorvaneBase::sIsGammaCorrectionOn = true;
  Target plain = makeTarget(kP3, 1 / 2.2f), shifted = plain;
  shifted.values[15] = 1 / 2.4f;  // only the final pass differs
  auto a = run(plain), b = run(shifted);
  PanelCorvaneBase::sDebug = 0x03;
  auto shortened = run(shifted);

  EXPECT_TRUE(same(*a, *b, 16, 16, 16));
  EXPECT_FALSE(same(*a, *b, 8, 8, 8));
  EXPECT_FALSE(same(*a, *b, 15, 15, 15));
  EXPECT_TRUE(same(*a, *b, 8, 3, 8));
  // Under verbose logging only grey node 0 and the corner next to white are redone.
  for (int i = 1; i < 15; ++i) EXPECT_TRUE(same(*a, *shortened, i, i, i)) << i;
  EXPECT_TRUE(same(*b, *shortened, 0, 0, 0));
  EXPECT_TRUE(same(*b, *shortened, 15, 15, 15));
  EXPECT_EQ(log.countContaining("1-generateLut3D: After Protect W: "), 17);
  EXPECT_EQ(log.countContaining("1-generateLut3D: Before Protect W "), 17);
}

TEST_F(Lut3dGen, DegenerateDataStillGivesCodesInRange) {
  const Odf zero{};
  for (bool gc : {false, true}) {
    PanelCorvaneBase::sIsGammaCorrectionOn = gc;
    for (const Odf& data : {zero, makeOdf(kPanel, 0, 2.2), makeOdf(kPanel, 300, -1)}) {
      odf = data;
      for (auto& lut : {run(Target{}), run(makeTarget(kP3, -0.5f))})
        for (const auto& e : lut->entries) ASSERT_LE(std::max({e.out[0], e.out[1], e.out[2]}), 4095u);
    }
  }
}

TEST_F(Lut3dGen, DebugDumpsAreNamedByTableAndPanel) {
  PanelCorvaneBase::sIsGammaCorrectionOn = true;
  PanelCorvaneBase::sDebug = 0x10;
  PanelCorvaneFE second(&owner, 1);
  run(makeTarget(kSrgb, 1 / 2.2f), 3, &second);
  for (const char* f : {"/data/vendor/display/lut3d3-P1-orignal-before-gamma.txt",
                        "/data/vendor/display/lut3d31-orignal.txt"}) {
    const std::string text = root.read(f);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4913) << f;
    EXPECT_EQ(text.rfind("0 0 0 0 0 0\n", 0), 0u) << f;
  }
}

}  // namespace
}  // namespace fetest
