#include "tools/lib/tables/TableDiff.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/tables/CubeFile.h"

namespace {

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
  EXPECT_EQ(r.tables[0].labelA, "a.fw table 1 of 3");
  EXPECT_NE(r.verdict().find("1 of 1 table differs by up to 5 codes (tolerance 4)"), std::string::npos) << r.verdict();

  EXPECT_FALSE(pctool::diffFiles(dir.path() + "/b.fw", dir.path() + "/a.fw", 2, 0, r, err));
  EXPECT_EQ(err, dir.path() + "/b.fw: no table 2: the file holds 2");
}

class DiffCommand : public pctest::ToolRunner {};

TEST_F(DiffCommand, ExitStatusFollowsTheToleranceAndJsonCarriesTheFigures) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  auto t = pctest::identityTables(2);
  t[1].entries[2000].out[1] += 9;
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/a.cube", t[0], "a", err)) << err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/b.cube", t[1], "b", err)) << err;
  auto r = run("diff a.cube b.cube");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane diff: a.cube vs b.cube: 1 of 1 table differs by up to 9 codes (tolerance 0)\n");
  EXPECT_NE(r.out.find("entry 2000 (11,15,6)"), std::string::npos) << r.out;
  r = run("diff a.cube b.cube --tolerance 9 --json");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("\"max_abs\":9,\"within_tolerance\":true"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("{\"index\":2000,\"in\":[2816,3840,1536],\"a\":[2816,3840,1536],\"b\":[2816,3849,1536]"),
            std::string::npos) << r.out;
  EXPECT_EQ(run("diff a.cube a.cube").status, 0);
}

}  // namespace
