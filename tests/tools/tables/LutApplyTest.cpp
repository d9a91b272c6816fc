// A table applied between its nodes, to colour lists and PNG images.
#include "tools/lib/tables/LutApply.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/tables/ColourCsv.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/PngImage.h"

using pctool::Interp;
using pctool::NodeGrid;

namespace {

TEST(LutApply, DeviceGridHitsNodesExactly) {
  auto lut = pctest::mixingTable();
  for (uint32_t n : {0u, 1u, 16u, 17u * 17u * 17u - 1u, 289u * 15u + 17u * 16u + 3u}) {
    const auto& e = lut->entries[n];
    const pctool::Rgb in{e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0};
    for (auto interp : {Interp::Trilinear, Interp::Tetrahedral}) {
      const pctool::Rgb o = pctool::sampleLut(*lut, in, interp, NodeGrid::Device);
      EXPECT_NEAR(std::abs(o.r - e.out[0]) + std::abs(o.g - e.out[1]) + std::abs(o.b - e.out[2]), 0, 1e-9) << n;
    }
  }
  // On the grey axis tetrahedral is linear, up the last (255-code) interval too; trilinear not.
  const double m = (3840 + 127.5) / 4095.0;
  const pctool::Rgb t = pctool::sampleLut(*lut, {m, m, m}, Interp::Trilinear, NodeGrid::Device);
  const pctool::Rgb h = pctool::sampleLut(*lut, {m, m, m}, Interp::Tetrahedral, NodeGrid::Device);
  EXPECT_NEAR(h.r, (lut->entries[pctool::entryIndex(15, 15, 15)].out[0] + lut->entries[4912].out[0]) / 2.0, 1e-9);
  EXPECT_NE(t.r, h.r);
}

TEST(ColourCsv, TheFileDecidesBetween8BitValuesAndSignals) {
  pctool::ColourList list;
  std::string err;
  ASSERT_TRUE(pctool::ColourCsv::parse("r,g,b\r\n# a comment\n255, 128 ,0\n\n1,2,3\n", list, err)) << err;
  EXPECT_FALSE(list.fractions);
  ASSERT_EQ(list.rows.size(), 2u);
  EXPECT_EQ(list.rows[0].line, 3u);
  EXPECT_DOUBLE_EQ(list.rows[0].value[1], 128 / 255.0);
  // One decimal point anywhere makes every value a signal: "1" is then full scale.
  ASSERT_TRUE(pctool::ColourCsv::parse("1,0,0\n0,.5,1.\n", list, err)) << err;
  EXPECT_TRUE(list.fractions);
  EXPECT_DOUBLE_EQ(list.rows[0].value[0], 1.0);
  EXPECT_DOUBLE_EQ(list.rows[1].value[1], 0.5);

  const auto identity = pctest::identityTables(1);
  ASSERT_TRUE(pctool::ColourCsv::parse("255,128,0\n", list, err));
  EXPECT_EQ(pctool::ColourCsv::apply(list, identity[0], Interp::Tetrahedral, NodeGrid::Device),
            "r8_in,g8_in,b8_in,r12,g12,b12,r8,g8,b8\n255,128,0,4095,2056,0,255,128,0\n");
}

TEST(ColourCsv, MalformedListsNameTheLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"r,g,b\n1,2\n", "line 2 malformed: want three values r,g,b"},
      {"1,2,3,4\n", "line 1 malformed: want three values r,g,b"},
      {"1,2,3\nr,g,b\n", "line 2 malformed: 'r' is not a number"},
      {"1,-2,3\n", "line 1 out of range: -2 (8-bit values are 0..255)"},
      {"1,0x2,3\n", "line 1 malformed: '0x2' is not a number"},
      {"1,,3\n", "line 1 malformed: '' is not a number"},
      {"nan,0,0\n", "line 1 malformed: 'nan' is not a finite number"},  // no header, no "0 colours"
      {"r,g,b\n0,1,inf\n", "line 2 malformed: 'inf' is not a finite number"},
      {"r,g,b\n# none\n", "no colour in the list (want lines r,g,b after an optional header)"},
      {"", "no colour in the list (want lines r,g,b after an optional header)"},
      {"255,0,0\n128.0,0,0\n", "line 2 malformed: 128.0 is written as a signal 0..1, but the 8-bit value 255 on line 1 "
                                "makes this a list of 8-bit values"},
      {"0,0,0\n1,256,3\n", "line 2 out of range: 256 (8-bit values are 0..255)"},
      {"0.5,0,0\n0,0,2\n", "line 2 out of range: 2 (signals are 0..1)"},
      {"1,2,3\n" + std::string(300, ' ') + "\n", "line 2 too long (over 256 characters)"},
      {std::string("1,2,\0" "3\n", 7), "binary data: not a CSV list of colours"},
  };
  for (const auto& [text, error] : cases) {
    pctool::ColourList list;
    std::string err;
    EXPECT_FALSE(pctool::ColourCsv::parse(text, list, err)) << text;
    EXPECT_EQ(err, error);
  }
}

std::string pngChunk(const std::string& type, const std::string& data) {
  uint32_t crc = 0xffffffffu;
  for (unsigned char b : type + data) {
    crc ^= b;
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1)));
  }
  auto be32 = [](uint32_t v) { return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)}; };
  return be32(uint32_t(data.size())) + type + data + be32(~crc);
}

TEST(PngImage, RefusesAnImageTooLargeToHoldBeforeReadingItsPixels) {
  if (!pctool::PngImage::available()) GTEST_SKIP() << "built without libpng";
  pctest::TempRoot dir;
  // 20000 x 20000 RGB claimed by a well-formed header; the pixel data never comes.
  const std::string ihdr = std::string("\0\0\x4e\x20\0\0\x4e\x20\x08\x02\0\0\0", 13);
  dir.write("/huge.png", std::string("\x89PNG\r\n\x1a\n", 8) + pngChunk("IHDR", ihdr) + pngChunk("IDAT", "x") +
                             pngChunk("IEND", ""));
  pctool::Image8 img;
  std::string err;
  EXPECT_FALSE(pctool::PngImage::read(dir.path() + "/huge.png", img, err));
  EXPECT_EQ(err, "image of 20000 x 20000 pixels: more than 33554432 pixels");
  EXPECT_TRUE(img.pixels.empty());
}

class ApplyCommand : public pctest::ToolRunner {};

// ffmpeg's lut3d on the same .cube: both interpolations, PNG in and out, the alpha channel.
TEST_F(ApplyCommand, PngAgreesWithFfmpegLut3dAndKeepsAlpha) {
  if (!pctool::PngImage::available()) GTEST_SKIP() << "built without libpng: apply reads no PNG";
  if (!pctest::haveProgram("ffmpeg")) GTEST_SKIP() << "ffmpeg not installed: cannot cross-check apply";
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", *pctest::mixingTable(), "mixing", err)) << err;
  pctool::Image8 in;
  in.width = 80, in.height = 70, in.channels = 4;
  std::mt19937 rng(11);
  std::uniform_int_distribution<int> byte(0, 255);
  for (uint32_t i = 0; i < in.width * in.height * 4; ++i) in.pixels.push_back(uint8_t(byte(rng)));
  ASSERT_TRUE(pctool::PngImage::write(dir + "/in.png", in, err)) << err;

  for (const char* interp : {"trilinear", "tetrahedral"}) {
    auto r = run(std::string("apply t.cube in.png ours.png --grid uniform --interp ") + interp);
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string cmd = "cd '" + dir + "' && ffmpeg -v error -y -i in.png -vf lut3d=file=t.cube:interp=" + interp +
                            " -pix_fmt rgba theirs.png";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
    pctool::Image8 ours, theirs;
    ASSERT_TRUE(pctool::PngImage::read(dir + "/ours.png", ours, err)) << err;
    ASSERT_TRUE(pctool::PngImage::read(dir + "/theirs.png", theirs, err)) << err;
    ASSERT_EQ(ours.channels, 4);
    ASSERT_EQ(theirs.pixels.size(), ours.pixels.size());
    int worst = 0;
    for (size_t i = 0; i < ours.pixels.size(); ++i) {
      if (i % 4 == 3) {
        ASSERT_EQ(ours.pixels[i], in.pixels[i]) << "alpha of pixel " << i / 4;
      } else {
        worst = std::max(worst, std::abs(int(ours.pixels[i]) - int(theirs.pixels[i])));
      }
    }
    EXPECT_LE(worst, 1) << interp;
  }
  ASSERT_EQ(std::system(("cd '" + dir + "' && ffmpeg -v error -y -f lavfi -i color=red:size=8x8 -frames:v 1 "
                         "-pix_fmt rgb48be deep.png").c_str()), 0);
  auto r = run("apply t.cube deep.png out.png");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane apply: deep.png: 16-bit PNG: only 8-bit images are read\n");
}

}  // namespace
