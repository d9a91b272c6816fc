#include "tools/lib/tables/TableDiff.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "cache/Lut3DCacheManager.h"
#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"

using postblend::lut3d_info;

namespace {

std::vector<lut3d_info> identities(size_t n) {
  std::vector<lut3d_info> t(n);
  for (uint32_t k = 0; k < n; ++k) pctool::setIdentity(t[k], k);
  return t;
}

// A table cache as the plugin writes it, checksum included.
std::string cacheImage(std::vector<lut3d_info>& t) {
  const uint32_t n = static_cast<uint32_t>(t.size());
  uint32_t trailer[4] = {0, 7, 1, postblend::Lut3DCacheManager::checkSum(t.data(), n, 0, 7, 1)};
  return std::string(reinterpret_cast<const char*>(t.data()), n * sizeof(lut3d_info)) +
         std::string(reinterpret_cast<const char*>(trailer), sizeof trailer);
}

TEST(TableDiff, CountsEveryChannelAndRanksTheWorstNodesByDe2000) {
  auto t = identities(2);
  auto same = pctool::diffTables(t[0], t[1]);
  EXPECT_EQ(same.maxAbs(), 0u);
  EXPECT_EQ(same.differingNodes, 0u);
  EXPECT_TRUE(same.worst.empty());
  EXPECT_EQ(same.deMax, 0.0);

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
  EXPECT_EQ(d.worst[0].in[0], d.worst[0].a[0]);
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
  auto three = identities(3), two = identities(2);
  three[1].entries[7].out[0] += 5;
  dir.write("/a.fw", cacheImage(three));
  dir.write("/b.fw", cacheImage(two));
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir.path() + "/one.cube", two[0], "one", err)) << err;

  pctool::DiffReport r;
  ASSERT_TRUE(pctool::diffFiles(dir.path() + "/a.fw", dir.path() + "/b.fw", -1, 5, r, err)) << err;
  EXPECT_EQ(r.tables.size(), 2u);
  EXPECT_TRUE(r.countMismatch);
  EXPECT_EQ(r.maxAbs(), 5u);
  EXPECT_FALSE(r.withinTolerance());
  EXPECT_NE(r.verdict().find("table counts differ (3 against 2)"), std::string::npos) << r.verdict();
  EXPECT_EQ(r.verdict().find("codes"), std::string::npos) << "5 codes are within the tolerance";

  // One table of each: the cache's table 1 against the .cube's only table.
  ASSERT_TRUE(pctool::diffFiles(dir.path() + "/a.fw", dir.path() + "/one.cube", 1, 4, r, err)) << err;
  ASSERT_EQ(r.tables.size(), 1u);
  EXPECT_EQ(r.tables[0].labelA, "a.fw table 1 of 3");
  EXPECT_FALSE(r.countMismatch);
  EXPECT_NE(r.verdict().find("1 of 1 table differs by up to 5 codes (tolerance 4)"), std::string::npos) << r.verdict();

  EXPECT_FALSE(pctool::diffFiles(dir.path() + "/b.fw", dir.path() + "/a.fw", 2, 0, r, err));
  EXPECT_EQ(err, dir.path() + "/b.fw: no table 2: the file holds 2");
  EXPECT_FALSE(pctool::diffFiles(dir.path() + "/a.fw", dir.path() + "/none.fw", -1, 0, r, err));
  EXPECT_EQ(err, dir.path() + "/none.fw: no such file");
}

class DiffCommand : public pctest::ToolRunner {};

TEST_F(DiffCommand, ExitStatusFollowsTheToleranceAndJsonCarriesTheFigures) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  auto t = identities(2);
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
  EXPECT_TRUE(r.err.empty());
  EXPECT_NE(r.out.find("\"max_abs\":9,\"within_tolerance\":true"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("{\"index\":2000,\"in\":[2816,3840,1536],\"a\":[2816,3840,1536],\"b\":[2816,3849,1536]"),
            std::string::npos) << r.out;
  EXPECT_EQ(run("diff a.cube a.cube").status, 0);
  EXPECT_EQ(run("diff a.cube").status, 2);
  EXPECT_EQ(run("diff a.cube b.cube --tolerance -1").status, 2);
  EXPECT_EQ(run("diff a.cube b.cube --table 9").status, 2);
  r = run("diff a.cube missing.cube");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane diff: missing.cube: no such file\n");
}

}  // namespace
