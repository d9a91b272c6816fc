#include "tools/lib/tables/CubeResample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/TableSource.h"

using postblend::lut3d_info;
using pctool::Interp;

namespace {

struct Rgb3 {
  double v[3];
};
using Fn = std::function<Rgb3(double, double, double)>;

// A smooth, channel-mixing function of the kind a gamut mapping is: curved per channel and
// leaning on the other two.
Rgb3 smooth(double r, double g, double b) {
  return {{0.02 + 0.85 * std::pow(r, 1.1) + 0.08 * g * b, 0.9 * g + 0.06 * std::sin(2 * r) + 0.03 * b,
           0.05 + 0.7 * b * b + 0.2 * b + 0.03 * r * g}};
}

std::string cube3d(int n, const Fn& f) {
  std::string s = "TITLE \"made\"\nLUT_3D_SIZE " + std::to_string(n) + "\n";
  char buf[96];
  for (int b = 0; b < n; ++b)
    for (int g = 0; g < n; ++g)
      for (int r = 0; r < n; ++r) {
        Rgb3 o = f(r / double(n - 1), g / double(n - 1), b / double(n - 1));
        std::snprintf(buf, sizeof buf, "%.9f %.9f %.9f\n", o.v[0], o.v[1], o.v[2]);
        s += buf;
      }
  return s;
}

bool parse(const std::string& text, lut3d_info& lut, pctool::CubeReadInfo& info, std::string& err,
           Interp interp = Interp::Tetrahedral) {
  std::istringstream is(text);
  return pctool::CubeFile::parse(is, lut, 0, info, err, interp);
}

// Largest distance in codes between the table and `f` at the device nodes.
double worstAtDeviceNodes(const lut3d_info& lut, const Fn& f) {
  double worst = 0;
  for (const auto& e : lut.entries) {
    Rgb3 want = f(e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0);
    for (int c = 0; c < 3; ++c) worst = std::max(worst, std::fabs(e.out[c] - want.v[c] * 4095.0));
  }
  return worst;
}

TEST(CubeResample, A33NodeCubeOfASmoothFunctionLandsOnItAtTheDeviceNodes) {
  const std::string text = cube3d(33, smooth);
  for (Interp interp : {Interp::Tetrahedral, Interp::Trilinear}) {
    auto lut = std::make_unique<lut3d_info>();
    pctool::CubeReadInfo info;
    std::string err;
    ASSERT_TRUE(parse(text, *lut, info, err, interp)) << err;
    EXPECT_TRUE(info.resampled);
    EXPECT_EQ(info.size, 33u);
    EXPECT_EQ(info.note(), std::string("resampled from 33 nodes (") + pctool::interpName(interp) + ")");
    // The device nodes fall between the cube's; a 1/32 grid bends the curves by under a code.
    EXPECT_LT(worstAtDeviceNodes(*lut, smooth), 1.0) << pctool::interpName(interp);
    EXPECT_EQ(lut->entries[pctool::entryIndex(16, 0, 0)].in[0], 4095u);
  }
}

TEST(CubeResample, IdentityAndLinearCubesOfAnySizeGiveExactTables) {
  auto identity = std::make_unique<lut3d_info>();
  pctool::setIdentity(*identity, 0);
  for (int n : {2, 5, 65}) {
    auto lut = std::make_unique<lut3d_info>();
    pctool::CubeReadInfo info;
    std::string err;
    ASSERT_TRUE(parse(cube3d(n, [](double r, double g, double b) { return Rgb3{{r, g, b}}; }), *lut, info, err)) << n;
    EXPECT_EQ(std::memcmp(lut.get(), identity.get(), sizeof(lut3d_info)), 0) << n;
  }
  // A channel rotation on the smallest grid: a swapped axis or a wrong row order shows here.
  auto lut = std::make_unique<lut3d_info>();
  pctool::CubeReadInfo info;
  std::string err;
  ASSERT_TRUE(parse(cube3d(2, [](double r, double g, double b) { return Rgb3{{g, b, r}}; }), *lut, info, err));
  for (const auto& e : lut->entries) {
    ASSERT_EQ(e.out[0], e.in[1]);
    ASSERT_EQ(e.out[1], e.in[2]);
    ASSERT_EQ(e.out[2], e.in[0]);
  }
}

TEST(CubeResample, A1DTableActsPerChannel) {
  const int n = 1024;
  std::string text = "LUT_1D_SIZE 1024\nLUT_1D_INPUT_RANGE 0 1\n";
  char buf[96];
  auto curve = [](double x, int c) { return std::pow(x, 1.0 + 0.3 * c); };
  for (int i = 0; i < n; ++i) {
    double x = i / double(n - 1);
    std::snprintf(buf, sizeof buf, "%.8f %.8f %.8f\n", curve(x, 0), curve(x, 1), curve(x, 2));
    text += buf;
  }
  auto lut = std::make_unique<lut3d_info>();
  pctool::CubeReadInfo info;
  std::string err;
  ASSERT_TRUE(parse(text, *lut, info, err)) << err;
  EXPECT_EQ(info.dims, 1u);
  EXPECT_EQ(info.note(), "resampled from a 1D table of 1024 entries (linear)");
  for (const auto& e : lut->entries)
    for (int c = 0; c < 3; ++c) ASSERT_NEAR(e.out[c], curve(e.in[c] / 4095.0, c) * 4095.0, 1.0) << c;
}

TEST(CubeResample, SizesOutsideTheLimitsAreRefusedWithTheLine) {
  struct Case {
    std::string text, error;
  } cases[] = {
      {"# c\nLUT_3D_SIZE 1\n", "line 2 unsupported: LUT_3D_SIZE 1 (2..65)"},
      {"LUT_3D_SIZE 66\n", "line 1 unsupported: LUT_3D_SIZE 66 (2..65)"},
      {"LUT_3D_SIZE -4\n", "line 1 unsupported: LUT_3D_SIZE -4 (2..65)"},
      {"LUT_3D_SIZE 99999999999999999999\n", "line 1 malformed"},
      {"LUT_3D_SIZE 3x\n", "line 1 malformed"},
      {"LUT_1D_SIZE 65537\n", "line 1 unsupported: LUT_1D_SIZE 65537 (2..65536)"},
      {"LUT_1D_SIZE 4\nLUT_3D_SIZE 2\n", "line 2 unsupported: both LUT_1D_SIZE and LUT_3D_SIZE"},
      {"LUT_3D_SIZE 2\nLUT_3D_SIZE 2\n", "line 2 malformed: second LUT_3D_SIZE"},
      {cube3d(3, smooth) + "0 0 0\n", "line 30 malformed: more than 27 table lines"},
      {"LUT_1D_SIZE 3\n0 0 0\n1 1 1\n", "too short: 2 of 3 table lines"},
  };
  for (const auto& c : cases) {
    auto lut = std::make_unique<lut3d_info>();
    pctool::CubeReadInfo info;
    std::string err;
    EXPECT_FALSE(parse(c.text, *lut, info, err)) << c.text.substr(0, 40);
    EXPECT_EQ(err, c.error);
  }
}

TEST(CubeResample, TheLoaderNotesTheResamplingAndKeeps17NodeCubesUnmarked) {
  pctest::TempRoot dir;
  dir.write("/big.cube", cube3d(33, smooth));
  dir.write("/own.cube", cube3d(17, smooth));
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(dir.path() + "/big.cube", t, err, Interp::Trilinear)) << err;
  ASSERT_EQ(t.size(), 1u);
  EXPECT_EQ(t[0].notes, std::vector<std::string>{"resampled from 33 nodes (trilinear)"});
  ASSERT_TRUE(pctool::loadTables(dir.path() + "/own.cube", t, err)) << err;
  EXPECT_TRUE(t[0].notes.empty());
  // Node for node: level 15 is the cube's node 15, not the function at code 3840.
  const Rgb3 node15 = smooth(15 / 16.0, 0, 0);
  EXPECT_EQ(t[0].lut->entries[15].out[0], uint32_t(std::lround(node15.v[0] * 4095)));
}

class CubeResampleCommands : public pctest::ToolRunner {};

TEST_F(CubeResampleCommands, InspectAndExportSayTheTableWasResampled) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  root.write("/big.cube", cube3d(33, smooth));
  auto r = run("inspect big.cube");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("note: resampled from 33 nodes (tetrahedral)\n"), std::string::npos) << r.out;
  r = run("export big.cube hook.txt");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "panelcorvane export: big.cube: note: resampled from 33 nodes (tetrahedral)\n");
  root.write("/huge.cube", "LUT_3D_SIZE 129\n");
  r = run("inspect huge.cube");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane inspect: huge.cube: line 1 unsupported: LUT_3D_SIZE 129 (2..65)\n");
}

bool haveOcioBake() { return std::system("command -v ociobakelut > /dev/null 2>&1") == 0; }

TEST(CubeResample, ReadsBackWhatOpenColorIOBakesFromOurTable) {
  if (!haveOcioBake()) GTEST_SKIP() << "ociobakelut (opencolorio-tools) not installed: cannot check its 33-node cubes";
  pctest::TempRoot dir;
  auto source = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*source, 0);
  for (auto& e : source->entries) {
    Rgb3 o = smooth(e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0);
    for (int c = 0; c < 3; ++c) e.out[c] = uint32_t(std::lround(o.v[c] * 4095));
  }
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir.path() + "/ours.cube", *source, "ours", err)) << err;
  const std::string cmd = "ociobakelut --lut '" + dir.path() + "/ours.cube' --format resolve_cube --cubesize 33 '" +
                          dir.path() + "/baked.cube' > /dev/null 2>&1";
  ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
  std::vector<pctool::LoadedTable> t;
  ASSERT_TRUE(pctool::loadTables(dir.path() + "/baked.cube", t, err)) << err;
  ASSERT_EQ(t[0].notes, std::vector<std::string>{"resampled from 33 nodes (tetrahedral)"});
  // Our .cube puts level 15 at 15/16 rather than code 3840: the bake samples that uniform grid,
  // so its values at the device nodes are the source's between its own nodes, within codes.
  int worst = 0;
  for (uint32_t i = 0; i < pctool::kEntries; ++i)
    for (int c = 0; c < 3; ++c)
      worst = std::max(worst, std::abs(int(t[0].lut->entries[i].out[c]) - int(source->entries[i].out[c])));
  EXPECT_LE(worst, 3);
}

}  // namespace
