#include "tools/lib/device/TableJobLog.h"

#include <gtest/gtest.h>

#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/device/DataSource.h"

namespace {

// session.log: two panels' jobs interleaved by two workers, then a regeneration elsewhere.
TEST(TableJobLog, JobsAreToldApartByThreadAndNamedByTheirPanel) {
  std::vector<pctool::PluginLogLine> lines;
  std::string err;
  ASSERT_TRUE(pctool::readPluginLog(pctest::dataPath("session.log"), lines, err)) << err;
  ASSERT_EQ(lines.size(), 15u);  // the "(25)" line continues the one before
  EXPECT_EQ(lines[2].text.substr(lines[2].text.size() - 5), "\n(25)");

  const auto jobs = pctool::tableJobs(lines);
  ASSERT_EQ(jobs.size(), 3u);
  using Identity = pctool::TableJob::Identity;
  EXPECT_EQ(jobs[0].displayName, "Main");
  EXPECT_EQ(jobs[0].identity, Identity::NotMatched);
  EXPECT_EQ(jobs[0].identityText(),
            "identity not matched: panel_id holds 2023/06/23_22:16:19_26.9, the panel's serial number gives "
            "2023/06/23_22:16:19_26.3");
  EXPECT_TRUE(jobs[0].generated);
  EXPECT_EQ(jobs[1].displayName, "Side");
  EXPECT_EQ(jobs[1].identity, Identity::Matched);
  ASSERT_EQ(jobs[1].odfFaults.size(), 1u);
  EXPECT_EQ(jobs[1].odfFaults[0],
            "/mnt/vendor/persist/display/Loading_ON_1_max_d1.odf fails its CRC (stored 0x1234, computed 0xabcd)");
  EXPECT_EQ(jobs[2].displayName, "Main");  // the regeneration names its panel first
  EXPECT_EQ(jobs[2].identity, Identity::NoStamp);
  EXPECT_EQ(jobs[2].odfFaults[0], "/odm/etc/PanelCorvane/Main_2_max.odf missing");
  EXPECT_EQ(pctool::lastJobOf(jobs, "Main"), &jobs[2]);
  EXPECT_EQ(pctool::lastJobOf(jobs, "Nobody"), nullptr);
}

TEST(DataSource, TrailerSaysWhichAndTheLogSaysWhy) {
  pctool::TableJob unmatched;
  unmatched.identity = pctool::TableJob::Identity::NotMatched;
  pctool::TableJob matched;
  matched.identity = pctool::TableJob::Identity::Matched;
  matched.odfFaults = {"/mnt/vendor/persist/display/Loading_ON_2_max.odf missing", "another"};
  pctool::TableJob cached = matched;
  cached.odfFaults.clear();
  cached.fromCache = true;
  struct Case {
    int trailer;
    const pctool::TableJob* job;
    uint32_t panel;
    std::string statement, firstOdf;
  } cases[] = {
      {0, &cached, 1, "local (identity matched; tables loaded from the cache)",
       "/mnt/vendor/persist/display/Loading_ON_1_max_d1.odf"},
      {1, &unmatched, 0, "golden (identity not matched)", "/odm/etc/PanelCorvane/Main_1_max.odf"},
      {2, &matched, 0,
       "golden although the identity matched (identity matched; local data unusable: "
       "/mnt/vendor/persist/display/Loading_ON_2_max.odf missing and 1 more)",
       "/odm/etc/PanelCorvane/Main_1_max.odf"},
      {1, nullptr, 0, "golden (the cache trailer says so; why is in the plugin's log, which was not given)",
       "/odm/etc/PanelCorvane/Main_1_max.odf"},
      {-1, &matched, 0, "unknown (no table cache)", ""},
      {7, nullptr, 0, "unknown (the cache names source 7)", ""},
  };
  for (const auto& c : cases) {
    const pctool::DataSource d = pctool::describeDataSource(c.trailer, c.job, c.panel, "Main");
    EXPECT_EQ(d.statement(), c.statement) << c.trailer;
    EXPECT_EQ(d.odfPaths.empty() ? "" : d.odfPaths[0], c.firstOdf) << c.trailer;
  }
}

}  // namespace
