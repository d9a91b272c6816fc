// .cube tables of any size read onto the device's 17 nodes.
#include "tools/lib/tables/CubeFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>

#include "tests/support/TestSupport.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/tables/DeviceGrid.h"

using pctool::Interp;
using postblend::lut3d_info;

namespace {

using Rgb3 = std::array<double, 3>;
using Fn = std::function<Rgb3(double, double, double)>;

// Curved per channel and leaning on the other two, as a gamut mapping is.
Rgb3 smooth(double r, double g, double b) {
  return {0.02 + 0.85 * std::pow(r, 1.1) + 0.08 * g * b, 0.9 * g + 0.06 * std::sin(2 * r) + 0.03 * b,
          0.05 + 0.7 * b * b + 0.2 * b + 0.03 * r * g};
}

std::string cube3d(int n, const Fn& f) {
  std::string s = "TITLE \"made\"\nLUT_3D_SIZE " + std::to_string(n) + "\n";
  char buf[96];
  for (int b = 0; b < n; ++b)
    for (int g = 0; g < n; ++g)
      for (int r = 0; r < n; ++r) {
        const Rgb3 o = f(r / double(n - 1), g / double(n - 1), b / double(n - 1));
        std::snprintf(buf, sizeof buf, "%.9f %.9f %.9f\n", o[0], o[1], o[2]);
        s += buf;
      }
  return s;
}

std::string rows(const std::string& header, size_t n, const std::string& row = "0.5 0.5 0.5") {
  std::string s = header;
  for (size_t i = 0; i < n; ++i) s += row + "\n";
  return s;
}

struct Parsed {
  std::unique_ptr<lut3d_info> lut = std::make_unique<lut3d_info>();
  pctool::CubeReadInfo info;
  std::string err;
  bool ok = false;
};

Parsed parse(const std::string& text, Interp interp = Interp::Tetrahedral) {
  Parsed p;
  std::istringstream is(text);
  p.ok = pctool::CubeFile::parse(is, *p.lut, 0, p.info, p.err, interp);
  return p;
}

TEST(CubeFile, MalformedFilesNameTheProblemAndTheLine) {
  const std::string head = "LUT_3D_SIZE 17\n";
  const std::pair<std::string, std::string> cases[] = {
      {"# only a comment\n", "not a .cube table (no LUT_3D_SIZE or LUT_1D_SIZE line)"},
      {rows("TITLE \"x\"\nLUT_3D_SIZE 33\n", 3), "too short: 3 of 35937 table lines"},
      {"LUT_1D_SIZE 1024\n", "too short: 0 of 1024 table lines"},
      {rows(head, 4) + "0.1 0.2\n", "line 6 malformed: want 3 numbers, found 2"},
      {rows(head, 1) + "0.1 0.2 abc\n", "line 3 malformed: 'abc' is not a number"},
      {rows(head, 1) + "0.1 0.2 0.3x\n", "line 3 malformed: '0.3x' is not a number"},
      {rows(head, 1) + "nan 0 0\n", "line 3 malformed: 'nan' is not a finite number"},
      {rows(head, 1) + "0,0,0\n", "line 3 malformed: '0,0,0' is not a number (values are separated by blanks, not commas)"},
      {head + "DOMAIN_MIN 0 0 1e999\n", "line 2 malformed: DOMAIN_MIN '1e999' is not a finite number"},
      {"0 0 0\n" + head, "line 1 malformed: table data before LUT_3D_SIZE"},
      {"FOO 1\n" + head, "line 1 malformed: unknown keyword FOO"},
      {head + "DOMAIN_MAX 2 2 2\n", "line 2 unsupported: DOMAIN_MAX must be 1 1 1"},
      {rows(head, 100), "too short: 100 of 4913 table lines"},
      {rows(head, 4914), "line 4915 malformed: more than 4913 table lines"},
      {rows(head, 2) + "TITLE \"late\"\n", "line 4 malformed: keyword TITLE after table data"},
      {head + std::string(2000, '0') + "\n", "line 2 too long (over 1024 characters)"},
      {std::string("LUT\0\1", 5), "binary data: not a .cube text file"},
      {"# c\nLUT_3D_SIZE 1\n", "line 2 unsupported: LUT_3D_SIZE 1 (2..65)"},
      {"LUT_3D_SIZE 66\n", "line 1 unsupported: LUT_3D_SIZE 66 (2..65)"},
      {"LUT_3D_SIZE -4\n", "line 1 unsupported: LUT_3D_SIZE -4 (2..65)"},
      {"LUT_3D_SIZE 99999999999999999999\n", "line 1 malformed: LUT_3D_SIZE wants a whole number"},
      {"LUT_3D_SIZE 3x\n", "line 1 malformed: LUT_3D_SIZE wants a whole number"},
      {"LUT_1D_SIZE 65537\n", "line 1 unsupported: LUT_1D_SIZE 65537 (2..65536)"},
      {"LUT_1D_SIZE 4\nLUT_3D_SIZE 2\n", "line 2 unsupported: both LUT_1D_SIZE and LUT_3D_SIZE"},
      {"LUT_3D_SIZE 2\nLUT_3D_SIZE 2\n", "line 2 malformed: second LUT_3D_SIZE"},
      {cube3d(3, smooth) + "0 0 0\n", "line 30 malformed: more than 27 table lines"},
      {"LUT_1D_SIZE 3\n0 0 0\n1 1 1\n", "too short: 2 of 3 table lines"},
  };
  for (const auto& [text, error] : cases) {
    const Parsed p = parse(text);
    EXPECT_FALSE(p.ok) << error;
    EXPECT_EQ(p.err, error);
  }
}

TEST(CubeFile, ToleratesCommentsCarriageReturnsAndClampsOutOfRangeValues) {
  std::string text = "# made elsewhere\r\nTITLE \"g\"\r\n\r\nLUT_3D_SIZE 17\r\nDOMAIN_MIN 0 0 0\r\n  -0.01 1.2 0.5\r\n";
  const Parsed p = parse(rows(text, 4912, "1 0 0.25"));
  ASSERT_TRUE(p.ok) << p.err;
  EXPECT_EQ(p.info.clamped, 2u);
  const auto& e = p.lut->entries;  // clamped to 0 and 4095; 0.5 * 4095 rounds up
  EXPECT_EQ((std::array<uint32_t, 4>{e[0].out[0], e[0].out[1], e[0].out[2], e[4912].out[2]}),
            (std::array<uint32_t, 4>{0, 4095, 2048, 1024}));
}

// Device node i sits at code / 4095 in the cube's domain; a 17-node cube carries over as it is.
TEST(CubeFile, OtherSizesAreResampledOntoTheDeviceNodes) {
  for (Interp interp : {Interp::Tetrahedral, Interp::Trilinear}) {
    const Parsed p = parse(cube3d(33, smooth), interp);
    ASSERT_TRUE(p.ok) << p.err;
    EXPECT_EQ(p.info.note(), std::string("resampled from 33 nodes (") + pctool::interpName(interp) + ")");
    double worst = 0;  // a 1/32 grid bends the curves by under a code
    for (const auto& e : p.lut->entries) {
      const Rgb3 want = smooth(e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0);
      for (int c = 0; c < 3; ++c) worst = std::max(worst, std::fabs(e.out[c] - want[c] * 4095.0));
    }
    EXPECT_LT(worst, 1.0) << pctool::interpName(interp);
  }
  const Parsed own = parse(cube3d(17, smooth));
  EXPECT_FALSE(own.info.resampled);
  EXPECT_EQ(own.lut->entries[15].out[0], uint32_t(std::lround(smooth(15 / 16.0, 0, 0)[0] * 4095)));  // not code 3840
  // Linear cubes of any size give exact tables; a channel rotation shows a swapped axis.
  const auto identity = pctest::identityTables(1);
  for (int n : {2, 5, 65}) {
    const Parsed p = parse(cube3d(n, [](double r, double g, double b) { return Rgb3{r, g, b}; }));
    EXPECT_EQ(std::memcmp(p.lut.get(), &identity[0], sizeof(lut3d_info)), 0) << n;
  }
  const Parsed rotated = parse(cube3d(2, [](double r, double g, double b) { return Rgb3{g, b, r}; }));
  for (const auto& e : rotated.lut->entries) {
    ASSERT_EQ(e.out[0], e.in[1]);
    ASSERT_EQ(e.out[1], e.in[2]);
    ASSERT_EQ(e.out[2], e.in[0]);
  }
  // A 1D table acts per channel.
  std::string text = "LUT_1D_SIZE 1024\nLUT_1D_INPUT_RANGE 0 1\n";
  auto curve = [](double x, int c) { return std::pow(x, 1.0 + 0.3 * c); };
  for (int i = 0; i < 1024; ++i)
    text += std::to_string(curve(i / 1023.0, 0)) + " " + std::to_string(curve(i / 1023.0, 1)) + " " +
            std::to_string(curve(i / 1023.0, 2)) + "\n";
  const Parsed one = parse(text);
  ASSERT_TRUE(one.ok) << one.err;
  EXPECT_EQ(one.info.note(), "resampled from a 1D table of 1024 entries (linear)");
  for (const auto& e : one.lut->entries)
    for (int c = 0; c < 3; ++c) ASSERT_NEAR(e.out[c], curve(e.in[c] / 4095.0, c) * 4095.0, 1.0) << c;
}

// OpenColorIO's bake of our table to 33 nodes reads back onto ours: level 15 of our .cube sits at
// 15/16 rather than code 3840, so the bake's values at the device nodes are ours within codes.
TEST(CubeFile, ReadsBackWhatOpenColorIOBakesFromOurTable) {
  if (!pctest::haveProgram("ociobakelut")) GTEST_SKIP() << "ociobakelut (opencolorio-tools) not installed";
  pctest::TempRoot dir;
  const Parsed ours = parse(cube3d(17, smooth));
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir.host("/ours.cube"), *ours.lut, "ours", err)) << err;
  ASSERT_EQ(std::system(("cd '" + dir.path() + "' && ociobakelut --lut ours.cube --format resolve_cube --cubesize 33 "
                         "baked.cube > /dev/null 2>&1").c_str()), 0);
  const Parsed baked = parse(dir.read("/baked.cube"));
  ASSERT_TRUE(baked.ok) << baked.err;
  int worst = 0;
  for (uint32_t i = 0; i < pctool::kEntries; ++i)
    for (int c = 0; c < 3; ++c)
      worst = std::max(worst, std::abs(int(baked.lut->entries[i].out[c]) - int(ours.lut->entries[i].out[c])));
  EXPECT_LE(worst, 3);
}

}  // namespace
