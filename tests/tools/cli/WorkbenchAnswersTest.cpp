// The workbench never answers wrong without a word: each case here is a silent wrong answer an
// engineer met, run through the tool as they ran it, and the exit-status contract of every
// command.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/tools/ToolRunner.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"

using pctest::ToolRun;
using postblend::lut3d_info;

namespace {

const char kSession[] =
    "init primary\ninit secondary\nwait-tables primary\nwait-tables secondary\ndeinit secondary\ndeinit primary\n";

class WorkbenchAnswers : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
    root.write("/session.txt", kSession);
  }
  ToolRun simulate(const std::string& device, const std::string& out, const std::string& more = "") {
    return run("simulate --device " + device + " --out " + out + " --session session.txt " + more);
  }
  std::string measurementsText(double whiteY) {
    const pctool::OdfMeasurements m = pctool::syntheticMeasurements(1, 0, 1, false, false);
    std::string s;
    auto xyz = [&](const char* n, const double* v, double scale) {
      s += std::string(n) + " " + std::to_string(v[0] * scale) + " " + std::to_string(v[1] * scale) + " " +
           std::to_string(v[2] * scale) + "\n";
    };
    xyz("red", m.red, 1), xyz("green", m.green, 1), xyz("blue", m.blue, 1);
    xyz("white", m.white, whiteY / m.white[1]);
    for (int k = 0; k < 7; ++k) s += "grey " + std::to_string(pctool::kOdfGreyLevels[k]) + " " + std::to_string(m.greyY[k]) + "\n";
    return s;
  }
};

TEST_F(WorkbenchAnswers, TheOpticalDataNamedIsTheOneTheTablesCameFrom) {
  ASSERT_EQ(run("mkdevice D --seed 5 --mismatch").status, 0);
  ToolRun r = simulate("D", "O");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("tables of PanelCorvane_primary: ready (generated); optical data: golden (identity not "
                       "matched: panel_id holds "),
            std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: ready (generated); optical data: golden"), std::string::npos);
  // The next run loads the cache and still says why.
  r = simulate("D", "O");
  EXPECT_NE(r.out.find("tables of PanelCorvane_primary: ready (cache); optical data: golden (identity not matched"),
            std::string::npos)
      << r.out;
  // The report, from the device tree alone, reads the reason from the session's log beside it.
  if (pctool::reportSupported()) {
    r = run("report O/device -o pages");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(std::filesystem::exists(dir + "/pages/report-PanelCorvane_primary.png"));
  }
}

// A panel object initialised again after DeInit runs no loading job and keeps no tables: an
// earlier job's "ready" must not answer for it.
TEST_F(WorkbenchAnswers, APanelInitialisedAgainIsNotReadyOnItsEarlierJob) {
  ASSERT_EQ(run("mkdevice D").status, 0);
  root.write("/again.txt", "init primary\ninit secondary\nwait-tables secondary\ndeinit secondary\n"
                           "init secondary\nwait-tables secondary\nframe secondary 1 256\n");
  ToolRun r = run("simulate --device D --out O --session again.txt");
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: ready (generated)"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("tables of PanelCorvane_secondary: NOT ready (initialised again"), std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("frame PanelCorvane_secondary gamut  1 intent 256 -> no table"), std::string::npos);
}

TEST_F(WorkbenchAnswers, ALutTextFileInAnotherOrderIsRefused) {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  std::string text;
  for (uint32_t r = 0; r < pctool::kGrid; ++r)
    for (uint32_t g = 0; g < pctool::kGrid; ++g)
      for (uint32_t b = 0; b < pctool::kGrid; ++b) {
        const auto& e = lut->entries[pctool::entryIndex(r, g, b)];
        text += std::to_string(e.in[0]) + " " + std::to_string(e.in[1]) + " " + std::to_string(e.in[2]) + " " +
                std::to_string(e.out[0]) + " " + std::to_string(e.out[1]) + " " + std::to_string(e.out[2]) + "\n";
      }
  root.write("/blue-fastest.txt", text);
  const std::string why =
      "blue-fastest.txt: entries out of order: entry 1 (line 2) has inputs 0 0 256, expected 256 0 0";
  for (const std::string cmd : {"export blue-fastest.txt o.cube", "verify blue-fastest.txt", "inspect blue-fastest.txt"}) {
    ToolRun r = run(cmd);
    EXPECT_EQ(r.status, 1) << cmd;
    EXPECT_NE(r.err.find(why), std::string::npos) << cmd << "\n" << r.err;
  }
  EXPECT_FALSE(std::filesystem::exists(dir + "/o.cube"));
}

TEST_F(WorkbenchAnswers, AFailedWriteIsReportedWithFileAndReason) {
  root.write("/m.txt", measurementsText(560));
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", *lut, "t", err)) << err;
  std::vector<std::string> cmds = {"odf write /dev/full m.txt", "export t.cube /dev/full"};
  if (pctool::reportSupported()) {
    ASSERT_EQ(run("odf write p.odf m.txt").status, 0);
    cmds.push_back("report --odf p.odf -o /dev/full");
  }
  for (const auto& cmd : cmds) {
    ToolRun r = run(cmd);
    EXPECT_EQ(r.status, 1) << cmd;
    EXPECT_NE(r.err.find("/dev/full: cannot write: No space left on device"), std::string::npos) << cmd << "\n" << r.err;
  }
  // Standard output on a full disk fails the command too.
  const int rc = std::system(("'" + tool + "' inspect '" + dir + "/t.cube' > /dev/full 2> /dev/null").c_str());
  EXPECT_EQ(WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, 1);
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
            std::string::npos)
      << r.out;
  EXPECT_FALSE(std::filesystem::exists(dir + "/O/device/data/vendor/display/cofc.fw"));
  r = simulate("D", "O");
  EXPECT_NE(r.out.find("tables of PanelCorvane_primary: ready (generated)"), std::string::npos) << r.out;
}

TEST_F(WorkbenchAnswers, DataNoPanelCanProduceIsCaught) {
  root.write("/zero.txt", measurementsText(0));
  root.write("/m.txt", measurementsText(560));
  ASSERT_EQ(run("odf write good.odf m.txt").status, 0);
  pctool::OdfValues v;
  pctool::placeMeasurements(pctool::syntheticMeasurements(1, 0, 1, false, false), &v);
  v.v[pctool::kOdfWhiteAt] = v.v[pctool::kOdfWhiteAt + 1] = v.v[pctool::kOdfWhiteAt + 2] = 0;
  std::string err;
  ASSERT_TRUE(pctool::writeOdfFile(dir + "/zero.odf", v, &err)) << err;
  const std::string p3 = "0.68 0.32 0.265 0.69 0.15 0.06 0.3127 0.329 ";
  root.write("/redgreen.txt", "0.265 0.69 0.265 0.69 0.15 0.06 0.3127 0.329 0.4545\n");
  root.write("/exp45.txt", p3 + "45.2\n");
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", *lut, "t", err)) << err;
  struct Case {
    std::string cmd, err;
  } cases[] = {
      {"odf print zero.odf", "zero.odf: impossible: white Y: luminance 0: nothing was measured"},
      {"inspect zero.odf", "zero.odf: impossible: white Y: luminance 0"},
      {"odf write z.odf zero.txt", "zero.txt: impossible: white Y: luminance 0"},
      {"verify t.cube --odf good.odf --target redgreen.txt", "redgreen.txt: impossible: red and green: coincide"},
      {"inspect exp45.txt", "exp45.txt: impossible: exponent parameter (value 9): 45.2 decodes with power 0.02212"},
      {"verify t.cube --odf zero.odf --target exp45.txt", "zero.odf: impossible: white Y"},
  };
  for (const auto& c : cases) {
    ToolRun r = run(c.cmd);
    EXPECT_EQ(r.status, 1) << c.cmd;
    EXPECT_NE(r.err.find(c.err), std::string::npos) << c.cmd << "\n" << r.err;
    EXPECT_EQ(r.out.find(" nan"), std::string::npos) << c.cmd;
    EXPECT_EQ(r.out.find(" inf"), std::string::npos) << c.cmd;
  }
  EXPECT_FALSE(std::filesystem::exists(dir + "/z.odf"));
}

TEST_F(WorkbenchAnswers, EveryCommandFollowsTheExitContract) {
  ASSERT_EQ(run("mkdevice D").status, 0);
  ASSERT_EQ(run("mkdevice Broken --no-local").status, 0);
  std::filesystem::remove(dir + "/Broken/odm/etc/PanelCorvane/PanelCorvane_primary_2_max.odf");
  root.write("/plain", "x");
  struct Case {
    std::string cmd;
    int status;
    std::string err;  // part of stderr
  } cases[] = {
      {"simulate --device D --out O --session session.txt --primary Foo", 1,
       "O/device/odm/etc/PanelCorvane/panelcorvane: does not map the display name 'Foo' (it maps: "
       "PanelCorvane_primary, PanelCorvane_secondary)"},
      {"simulate --device Broken --out B --session session.txt", 1,
       "PanelCorvane_primary: the tables never became ready"},
      {"simulate --device D --out plain/sub --session session.txt", 1, "plain/sub: output folder: cannot create the folder"},
      {"simulate --device D --out O --session D", 1, "simulate: D: is a folder, not a file"},
      {"simulate --device D --out O --session", 2, "--session needs a value"},
      {"inspect D", 1, "inspect: D: is a folder, not a file"},
      {"export D o.cube", 1, "export: D: is a folder, not a file"},
      {"odf print D", 1, "odf: D: is a folder, not a file"},
      {"verify D --bogus", 2, "unknown option --bogus"},
      {"mkdevice plain", 1, "mkdevice: plain: not a folder"},
      {"mkdevice", 2, "DIR missing"},
  };
  for (const auto& c : cases) {
    ToolRun r = run(c.cmd);
    EXPECT_EQ(r.status, c.status) << c.cmd << "\n" << r.err;
    EXPECT_NE(r.err.find(c.err), std::string::npos) << c.cmd << "\n" << r.err;
  }
  if (pctool::reportSupported()) {
    ToolRun r = run("report D -o new/pages");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(std::filesystem::exists(dir + "/new/pages/report-PanelCorvane_secondary.png"));
  }
  for (const char* cmd : {"simulate", "mkdevice", "odf", "inspect", "export", "verify", "report"}) {
    ToolRun r = run(std::string(cmd) + " --help");
    EXPECT_EQ(r.status, 0) << cmd;
    EXPECT_NE(r.out.find("exit status (the same for every command):\n  0  done"), std::string::npos) << cmd;
  }
}

}  // namespace
