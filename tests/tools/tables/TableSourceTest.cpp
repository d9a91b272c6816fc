#include "tools/lib/tables/TableSource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "backend/LutTextFile.h"
#include "cache/Lut3DCacheManager.h"
#include "tests/support/TestSupport.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/tables/DeviceGrid.h"

using postblend::lut3d_info;

namespace {

// A cache image of `n` identity tables with a consistent (or broken) checksum.
std::string cacheImage(uint32_t n, bool goodSum) {
  std::vector<lut3d_info> t(n);
  for (uint32_t k = 0; k < n; ++k) pctool::setIdentity(t[k], k);
  uint32_t trailer[4] = {0, 0, 7, 0};
  trailer[3] = postblend::Lut3DCacheManager::checkSum(t.data(), n, 0, 0, 7) + (goodSum ? 0 : 1);
  std::string s(reinterpret_cast<const char*>(t.data()), n * sizeof(lut3d_info));
  return s + std::string(reinterpret_cast<const char*>(trailer), sizeof trailer);
}

std::string lutText(uint32_t shift) {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  std::string s;
  for (const auto& e : lut->entries)
    s += std::to_string(e.in[0]) + " " + std::to_string(e.in[1]) + " " + std::to_string(e.in[2]) + " " +
         std::to_string(e.out[0] / 2 + shift) + " " + std::to_string(e.out[1]) + " " + std::to_string(e.out[2]) + "\n";
  return s;
}

class TableSourceTest : public ::testing::Test {
 protected:
  void SetUp() override { pctest::resetSharedState(); }
  std::string put(const std::string& name, const std::string& content) {
    root.write("/f/" + name, content);
    return root.host("/f/" + name);
  }
  pctest::TempRoot root;
};

TEST_F(TableSourceTest, RecognisesEveryKindByContent) {
  pctool::OdfValues v;
  pctool::OdfImage odf = pctool::encodeOdf(v);
  struct Case {
    std::string name, content;
    pctool::FileKind kind;
    std::string error;
  } cases[] = {
      {"cofc.fw", cacheImage(6, true), pctool::FileKind::Cache, ""},
      {"cache-no-extension", cacheImage(8, true), pctool::FileKind::Cache, ""},
      {"short.fw", "\x01\x02\x00", pctool::FileKind::Cache, ""},
      {"data.bin", std::string(510, '\0'), pctool::FileKind::Odf, ""},
      {"panel.odf", std::string(reinterpret_cast<const char*>(odf.data()), odf.size()), pctool::FileKind::Odf, ""},
      {"hook.txt", lutText(0), pctool::FileKind::LutText, ""},
      {"graded.cube", "LUT_3D_SIZE 17\n", pctool::FileKind::Cube, ""},
      {"graded.txt", "# from a grading tool\nLUT_3D_SIZE 17\n", pctool::FileKind::Cube, ""},
      {"P_Vivid.txt", "0.68 0.32 0.265 0.69 0.15 0.06 0.3127 0.329 0.4545\n", pctool::FileKind::Target, ""},
      {"empty", "", pctool::FileKind::Unknown, "not a LUT: empty file"},
      {"blob", std::string(1000, '\x01'), pctool::FileKind::Unknown,
       "not a LUT: binary file of 1000 bytes (a table cache has 16 + N x 117928 bytes, an .odf 510)"},
      {"notes.txt", "hello world\n", pctool::FileKind::Unknown,
       "not a LUT: text that is neither a LUT text file (whole numbers) nor a .cube"},
  };
  for (const auto& c : cases) {
    std::string err;
    EXPECT_EQ(pctool::detectKind(put(c.name, c.content), err), c.kind) << c.name;
    EXPECT_EQ(err, c.error) << c.name;
  }
}

TEST_F(TableSourceTest, LoadsCacheTablesAndRejectsDamage) {
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(put("cofc.fw", cacheImage(8, true)), t, err)) << err;
  ASSERT_EQ(t.size(), 8u);
  EXPECT_EQ(t[5].label, "cofc.fw table 5 of 8");
  EXPECT_EQ(t[5].lut->lut3d_id, 5u);

  const std::string bad = cacheImage(6, false);
  uint32_t stored;
  std::memcpy(&stored, bad.data() + bad.size() - 4, 4);
  char expect[96];
  std::snprintf(expect, sizeof expect, "checksum mismatch: stored 0x%08x, computed 0x%08x", stored, stored - 1);
  EXPECT_FALSE(pctool::loadTables(put("bad.fw", bad), t, err));
  EXPECT_EQ(err, expect);

  EXPECT_FALSE(pctool::loadTables(put("cut.fw", cacheImage(6, true).substr(1)), t, err));
  EXPECT_EQ(err, "wrong size: 707583 bytes; a table cache has 16 + N x 117928 bytes (707584 for 6 tables, 943440 for 8)");
  pctool::LoadedTable one;
  EXPECT_FALSE(pctool::loadTable(put("six.fw", cacheImage(6, true)), 6, one, err));
  EXPECT_EQ(err, "no table 6: the file holds 6");
}

TEST_F(TableSourceTest, LutTextIsCheckedBeforeThePluginReaderRunsOverIt) {
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(put("ok.txt", lutText(5) + "17 18\n"), t, err)) << err;
  EXPECT_EQ(t[0].lut->entries[4912].out[0], 4095u / 2 + 5);
  EXPECT_EQ(t[0].lut->uniform, 1u);
  ASSERT_EQ(t[0].notes.size(), 1u);
  EXPECT_EQ(t[0].notes[0], "2 numbers after the 29478th are ignored");

  std::string text = lutText(0);
  struct Case {
    std::string content, error;
  } cases[] = {
      {"0 0 0 0 0 0\n1 1 1 1 1 1\n", "not a LUT: 12 of 29478 numbers"},
      {"0 0 0 5000 0 0\n" + text, "line 1 malformed: 5000 is above 4095"},
      {"0 0 0 0 0 0\n1 2 x3\n" + text, "line 2 malformed: 'x3' is not a 12-bit code"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(pctool::loadTables(put("bad.txt", c.content), t, err));
    EXPECT_EQ(err, c.error);
  }
  // The plugin takes entries in file order: inputs must be the device grid, red fastest.
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  std::string blueFastest;
  for (uint32_t r = 0; r < pctool::kGrid; ++r)
    for (uint32_t g = 0; g < pctool::kGrid; ++g)
      for (uint32_t b = 0; b < pctool::kGrid; ++b) {
        const auto& e = lut->entries[pctool::entryIndex(r, g, b)];
        for (uint32_t v : {e.in[0], e.in[1], e.in[2], e.out[0], e.out[1], e.out[2]}) blueFastest += std::to_string(v) + " ";
        blueFastest += "\n";
      }
  std::string moved = text;
  moved.replace(0, 1, "9");
  struct Order {
    std::string content, error;
  } orders[] = {
      {blueFastest,
       "entries out of order: entry 1 (line 2) has inputs 0 0 256, expected 256 0 0 (red fastest: entry n = 289 b + "
       "17 g + r); the file lists blue fastest"},
      {moved, "entries out of order: entry 0 (line 1) has inputs 9 0 0, expected 0 0 0 (red fastest: entry n = 289 b "
              "+ 17 g + r)"},
  };
  for (const auto& c : orders) {
    EXPECT_FALSE(pctool::loadTables(put("order.txt", c.content), t, err));
    EXPECT_EQ(err, c.error);
  }
}

}  // namespace
