#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/tables/ColourCsv.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/PngImage.h"

using postblend::lut3d_info;

namespace {

// Outputs that lean on the other channels, so an axis swap or a wrong tetrahedron shows.
std::unique_ptr<lut3d_info> mixingTable() {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  std::mt19937 rng(3);
  std::uniform_int_distribution<int> noise(-150, 150);
  for (auto& e : lut->entries) {
    int v[3] = {int(e.in[0] * 4 / 5 + e.in[2] / 6), int(e.in[1] * 2 / 3 + e.in[0] / 4), int(4095 - e.in[2] * 3 / 4)};
    for (int c = 0; c < 3; ++c) e.out[c] = uint32_t(std::min(4095, std::max(0, v[c] + noise(rng))));
  }
  return lut;
}

bool parse(const std::string& text, pctool::ColourList& list, std::string& err) {
  return pctool::ColourCsv::parse(text, list, err);
}

TEST(ColourCsv, TheFileDecidesBetween8BitValuesAndSignals) {
  pctool::ColourList list;
  std::string err;
  ASSERT_TRUE(parse("r,g,b\r\n# a comment\n255, 128 ,0\n\n1,2,3\n", list, err)) << err;
  EXPECT_FALSE(list.fractions);
  ASSERT_EQ(list.rows.size(), 2u);
  EXPECT_EQ(list.rows[0].line, 3u);
  EXPECT_DOUBLE_EQ(list.rows[0].value[1], 128 / 255.0);
  EXPECT_EQ(list.rows[0].text[1], "128");
  // One decimal point anywhere makes every value a signal: "1" is then full scale.
  ASSERT_TRUE(parse("1,0,0\n0,.5,1.\n", list, err)) << err;
  EXPECT_TRUE(list.fractions);
  EXPECT_DOUBLE_EQ(list.rows[0].value[0], 1.0);
  EXPECT_DOUBLE_EQ(list.rows[1].value[1], 0.5);

  auto identity = std::make_unique<lut3d_info>();
  pctool::setIdentity(*identity, 0);
  ASSERT_TRUE(parse("255,128,0\n", list, err));
  EXPECT_EQ(pctool::ColourCsv::apply(list, *identity, pctool::Interp::Tetrahedral, pctool::NodeGrid::Device),
            "r8_in,g8_in,b8_in,r12,g12,b12,r8,g8,b8\n255,128,0,4095,2056,0,255,128,0\n");
}

TEST(ColourCsv, MalformedListsNameTheLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"r,g,b\n1,2\n", "line 2 malformed: want three values r,g,b"},
      {"1,2,3,4\n", "line 1 malformed: want three values r,g,b"},
      {"1,2,3\nr,g,b\n", "line 2 malformed: 'r' is not a number"},
      {"1,-2,3\n", "line 1 malformed: '-2' is not a number"},
      {"-1,2,3\n", "line 1 malformed: '-1' is not a number"},
      {"1,2,1e3\n", "line 1 malformed: '1e3' is not a number"},
      {"1,,3\n", "line 1 malformed: '' is not a number"},
      {"0,0,0\n1,256,3\n", "line 2 out of range: 256 (8-bit values are 0..255)"},
      {"0.5,0,0\n0,0,2\n", "line 2 out of range: 2 (signals are 0..1)"},
      {"1,2,3\n" + std::string(300, ' ') + "\n", "line 2 too long (over 256 characters)"},
      {std::string("1,2,\0" "3\n", 7), "binary data: not a CSV list of colours"},
  };
  for (const auto& [text, error] : cases) {
    pctool::ColourList list;
    std::string err;
    EXPECT_FALSE(parse(text, list, err)) << text;
    EXPECT_EQ(err, error);
  }
}

uint32_t crc32(const std::string& bytes) {
  uint32_t c = 0xffffffffu;
  for (unsigned char b : bytes) {
    c ^= b;
    for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1)));
  }
  return ~c;
}

std::string chunk(const std::string& type, const std::string& data) {
  auto be32 = [](uint32_t v) {
    return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
  };
  return be32(uint32_t(data.size())) + type + data + be32(crc32(type + data));
}

TEST(PngImage, RefusesAnImageTooLargeToHoldBeforeReadingItsPixels) {
  if (!pctool::PngImage::available()) GTEST_SKIP() << "built without libpng";
  pctest::TempRoot dir;
  // 20000 x 20000 RGB claimed by a well-formed header; the pixel data never comes.
  const std::string ihdr = std::string("\0\0\x4e\x20\0\0\x4e\x20\x08\x02\0\0\0", 13);
  dir.write("/huge.png", std::string("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", ihdr) + chunk("IDAT", "x") +
                             chunk("IEND", ""));
  pctool::Image8 img;
  std::string err;
  EXPECT_FALSE(pctool::PngImage::read(dir.path() + "/huge.png", img, err));
  EXPECT_EQ(err, "image of 20000 x 20000 pixels: more than 33554432 pixels");
  EXPECT_TRUE(img.pixels.empty());
}

class ApplyCommand : public pctest::ToolRunner {
 protected:
  void writeTable() {
    std::string err;
    ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", *mixingTable(), "mixing", err)) << err;
  }
};

bool haveFfmpeg() { return std::system("ffmpeg -version > /dev/null 2>&1") == 0; }

TEST_F(ApplyCommand, PngAgreesWithFfmpegLut3dOnTheSameCubeAndKeepsAlpha) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  if (!pctool::PngImage::available()) GTEST_SKIP() << "built without libpng: apply reads no PNG";
  if (!haveFfmpeg()) GTEST_SKIP() << "ffmpeg not installed: cannot cross-check apply against lut3d";
  writeTable();
  pctool::Image8 in;
  in.width = 80, in.height = 70, in.channels = 4;
  std::mt19937 rng(11);
  std::uniform_int_distribution<int> byte(0, 255);
  for (uint32_t i = 0; i < in.width * in.height * 4; ++i) in.pixels.push_back(uint8_t(byte(rng)));
  std::string err;
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
    size_t worstAt = 0;
    for (size_t i = 0; i < ours.pixels.size(); ++i) {
      if (i % 4 == 3) {
        ASSERT_EQ(ours.pixels[i], in.pixels[i]) << "alpha of pixel " << i / 4;
        continue;
      }
      int d = std::abs(int(ours.pixels[i]) - int(theirs.pixels[i]));
      if (d > worst) worst = d, worstAt = i;
    }
    EXPECT_LE(worst, 1) << interp << " pixel " << worstAt / 4 << " channel " << worstAt % 4;
  }
}

TEST_F(ApplyCommand, RefusalsHaveTheirStatusAndNameTheFile) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  writeTable();
  root.write("/c.csv", "r,g,b\n10,20,30\n");
  root.write("/bad.csv", "10,20\n");
  auto r = run("apply t.cube c.csv out.csv --interp trilinear");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(slurp(dir + "/out.csv").rfind("r8_in,g8_in,b8_in,r12,g12,b12,r8,g8,b8\n10,20,30,", 0), 0u);
  r = run("apply t.cube bad.csv out.csv");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane apply: bad.csv: line 1 malformed: want three values r,g,b\n");
  r = run("apply t.cube c.csv no/such/folder/out.csv");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.rfind("panelcorvane apply: no/such/folder/out.csv: ", 0), 0u) << r.err;
  EXPECT_EQ(run("apply t.cube c.csv out.png").status, 2);
  EXPECT_EQ(run("apply t.cube c.txt out.txt").status, 2);
  EXPECT_EQ(run("apply t.cube c.csv out.csv --interp cubic").status, 2);
  EXPECT_EQ(run("apply t.cube c.csv out.csv --grid odd").status, 2);
  root.write("/not.png", "no picture here");
  r = run("apply t.cube not.png out.png");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.rfind("panelcorvane apply: not.png: ", 0), 0u) << r.err;
  if (pctool::PngImage::available() && haveFfmpeg()) {
    ASSERT_EQ(std::system(("cd '" + dir + "' && ffmpeg -v error -y -f lavfi -i color=red:size=8x8 -frames:v 1 "
                           "-pix_fmt rgb48be deep.png").c_str()), 0);
    r = run("apply t.cube deep.png out.png");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "panelcorvane apply: deep.png: 16-bit PNG: only 8-bit images are read\n");
  }
}

}  // namespace
