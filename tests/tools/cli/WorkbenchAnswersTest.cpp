// The workbench never answers wrong without a word: each case here is a wrong answer an engineer
// met, run through the tool as they ran it.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "backend/LutTextFile.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/tables/CubeFile.h"

using pctest::ToolRun;
using postblend::lut3d_info;

namespace {

class WorkbenchAnswers : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
    root.write("/session.txt", "init primary\ninit secondary\nwait-tables primary\nwait-tables secondary\n"
                               "deinit secondary\ndeinit primary\n");
  }
  ToolRun simulate(const std::string& device, const std::string& out) {
    return run("simulate --device " + device + " --out " + out + " --session session.txt");
  }
};

TEST_F(WorkbenchAnswers, TheOpticalDataNamedIsTheOneTheTablesCameFrom) {
  ASSERT_EQ(run("mkdevice D --seed 5 --mismatch").status, 0);
  ToolRun r = simulate("D", "O");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("tables of PanelCorvane_primary: ready (generated); optical data: golden (identity not "
                       "matched: panel_id holds "),
            std::string::npos) << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: ready (generated); optical data: golden"), std::string::npos);
  // The next run loads the cache and still says why.
  r = simulate("D", "O");
  EXPECT_NE(r.out.find("tables of PanelCorvane_primary: ready (cache); optical data: golden (identity not matched"),
            std::string::npos) << r.out;
  // The report, from the device tree alone, reads the reason from the session's log beside it.
  if (pctool::reportSupported()) {
    EXPECT_EQ(run("report O/device -o pages").status, 0);
    EXPECT_TRUE(std::filesystem::exists(dir + "/pages/report-PanelCorvane_primary.png"));
  }
}

// A panel object initialised again after DeInit runs no loading job and keeps no tables: the
// job before must not answer for it.
TEST_F(WorkbenchAnswers, APanelInitialisedAgainIsNotReadyOnItsEarlierJob) {
  ASSERT_EQ(run("mkdevice D").status, 0);
  root.write("/again.txt", "init primary\ninit secondary\nwait-tables secondary\ndeinit secondary\n"
                           "init secondary\nwait-tables secondary\nframe secondary 1 256\n");
  ToolRun r = run("simulate --device D --out O --session again.txt");
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: ready (generated)"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: NOT ready (initialised again"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("frame PanelCorvane_secondary gamut  1 intent 256 -> no table"), std::string::npos);
}

TEST_F(WorkbenchAnswers, MkdeviceDoesNotLeaveAnOldCacheBehind) {
  ASSERT_EQ(run("mkdevice D --seed 1").status, 0);
  ASSERT_EQ(simulate("D", "O").status, 0);
  ASSERT_TRUE(std::filesystem::exists(dir + "/O/device/data/vendor/display/cofc.fw"));
  ToolRun r = run("mkdevice O/device --seed 2");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane mkdevice: O/device: not empty; --force replaces the device tree in it (its table "
                   "cache included)\n");
  r = run("mkdevice O/device --seed 2 --force");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("removed O/device/data/vendor/display: 2 files (the old tree's table cache and dumps)"),
            std::string::npos) << r.out;
  EXPECT_FALSE(std::filesystem::exists(dir + "/O/device/data/vendor/display/cofc.fw"));
  EXPECT_NE(simulate("D", "O").out.find("tables of PanelCorvane_primary: ready (generated)"), std::string::npos);
}

TEST_F(WorkbenchAnswers, AGradedCubeBecomesAHookTableTheBackendReads) {
  auto lut = pctest::mixingTable();
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/graded.cube", *lut, "Vivid \"warm\"", err)) << err;
  ToolRun r = run("inspect graded.cube");
  EXPECT_NE(r.out.find("Vivid 'warm'"), std::string::npos) << r.out;  // a quote in a title is no end of it
  r = run("export graded.cube 3D-Lut_Center_sRGB.txt");
  ASSERT_EQ(r.status, 0) << r.err;
  auto back = std::make_unique<lut3d_info>();
  ASSERT_EQ(postblend::LutTextFile::readFile((dir + "/3D-Lut_Center_sRGB.txt").c_str(), back.get()), 29478);
  EXPECT_EQ(std::memcmp(back->entries, lut->entries, sizeof lut->entries), 0);
  r = run("verify 3D-Lut_Center_sRGB.txt --json");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("\"pass\":"), std::string::npos);
}

}  // namespace
