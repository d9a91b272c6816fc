// Table files recognised, loaded with the plugin's readers or refused; two compared node by node.
#include "tools/lib/tables/TableSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/TableDiff.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

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
  EXPECT_EQ(t[5].label, "cofc.fw table 5 of 8 (Cinema)");  // the mode, as the table plan lays them out
  EXPECT_EQ(t[5].lut->lut3d_id, 5u);

  // A checksum the plugin would refuse refuses the file, whose tables inspect still shows.
  EXPECT_FALSE(pctool::loadTables(put("bad.fw", pctest::cacheImage(pctest::identityTables(6), 0, 0, 7, 1)), t, err));
  EXPECT_THAT(err, StartsWith("checksum mismatch: stored 0x"));
  EXPECT_FALSE(pctool::loadTables(put("cut.fw", pctest::cacheImage(pctest::identityTables(6), 0, 0, 7).substr(1)), t, err));
  EXPECT_THAT(err, StartsWith("wrong size: 707583 bytes"));
  pctool::LoadedTable one;
  EXPECT_FALSE(pctool::loadTable(put("six.fw", pctest::cacheImage(pctest::identityTables(6), 0, 0, 7)), 6, one, err));
  EXPECT_EQ(err, "no table 6: the file holds 6");
}

TEST_F(TableSource, LutTextIsCheckedBeforeThePluginReaderRunsOverIt) {
  const auto lut = pctest::mixingTable();
  const std::string text = pctest::lutText(*lut);
  std::vector<pctool::LoadedTable> t;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(put("ok.txt", text + "17 18\n"), t, err)) << err;
  EXPECT_EQ(std::memcmp(t[0].lut.get(), lut.get(), sizeof *lut), 0);  // header as the plugin fills it
  EXPECT_EQ(t[0].notes, std::vector<std::string>{"2 numbers after the 29478th are ignored"});

  // What the plugin's reader finds refuses the file: a bad token, or entries in another order.
  const std::pair<std::string, std::string> cases[] = {
      {"0 0 0 0 0 0\n1 2 x3\n" + text, "line 2 malformed: 'x3' is not a 12-bit code"},
      {pctest::lutText(*lut, true), "entries out of order: entry 1 (line 2) has inputs 0 0 256, expected 256 0 0 (red "
                                    "fastest: entry n = 289 b + 17 g + r); the file lists blue fastest"},
  };
  for (const auto& [content, error] : cases) {
    EXPECT_FALSE(pctool::loadTables(put("bad.txt", content), t, err));
    EXPECT_EQ(err, error);
  }
}

TEST(TableDiff, CountsEveryChannelAndRanksTheWorstNodesByDe2000) {
  auto t = pctest::identityTables(2);
  const auto same = pctool::diffTables(t[0], t[1]);
  EXPECT_EQ(same.maxAbs() + same.differingNodes + same.worst.size(), 0u);

  t[1].entries[100].out[0] += 12;  // a dark node: a few codes move it far
  t[1].entries[4912].out[2] -= 3;  // white: three codes are nothing
  t[1].entries[4912].out[1] -= 1;
  auto d = pctool::diffTables(t[0], t[1]);
  EXPECT_EQ(d.channel[0].maxAbs, 12u);
  EXPECT_EQ(d.channel[0].differing, 1u);
  EXPECT_DOUBLE_EQ(d.channel[0].meanAbs, 12.0 / 4913);
  EXPECT_EQ(d.channel[1].maxAbs, 1u);
  EXPECT_EQ(d.channel[2].maxAbs, 3u);
  EXPECT_EQ(d.differingNodes, 2u);
  EXPECT_EQ(d.inputMismatches, 0u);
  EXPECT_EQ(d.deP95, 0.0);
  ASSERT_EQ(d.worst.size(), 2u);
  EXPECT_EQ(d.worst[0].index, 100u);
  EXPECT_EQ(d.worst[0].b[0], d.worst[0].a[0] + 12);
  EXPECT_EQ(d.deMax, d.worst[0].de);
  EXPECT_GT(d.worst[0].de, d.worst[1].de);
  EXPECT_GT(d.worst[1].de, 0.0);

  for (uint32_t i = 0; i < 40; ++i) t[1].entries[i * 97].out[1] ^= 64;
  d = pctool::diffTables(t[0], t[1]);
  ASSERT_EQ(d.worst.size(), 10u);
  for (size_t i = 1; i < d.worst.size(); ++i) EXPECT_GE(d.worst[i - 1].de, d.worst[i].de);
}

TEST(TableDiff, CachesPairTableByTableAndADifferentCountIsADifference) {
  pctest::TempRoot dir;
  auto three = pctest::identityTables(3), two = pctest::identityTables(2);
  three[1].entries[7].out[0] += 5;
  dir.write("/a.fw", pctest::cacheImage(three, 0, 7, 1));
  dir.write("/b.fw", pctest::cacheImage(two, 0, 7, 1));
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir.path() + "/one.cube", two[0], "one", err)) << err;

  pctool::DiffReport r;
  ASSERT_TRUE(pctool::diffFiles(dir.path() + "/a.fw", dir.path() + "/b.fw", -1, 5, r, err)) << err;
  EXPECT_EQ(r.tables.size(), 2u);
  EXPECT_FALSE(r.withinTolerance()) << "5 codes are within the tolerance, the table counts are not";
  EXPECT_EQ(r.verdict(), dir.path() + "/a.fw vs " + dir.path() + "/b.fw: table counts differ (3 against 2)");

  // One table of each: the cache's table 1 against the .cube's only table.
  ASSERT_TRUE(pctool::diffFiles(dir.path() + "/a.fw", dir.path() + "/one.cube", 1, 4, r, err)) << err;
  ASSERT_EQ(r.tables.size(), 1u);
  EXPECT_EQ(r.tables[0].labelA, "a.fw table 1 of 3 (Vivid)");
  EXPECT_THAT(r.verdict(), HasSubstr("1 of 1 table differs by up to 5 codes (tolerance 4)"));

  EXPECT_FALSE(pctool::diffFiles(dir.path() + "/b.fw", dir.path() + "/a.fw", 2, 0, r, err));
  EXPECT_EQ(err, dir.path() + "/b.fw: no table 2: the file holds 2");
}

class DiffCommand : public pctest::ToolRunner {};

TEST_F(DiffCommand, ExitStatusFollowsTheToleranceAndJsonCarriesTheFigures) {
  auto t = pctest::identityTables(2);
  t[1].entries[2000].out[1] += 9;
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/a.cube", t[0], "a", err)) << err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/b.cube", t[1], "b", err)) << err;
  auto r = run("diff a.cube b.cube");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane diff: a.cube vs b.cube: 1 of 1 table differs by up to 9 codes (tolerance 0)\n");
  EXPECT_THAT(r.out, HasSubstr("entry 2000 (11,15,6)"));
  r = run("diff a.cube b.cube --tolerance 9 --json");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_THAT(r.out, HasSubstr("\"max_abs\":9,\"within_tolerance\":true"));
  EXPECT_THAT(r.out, HasSubstr("\"index\":2000,\"in\":[2816,3840,1536],\"a\":[2816,3840,1536],\"b\":[2816,3849,"));
  EXPECT_EQ(run("diff a.cube a.cube").status, 0);
}

}  // namespace
