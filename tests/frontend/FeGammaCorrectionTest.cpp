#include <vector>

#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

using GammaTable = FeTest;
using Table = std::vector<unsigned>;

Table build(PanelCorvaneFE& fe, const Odf& odf, const Target& t, bool final) {
  Table table(4096, 0xABCD);
  if (final) {
    fe.GammaCorrectionFinal(odf, t, table.data());
  } else {
    fe.GammaCorrection(odf, t, table.data());
  }
  return table;
}

// First and last code whose entry differs between the two tables (-1 when none).
std::pair<int, int> changedRange(const Table& a, const Table& b) {
  int first = -1, last = -1;
  for (int i = 0; i < 4096; ++i)
    if (a[i] != b[i]) last = i, first = first < 0 ? i : first;
  return {first, last};
}

TEST_F(GammaTable, PanelOnTwoPointTwoGivesNearIdentity) {
  const Odf odf = makeOdf(kPanel, 420, 2.2);
  const Target t = makeTarget(kP3, 1 / 2.2f);
  for (bool final : {false, true}) {
    Table table = build(fe, odf, t, final);
    for (int i = 0; i < 4096; ++i) ASSERT_NEAR((int)table[i], i, 1) << i;
  }
}

TEST_F(GammaTable, EndsAreFixedAndEntriesBoundedWhateverTheData) {
  struct Case {
    double whiteY, gamma;
    float p;
  } cases[] = {{0, 2.2, 0.45f}, {500, 2.2, 0.0f}, {500, 2.2, -0.5f}, {500, 0.0, 0.45f},
               {500, 9.0, 0.45f}, {-3, 2.2, 0.45f}};
  for (const auto& c : cases) {
    const Table table = build(fe, makeOdf(kPanel, c.whiteY, c.gamma), makeTarget(kP3, c.p), true);
    EXPECT_EQ(table[0], 0u);
    EXPECT_EQ(table[4095], 4095u);
    for (unsigned v : table) ASSERT_LE(v, 4095u);
  }
}

TEST_F(GammaTable, OffsetsMoveOnlyTheirRegion) {
  const Odf odf = makeOdf(kPanel, 420, 2.25);
  const Target base = makeTarget(kP3, 1 / 2.2f);
  const Table ref = build(fe, odf, base, false);
  const Table refFinal = build(fe, odf, base, true);

  Target dark = base;
  dark.values[9] = 0.3f;  // exponent at code 0: only codes below 256 change their exponent
  Table darkTable = build(fe, odf, dark, false);
  auto [first, last] = changedRange(ref, darkTable);
  EXPECT_GE(first, 1);
  EXPECT_LT(last, 600);
  EXPECT_GT(darkTable[first], ref[first]);  // higher exponent, darker panel, higher code

  Target bright = base;
  bright.values[12] = 0.2f;  // intermediate exponent at 3584
  bright.values[18] = -0.2f;  // final exponent at 3840
  std::tie(first, last) = changedRange(ref, build(fe, odf, bright, false));
  EXPECT_GE(first, 3000);
  std::tie(first, last) = changedRange(refFinal, build(fe, odf, bright, true));
  EXPECT_GE(first, 3300);
}

TEST_F(GammaTable, IntermediatePassLogsAndDumps) {
  PanelCorvaneBase::sDebug = 0x12;
  const Odf odf = makeOdf(kPanel, 420, 2.2);
  build(fe, odf, makeTarget(kP3, 0.5f), true);
  EXPECT_EQ(log.countContaining("1-GammaCorrection"), 0);
  EXPECT_FALSE(root.exists("/data/vendor/display/gamma-4096.txt"));
  build(fe, odf, makeTarget(kP3, 0.5f), false);
  EXPECT_TRUE(log.has("1-GammaCorrection: targetGamma is 2.000000")) << log.dump();
  EXPECT_EQ(log.countContaining("1-GammaCorrection: brgihtness["), 7);
  const std::string dump = root.read("/data/vendor/display/gamma-4096.txt");
  EXPECT_EQ(dump.rfind("0 0\n", 0), 0u);
  EXPECT_NE(dump.find("\n4095 4095\n"), std::string::npos);
}

}  // namespace
}  // namespace fetest
