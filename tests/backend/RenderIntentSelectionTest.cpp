#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "backend/LutTextFile.h"
#include "backend/PanelCorvaneBE.h"
#include "config/Prop.h"
#include "tests/cache/LutFixtures.h"
#include "tests/support/TestSupport.h"

using namespace postblend;

namespace {

constexpr uint32_t kUntouched = 0x66666666u;
const char* const kAll[] = {"PostBlendGamut", "PostBlendPCC",    "PostBlendGC",      "PostBlendIGC",
                            "PostBlendPa",    "PostBlendDither", "PostBlendPaDither"};

// An output payload as the colour manager builds it: assets enabled, gamut table marked.
struct Output {
  explicit Output(std::vector<const char*> names = {std::begin(kAll), std::end(kAll)}) {
    for (const char* n : names) {
      std::shared_ptr<HwConfigPayload> cfg = std::make_shared<HwConfigPayload>();
      if (std::string(n) == kAll[0]) cfg = gamut = std::make_shared<GamutConfig>();
      if (gamut) std::memset(&gamut->gamut_info, 0x66, sizeof(lut3d_info));
      cfg->enabled = true;
      params.payload.emplace_back(n, cfg);
    }
    payload.payload = reinterpret_cast<uint64_t>(&params);
  }
  // Per asset of kAll: '1' enabled, '0' disabled, '-' absent.
  std::string states() const {
    std::string s;
    for (const char* n : kAll) {
      char c = '-';
      for (const auto& e : params.payload)
        if (e.first == n) c = e.second->enabled ? '1' : '0';
      s += c;
    }
    return s;
  }
  HwConfigOutputParams params;
  std::shared_ptr<GamutConfig> gamut;
  ScPayload payload;
};

class RenderIntentSelectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    pctest::resetLutCache();
    PanelCorvaneBE::resetAssetSwitches();
    pctest::initFilledPanel(0, true);
  }
  void TearDown() override { SetUp(); }
  void useProperties(const std::string& text) {
    root.write("/odm/etc/PanelCorvane/panelcorvane", text);
    auto* prop = new Prop();
    ASSERT_TRUE(prop->Init());
    delete PanelCorvaneBase::sProp.exchange(prop);
  }
  int run(Output& out, int mode) { return be.ProcessModeRenderIntent(in, &out.payload, mode); }
  pctest::TempRoot root;
  pctest::LogCapture log;
  PanelCorvaneBase owner;
  PanelCorvaneBE be{&owner};
  ScPayload in;
};

TEST_F(RenderIntentSelectionTest, ModesSwitchesAndTables) {
  struct Case {
    const char* properties;  // nullptr: no property file
    int mode;
    const char* states;  // gamut, PCC, GC, IGC, PA, dither, PA dither
    uint32_t lutId;
  };
  const Case cases[] = {
      {nullptr, 3, "1111111", 3},
      {"LogLevel=1\n", 3, "1100011", 3},  // none of the keys: GC, IGC, PA off
      {"IGCDisable=0\nDitherConfigDisable=1\nPaDitherConfigDisable=1\n", 4, "1101000", 4},
      {"DitherConfigDisable=1\nPaDitherConfigDisable=1\n", 309, "1100111", 5},
      {"PaConfigDisable=1\n", 310, "1100111", 1},
      {"GamutDisable=1\n", 2, "0100011", kUntouched},
      {"GCDisable=2\nIGCDisable=2\nPaConfigDisable=2\nDitherConfigDisable=1\n", 6, "1111101", 6},
      {nullptr, 307, "1111111", kUntouched},  // hook file missing: falls to index 307
      {nullptr, 100, "0000000", kUntouched},
      {"LogLevel=1\n", 8, "1111111", kUntouched},
      {"LogLevel=1\n", 51, "1111111", kUntouched},
      {"LogLevel=1\n", 311, "1111111", kUntouched},
      {"LogLevel=1\n", -1, "1111111", kUntouched},
  };
  for (const Case& c : cases) {
    SetUp();
    if (c.properties != nullptr) useProperties(c.properties);
    Output out;
    EXPECT_EQ(0, run(out, c.mode)) << c.mode;
    EXPECT_EQ(c.states, out.states()) << c.mode << " " << (c.properties ? c.properties : "");
    EXPECT_EQ(c.lutId, out.gamut->gamut_info.lut3d_id) << c.mode;
  }
  EXPECT_EQ(1, log.count("1-ProcessModeRenderIntent: disable ALL output hw asset!"));
}

TEST_F(RenderIntentSelectionTest, EdgesOfThePayload) {
  EXPECT_EQ(-1, be.ProcessModeRenderIntent(in, nullptr, 3));
  ScPayload empty;
  EXPECT_EQ(-1, be.ProcessModeRenderIntent(in, &empty, 3));
  Output two({"PostBlendGamut", "PostBlendPCC"});
  EXPECT_EQ(0, run(two, 100));
  EXPECT_EQ("00-----", two.states());
  useProperties("GCDisable=0\n");
  Output noGamut({"PostBlendPCC", "PostBlendGC", "PostBlendIGC"});
  EXPECT_EQ(0, run(noGamut, 1));
  EXPECT_EQ(3u, noGamut.params.payload.size()) << "no gamut record is added";
  EXPECT_EQ("-110---", noGamut.states());
  useProperties("GCDisable=1\n");
  EXPECT_EQ(0, run(noGamut, 1));
  EXPECT_EQ("-110---", noGamut.states()) << "switches are read once per process";
}

// The debug table file is read at every frame, its switches are not applied, and the table is
// judged by the dE76 report when the log mask asks for it.
TEST_F(RenderIntentSelectionTest, DebugTableFile) {
  PanelCorvaneBase::sDebug = 0x02;
  Output out;
  EXPECT_EQ(0, run(out, 50));
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: fail to open output file!"));
  EXPECT_EQ(kUntouched, out.gamut->gamut_info.lut3d_id);
  std::unique_ptr<lut3d_info> file(new lut3d_info());
  pctest::fillTable(*file, 0, 2222);
  useProperties("GCDisable=1\n");
  LutTextFile::writeFile(root.host("/odm/etc/PanelCorvane/Lut3D.txt").c_str(), *file);
  out.gamut->enabled = false;
  EXPECT_EQ(0, run(out, 50));
  const uint32_t header[4] = {0, 50, 1, 4913};
  EXPECT_EQ(0, std::memcmp(header, &out.gamut->gamut_info, sizeof(header)));
  EXPECT_EQ(2224u, out.gamut->gamut_info.entries[0].out[2]);
  EXPECT_EQ("1111111", out.states()) << "switches are not applied here";
  EXPECT_EQ(0, log.countContaining("1-check3DLut: < 50 : "));
  PanelCorvaneBase::sDebug = 0x04;
  EXPECT_EQ(0, run(out, 309));
  EXPECT_EQ(1, log.countContaining("1-check3DLut: < 50 : ", "PanelCorvane"));
}

}  // namespace
