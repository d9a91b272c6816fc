#include "tools/lib/tables/LutApply.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/TestSupport.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"

using postblend::lut3d_info;

namespace {

// Outputs that depend on other channels than their own plus node noise, so a swapped axis or a
// wrong tetrahedron shows up.
std::unique_ptr<lut3d_info> twistedTable() {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  std::mt19937 rng(7);
  std::uniform_int_distribution<int> noise(-180, 180);
  for (auto& e : lut->entries) {
    int v[3] = {int(e.in[1] * 3 / 4 + e.in[0] / 5), int(4095 - e.in[2] * 2 / 3), int(e.in[0] / 2 + e.in[2] / 3)};
    for (int c = 0; c < 3; ++c) e.out[c] = uint32_t(std::min(4095, std::max(0, v[c] + noise(rng))));
  }
  return lut;
}

bool haveFfmpeg() { return std::system("ffmpeg -version > /dev/null 2>&1") == 0; }

TEST(LutApply, DeviceGridHitsNodesExactly) {
  auto lut = twistedTable();
  for (uint32_t n : {0u, 1u, 16u, 17u * 17u * 17u - 1u, 289u * 15u + 17u * 16u + 3u}) {
    const auto& e = lut->entries[n];
    pctool::Rgb in{e.in[0] / 4095.0, e.in[1] / 4095.0, e.in[2] / 4095.0};
    for (auto interp : {pctool::Interp::Trilinear, pctool::Interp::Tetrahedral}) {
      pctool::Rgb o = pctool::sampleLut(*lut, in, interp, pctool::NodeGrid::Device);
      EXPECT_NEAR(o.r, e.out[0], 1e-9) << n;
      EXPECT_NEAR(o.g, e.out[1], 1e-9) << n;
      EXPECT_NEAR(o.b, e.out[2], 1e-9) << n;
    }
  }
  // Along the grey axis both interpolations agree; half-way up the last (255-code) interval.
  pctool::Rgb mid{(3840 + 127.5) / 4095.0, (3840 + 127.5) / 4095.0, (3840 + 127.5) / 4095.0};
  pctool::Rgb t = pctool::sampleLut(*lut, mid, pctool::Interp::Trilinear, pctool::NodeGrid::Device);
  pctool::Rgb h = pctool::sampleLut(*lut, mid, pctool::Interp::Tetrahedral, pctool::NodeGrid::Device);
  const auto& a = lut->entries[pctool::entryIndex(15, 15, 15)];
  const auto& b = lut->entries[pctool::entryIndex(16, 16, 16)];
  EXPECT_NEAR(h.r, (a.out[0] + b.out[0]) / 2.0, 1e-9);
  EXPECT_NE(t.r, h.r);
}

TEST(LutApply, AgreesWithFfmpegOnTheCubeItWasGiven) {
  if (!haveFfmpeg()) GTEST_SKIP() << "ffmpeg not installed: cannot cross-check the interpolation";
  pctest::TempRoot dir;
  auto lut = twistedTable();
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir.path() + "/t.cube", *lut, "twisted", err)) << err;

  std::vector<uint8_t> img;
  for (int b = 0; b < 17; ++b)
    for (int g = 0; g < 17; ++g)
      for (int r = 0; r < 17; ++r)
        for (int v : {r, g, b}) img.push_back(uint8_t((v * 255 + 8) / 16));
  std::mt19937 rng(42);
  std::uniform_int_distribution<int> byte(0, 255);
  while (img.size() < 3u * 64 * 100) img.push_back(uint8_t(byte(rng)));
  const size_t pixels = img.size() / 3;
  std::ofstream(dir.path() + "/in.rgb", std::ios::binary).write(reinterpret_cast<char*>(img.data()), img.size());

  for (auto interp : {pctool::Interp::Trilinear, pctool::Interp::Tetrahedral}) {
    const char* name = interp == pctool::Interp::Trilinear ? "trilinear" : "tetrahedral";
    std::string out = dir.path() + "/out-" + name + ".rgb";
    std::string cmd = "ffmpeg -v error -y -f rawvideo -pix_fmt rgb24 -s 64x100 -i '" + dir.path() +
                      "/in.rgb' -vf \"lut3d=file='" + dir.path() + "/t.cube':interp=" + name +
                      "\" -f rawvideo -pix_fmt rgb24 '" + out + "'";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
    std::ifstream is(out, std::ios::binary);
    std::vector<uint8_t> theirs((std::istreambuf_iterator<char>(is)), std::istreambuf_iterator<char>());
    ASSERT_EQ(theirs.size(), img.size()) << name;
    std::vector<uint8_t> ours(img.size());
    pctool::applyLut8(*lut, img.data(), ours.data(), pixels, interp, pctool::NodeGrid::Uniform);
    int worst = 0;
    size_t worstAt = 0;
    for (size_t i = 0; i < img.size(); ++i) {
      int d = std::abs(int(ours[i]) - int(theirs[i]));
      if (d > worst) worst = d, worstAt = i;
    }
    EXPECT_LE(worst, 1) << name << " pixel " << worstAt / 3 << " channel " << worstAt % 3;
  }
}

}  // namespace
