#include "tools/lib/tables/CubeFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>

#include "tools/lib/tables/DeviceGrid.h"

using postblend::lut3d_info;

namespace {

std::unique_ptr<lut3d_info> patternTable() {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 3);
  uint32_t n = 0;
  for (auto& e : lut->entries) {
    e.out[0] = (n * 7) % 4096;
    e.out[1] = 4095 - (n * 13) % 4096;
    e.out[2] = n % 2 ? 4095 : 0;
    ++n;
  }
  return lut;
}

std::string cubeText(const std::string& header, size_t rows, const std::string& row = "0.5 0.5 0.5") {
  std::string s = header;
  for (size_t i = 0; i < rows; ++i) s += row + "\n";
  return s;
}

TEST(CubeFile, RoundTripKeepsEveryCodeAndRebuildsTheDeviceGrid) {
  auto lut = patternTable();
  std::stringstream ss;
  pctool::CubeFile::write(ss, *lut, "Vivid \"test\"");
  auto back = std::make_unique<lut3d_info>();
  pctool::CubeReadInfo info;
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::parse(ss, *back, 3, info, err)) << err;
  EXPECT_EQ(info.title, "Vivid 'test'");
  EXPECT_EQ(info.clamped, 0u);
  EXPECT_EQ(std::memcmp(lut.get(), back.get(), sizeof(lut3d_info)), 0);
  EXPECT_EQ(back->entries[16].in[0], 4095u);
  EXPECT_EQ(back->entries[15].in[0], 3840u);
  EXPECT_EQ(back->entries[289].in[2], 256u);
}

TEST(CubeFile, MalformedFilesNameTheProblem) {
  const std::string head = "LUT_3D_SIZE 17\n";
  struct Case {
    const char* what;
    std::string text;
    std::string error;
  } cases[] = {
      {"missing size", cubeText("", 0) + "# only a comment\n", "not a .cube table (no LUT_3D_SIZE or LUT_1D_SIZE line)"},
      {"short 33-node cube", cubeText("TITLE \"x\"\nLUT_3D_SIZE 33\n", 3), "too short: 3 of 35937 table lines"},
      {"empty 1D table", "LUT_1D_SIZE 1024\n", "too short: 0 of 1024 table lines"},
      {"two numbers", cubeText(head, 4) + "0.1 0.2\n", "line 6 malformed"},
      {"text in data", cubeText(head, 1) + "0.1 0.2 abc\n", "line 3 malformed"},
      {"glued garbage", cubeText(head, 1) + "0.1 0.2 0.3x\n", "line 3 malformed"},
      {"nan", cubeText(head, 1) + "nan 0 0\n", "line 3 malformed"},
      {"data before size", "0 0 0\n" + head, "line 1 malformed: table data before LUT_3D_SIZE"},
      {"unknown keyword", "FOO 1\n" + head, "line 1 malformed: unknown keyword FOO"},
      {"domain", head + "DOMAIN_MAX 2 2 2\n", "line 2 unsupported: DOMAIN_MAX must be 1 1 1"},
      {"too short", cubeText(head, 100), "too short: 100 of 4913 table lines"},
      {"too long", cubeText(head, 4914), "line 4915 malformed: more than 4913 table lines"},
      {"keyword after data", cubeText(head, 2) + "TITLE \"late\"\n", "line 4 malformed: keyword TITLE after table data"},
      {"long line", head + std::string(2000, '0') + "\n", "line 2 too long (over 1024 characters)"},
      {"binary", std::string("LUT\0\1", 5), "binary data: not a .cube text file"},
  };
  for (const auto& c : cases) {
    std::istringstream is(c.text);
    auto lut = std::make_unique<lut3d_info>();
    pctool::CubeReadInfo info;
    std::string err;
    EXPECT_FALSE(pctool::CubeFile::parse(is, *lut, 0, info, err)) << c.what;
    EXPECT_EQ(err, c.error) << c.what;
  }
}

TEST(CubeFile, ToleratesCommentsCarriageReturnsAndClampsOutOfRangeValues) {
  std::string text = "# made elsewhere\r\nTITLE \"g\"\r\n\r\nLUT_3D_SIZE 17\r\nDOMAIN_MIN 0 0 0\r\n";
  text += "  -0.01 1.2 0.5\r\n";
  text = cubeText(text, 4912, "1 0 0.25");
  std::istringstream is(text);
  auto lut = std::make_unique<lut3d_info>();
  pctool::CubeReadInfo info;
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::parse(is, *lut, 0, info, err)) << err;
  EXPECT_EQ(info.clamped, 2u);
  EXPECT_EQ(lut->entries[0].out[0], 0u);
  EXPECT_EQ(lut->entries[0].out[1], 4095u);
  EXPECT_EQ(lut->entries[0].out[2], 2048u);  // 0.5 * 4095 rounds up
  EXPECT_EQ(lut->entries[4912].out[2], 1024u);
}

}  // namespace
