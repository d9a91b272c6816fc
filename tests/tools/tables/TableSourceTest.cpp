// Any table file an engineer meets, recognised by its content and loaded with the plugin's
// readers, or refused naming the fault.
#include "tools/lib/tables/TableSource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/TestSupport.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/calibration/OdfWriter.h"

namespace {

class TableSource : public ::testing::Test {
 protected:
  std::string put(const std::string& name, const std::string& content) {
    root.write("/" + name, content);
    return root.host("/" + name);
  }
  pctest::TempRoot root;
};

TEST_F(TableSource, RecognisesEveryKindByContent) {
  const pctool::OdfImage odf = pctool::encodeOdf(pctool::OdfValues{});
  const struct {
    std::string name, content;
    pctool::FileKind kind;
    std::string error;
  } cases[] = {
      {"cofc.fw", pctest::cacheImage(pctest::identityTables(6), 0, 0, 7), pctool::FileKind::Cache, ""},
      {"cache-no-extension", pctest::cacheImage(pctest::identityTables(8), 0, 0, 7), pctool::FileKind::Cache, ""},
      {"short.fw", "\x01\x02\x00", pctool::FileKind::Cache, ""},
      {"data.bin", std::string(510, '\0'), pctool::FileKind::Odf, ""},
      {"panel.odf", std::string(reinterpret_cast<const char*>(odf.data()), odf.size()), pctool::FileKind::Odf, ""},
      {"hook.txt", pctest::lutText(pctest::identityTables(1)[0]), pctool::FileKind::LutText, ""},
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

TEST_F(TableSource, LoadsCacheTablesAndRefusesDamage) {
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(put("cofc.fw", pctest::cacheImage(pctest::identityTables(8), 0, 0, 7)), t, err));
  ASSERT_EQ(t.size(), 8u);
  EXPECT_EQ(t[5].label, "cofc.fw table 5 of 8");
  EXPECT_EQ(t[5].lut->lut3d_id, 5u);

  const std::string six = pctest::cacheImage(pctest::identityTables(6), 0, 0, 7);
  const std::string bad = pctest::cacheImage(pctest::identityTables(6), 0, 0, 7, 1);
  uint32_t stored;
  std::memcpy(&stored, bad.data() + bad.size() - 4, 4);
  char sums[96];
  std::snprintf(sums, sizeof sums, "checksum mismatch: stored 0x%08x, computed 0x%08x", stored, stored - 1);
  const struct {
    std::string content;
    int index;  // -1: every table
    std::string error;
  } cases[] = {
      {bad, -1, sums},
      {six.substr(1), -1, "wrong size: 707583 bytes; a table cache has 16 + N x 117928 bytes (707584 for 6 tables, "
                          "943440 for 8)"},
      {six, 6, "no table 6: the file holds 6"},
  };
  for (const auto& c : cases) {
    pctool::LoadedTable one;
    const bool ok = c.index < 0 ? pctool::loadTables(put("x.fw", c.content), t, err)
                                : pctool::loadTable(put("x.fw", c.content), c.index, one, err);
    EXPECT_FALSE(ok) << c.error;
    EXPECT_EQ(err, c.error);
  }
}

TEST_F(TableSource, LutTextIsCheckedBeforeThePluginReaderRunsOverIt) {
  const auto lut = pctest::mixingTable();
  const std::string text = pctest::lutText(*lut);
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(put("ok.txt", text + "17 18\n"), t, err)) << err;
  EXPECT_EQ(std::memcmp(t[0].lut.get(), lut.get(), sizeof *lut), 0);  // header as the plugin fills it
  EXPECT_EQ(t[0].notes, std::vector<std::string>{"2 numbers after the 29478th are ignored"});

  std::string moved = text;
  moved.replace(0, 1, "9");
  const struct {
    std::string content, error;
  } cases[] = {
      {"0 0 0 0 0 0\n1 1 1 1 1 1\n", "not a LUT: 12 of 29478 numbers"},
      {"0 0 0 5000 0 0\n" + text, "line 1 malformed: 5000 is above 4095"},
      {"0 0 0 0 0 0\n1 2 x3\n" + text, "line 2 malformed: 'x3' is not a 12-bit code"},
      // The plugin takes entries in file order: inputs must be the device grid, red fastest.
      {pctest::lutText(*lut, true),
       "entries out of order: entry 1 (line 2) has inputs 0 0 256, expected 256 0 0 (red fastest: entry n = 289 b + "
       "17 g + r); the file lists blue fastest"},
      {moved, "entries out of order: entry 0 (line 1) has inputs 9 0 0, expected 0 0 0 (red fastest: entry n = 289 b "
              "+ 17 g + r)"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(pctool::loadTables(put("bad.txt", c.content), t, err));
    EXPECT_EQ(err, c.error);
  }
}

}  // namespace
