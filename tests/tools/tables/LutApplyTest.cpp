// A table applied between its nodes, to colour lists and PNG images.
#include "tools/lib/tables/LutApply.h"

#include <gtest/gtest.h>

#include <gmock/gmock.h>
#include <lcms2.h>
#include <zlib.h>

#include <cmath>
#include <random>
#include <sstream>
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
  pctool::Image img;
  std::string err;
  EXPECT_FALSE(pctool::PngImage::read(dir.path() + "/huge.png", img, err));
  EXPECT_EQ(err, "image of 20000 x 20000 pixels: more than 33554432 pixels");
  EXPECT_TRUE(img.samples.empty());
}

class ApplyCommand : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    if (!pctool::PngImage::available()) GTEST_SKIP() << "built without libpng: apply reads no PNG";
  }
  // A random image written by the workbench, then `chunks` put after its header.
  pctool::Image writePng(const std::string& name, int channels, int depth, const std::string& chunks = "") {
    pctool::Image img;
    img.width = 80, img.height = 70, img.channels = channels, img.depth = depth;
    std::mt19937 rng(11);
    std::uniform_int_distribution<int> sample(0, int(img.maxValue()));
    for (uint32_t i = 0; i < img.width * img.height * channels; ++i) img.samples.push_back(uint16_t(sample(rng)));
    std::string err;
    EXPECT_TRUE(pctool::PngImage::write(dir + "/" + name, img, "", err)) << err;
    root.write("/" + name, root.read("/" + name).insert(33, chunks));  // 8 signature + 25 IHDR bytes
    return img;
  }
  pctool::Image readPng(const std::string& name) {
    pctool::Image img;
    std::string err;
    EXPECT_TRUE(pctool::PngImage::read(dir + "/" + name, img, err)) << err;
    return img;
  }
};

// ffmpeg's lut3d on the same .cube: both interpolations, PNG in and out, the alpha channel.
TEST_F(ApplyCommand, PngAgreesWithFfmpegLut3dAndKeepsAlpha) {
  if (!pctest::haveProgram("ffmpeg")) GTEST_SKIP() << "ffmpeg not installed: cannot cross-check apply";
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", *pctest::mixingTable(), "mixing", err)) << err;
  const pctool::Image in = writePng("in.png", 4, 8);
  for (const char* interp : {"trilinear", "tetrahedral"}) {
    auto r = run(std::string("apply t.cube in.png ours.png --grid uniform --interp ") + interp);
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string cmd = "cd '" + dir + "' && ffmpeg -v error -y -i in.png -vf lut3d=file=t.cube:interp=" + interp +
                            " -pix_fmt rgba theirs.png";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
    const pctool::Image ours = readPng("ours.png"), theirs = readPng("theirs.png");
    ASSERT_EQ(ours.channels, 4);
    ASSERT_EQ(theirs.samples.size(), ours.samples.size());
    int worst = 0;
    for (size_t i = 0; i < ours.samples.size(); ++i) {
      if (i % 4 == 3) {
        ASSERT_EQ(ours.samples[i], in.samples[i]) << "alpha of pixel " << i / 4;
      } else {
        worst = std::max(worst, std::abs(int(ours.samples[i]) - int(theirs.samples[i])));
      }
    }
    EXPECT_LE(worst, 1) << interp;
  }
}

std::string zlibbed(const std::string& bytes) {
  uLongf size = compressBound(bytes.size());
  std::string out(size, '\0');
  compress(reinterpret_cast<Bytef*>(&out[0]), &size, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  return out.substr(0, size);
}

std::string iccChunk(const std::string& name, cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::string bytes(size, '\0');
  cmsSaveProfileToMem(profile, &bytes[0], &size);
  cmsCloseProfile(profile);
  return pngChunk("iCCP", name + std::string(2, '\0') + zlibbed(bytes));
}

cmsHPROFILE displayP3() {
  const cmsFloat64Number srgb[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  cmsToneCurve* curve = cmsBuildParametricToneCurve(nullptr, 4, srgb);
  cmsToneCurve* curves[3] = {curve, curve, curve};
  const cmsCIExyY d65 = {0.3127, 0.3290, 1};
  const cmsCIExyYTRIPLE p3 = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
  cmsHPROFILE p = cmsCreateRGBProfile(&d65, &p3, curves);
  cmsFreeToneCurve(curve);
  return p;
}

// What a PNG says of its colours decides what reaches the table; the output says only what it
// is: no colour chunk, a Description naming the table.
TEST_F(ApplyCommand, ATaggedImageIsConvertedToTheTablesSpaceOrRefusedWithTheReason) {
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/id.cube", pctest::identityTables(1)[0], "id", err)) << err;
  cmsToneCurve* g22 = cmsBuildGamma(nullptr, 2.2);
  const struct {
    std::string chunks;
    int status;
    std::string says;
  } rows[] = {
      {"", 0, "colours: untagged, taken as the table's input space (sRGB) as they are"},
      {pngChunk("sRGB", std::string(1, '\0')), 0, "colours: sRGB, taken as the table's input space (sRGB) as they are"},
      {pngChunk("gAMA", std::string("\0\0\xb1\x8f", 4)), 0, "colours: converted from gAMA 0.45455 to the table's "
       "input space (sRGB) by Little CMS, relative colorimetric; no cHRM: sRGB's primaries and white assumed"},
      {iccChunk("Display P3", displayP3()), 0, "converted from iCCP profile 'Display P3' to the table's input space"},
      {iccChunk("grey", cmsCreateGrayProfile(cmsD50_xyY(), g22)), 1,
       "in.png: iCCP chunk not usable (iCCP: profile 'grey': 'GRAY': Gray color space not permitted on RGB PNG)"},
      {pngChunk("iCCP", std::string("junk\0\0", 6) + zlibbed(std::string(200, 'x'))), 1, "in.png: iCCP chunk not usable ("},
      {pngChunk("cICP", std::string("\x0c\x0d\0\x01", 4)), 1, "in.png: cICP chunk: its colour coding is not read here"},
  };
  cmsFreeToneCurve(g22);
  for (const auto& row : rows) {
    writePng("in.png", 3, 8, row.chunks);
    const auto r = run("apply id.cube in.png out.png");
    EXPECT_EQ(r.status, row.status) << row.says << r.err;
    EXPECT_THAT(r.out + r.err, ::testing::HasSubstr(row.says));
    if (r.status != 0) continue;
    const std::string out = root.read("/out.png");
    for (const char* chunk : {"sRGB", "iCCP", "gAMA", "cHRM"}) EXPECT_EQ(out.find(chunk), std::string::npos) << chunk;
    EXPECT_NE(out.find("Description"), std::string::npos);
    EXPECT_NE(out.find("through id.cube (\"id\"); not colours of any colour space"), std::string::npos);
  }
}

// Display P3 through the identity table is Little CMS's own transicc conversion to sRGB.
TEST_F(ApplyCommand, DisplayP3IsConvertedAsTransiccConvertsIt) {
  if (!pctest::haveProgram("transicc")) GTEST_SKIP() << "liblcms2-utils not installed: no transicc to check with";
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/id.cube", pctest::identityTables(1)[0], "id", err)) << err;
  cmsHPROFILE p3 = displayP3();
  ASSERT_TRUE(cmsSaveProfileToFile(p3, (dir + "/p3.icc").c_str()));
  cmsCloseProfile(p3);
  const pctool::Image in = writePng("p3.png", 3, 16, iccChunk("Display P3", displayP3()));
  ASSERT_EQ(run("apply id.cube p3.png out.png").status, 0);
  const pctool::Image out = readPng("out.png");
  std::string values;
  for (size_t i = 0; i < 300; ++i) values += std::to_string(in.samples[i] * 255.0 / 65535) + (i % 3 == 2 ? "\n" : " ");
  root.write("/in.txt", values);
  ASSERT_EQ(std::system(("cd '" + dir + "' && transicc -n -s -t1 -ip3.icc < in.txt > theirs.txt 2> /dev/null").c_str()), 0);
  std::istringstream theirs(root.read("/theirs.txt"));
  double v = 0, worst = 0;
  for (size_t i = 0; i < 300 && theirs >> v; ++i) worst = std::max(worst, std::fabs(v / 255 - out.samples[i] / 65535.0));
  EXPECT_LT(worst, 1.0 / 4095);  // within a code of the table
}

}  // namespace
