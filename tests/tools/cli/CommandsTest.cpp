// The commands as an engineer runs them. Every command's exit status and one-line reason: 0 done,
// 1 an unusable input or a failed job (the file and the fault named, nothing half written), 2 bad
// usage, one row per fault. And the wrong answers engineers met, each given right and with a word.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "backend/LutTextFile.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/cli/Command.h"
#include "tools/lib/common/ParallelFor.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/tables/CubeFile.h"

using pctest::ToolRun;
using postblend::lut3d_info;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

const std::string kLongName(300, 'L');  // a display name no file system can hold

class ExitContract : public pctest::ToolRunner {
 protected:
  // The inputs the rows name: small files from tests/data/tools/inputs, the rest made here.
  void writeInputs() {
    fs::copy(pctest::dataPath("inputs"), dir, fs::copy_options::recursive);
    std::string err;
    const auto identity = pctest::identityTables(1);
    ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/t.cube", identity[0], "t", err)) << err;
    std::string big = "LUT_3D_SIZE 33\n";
    for (int i = 0; i < 33 * 33 * 33; ++i)
      big += std::to_string(i % 33 / 32.0) + " " + std::to_string(i / 33 % 33 / 32.0) + " " +
             std::to_string(i / 1089 / 32.0) + "\n";
    root.write("/big.cube", big);
    root.write("/blue-fastest.txt", pctest::lutText(identity[0], true));
    pctool::OdfValues v;
    pctool::placeMeasurements(pctool::syntheticMeasurements(1, 0, 1, false, false), &v);
    std::fill(v.v + pctool::kOdfWhiteAt, v.v + pctool::kOdfWhiteAt + 3, 0.0f);  // a panel without white
    ASSERT_TRUE(pctool::writeOdfFile(dir + "/zero.odf", v, &err)) << err;
    v.v[30] = std::numeric_limits<float>::infinity();  // a float the plugin does not read
    pctool::placeMeasurements(pctool::syntheticMeasurements(1, 0, 1, false, false), &v);
    const pctool::OdfImage inf = pctool::encodeOdf(v);
    root.write("/inf.odf", std::string(inf.begin(), inf.end()));
    root.write("/padded.odf", std::string(inf.begin(), inf.end()) + std::string(514, '\0'));
    fs::create_directories(dir + "/notatree/sub");
    for (const char* cmd : {"mkdevice D", "mkdevice Broken --no-local", "mkdevice --lot 3 L", "odf write good.odf m.txt"}) {
      ASSERT_EQ(run(cmd).status, 0) << cmd;
    }
    fs::remove(dir + "/Broken/odm/etc/PanelCorvane/PanelCorvane_primary_2_max.odf");
    ASSERT_EQ(run("mkdevice Long").status, 0);  // a display name no file system can hold, beside two good ones
    std::ofstream(dir + "/Long/odm/etc/PanelCorvane/panelcorvane", std::ios::app) << kLongName << "=0\n";
  }
};

// One row per line of exit-contract.txt: status | command | says | never made | cairo.
struct Row {
  std::string args;
  int status = 0;
  std::string says;       // part of stderr, or of either output on success
  std::string neverMade;  // a file the command must not leave behind
  bool needsCairo = false;
};

std::vector<Row> contractRows() {
  std::ifstream in(pctest::dataPath("exit-contract.txt"));
  std::vector<Row> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> f;
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, '|');) {
      const size_t b = field.find_first_not_of(' ');
      f.push_back(b == std::string::npos ? "" : field.substr(b, field.find_last_not_of(' ') - b + 1));
    }
    f.resize(5);
    for (size_t at; (at = f[2].find("\\n")) != std::string::npos;) f[2].replace(at, 2, "\n");
    for (size_t at; (at = f[2].find("{long}")) != std::string::npos;) f[2].replace(at, 6, kLongName);
    rows.push_back({f[1], std::stoi(f[0]), f[2], f[3], f[4] == "cairo"});
  }
  EXPECT_GT(rows.size(), 50u);
  return rows;
}

TEST_F(ExitContract, EveryFaultHasItsStatusAndReason) {
  ASSERT_NO_FATAL_FAILURE(writeInputs());
  const bool cairo = pctool::reportSupported();
  for (const auto& row : contractRows()) {
    if (row.needsCairo && !cairo) continue;
    const pctest::ToolRun r = run(row.args);
    EXPECT_EQ(r.status, row.status) << row.args << "\n" << r.err;
    EXPECT_THAT((r.status == 0 ? r.out + r.err : r.err), HasSubstr(row.says)) << row.args << "\n" << r.err;
    EXPECT_THAT(r.out, Not(HasSubstr(" nan"))) << row.args;
    EXPECT_THAT(r.out, Not(HasSubstr(" inf"))) << row.args;
    EXPECT_TRUE(row.neverMade.empty() || !fs::exists(dir + "/" + row.neverMade)) << row.args;
  }
  // Every command's help says the contract; standard output on a full disk fails the command.
  for (const char* cmd : {"simulate", "mkdevice", "odf", "inspect", "export", "verify", "report", "diff", "apply"}) {
    const pctest::ToolRun r = run(std::string(cmd) + " --help");
    EXPECT_EQ(r.status, 0) << cmd;
    EXPECT_THAT(r.out, HasSubstr("exit status (the same for every command):\n  0  done")) << cmd;
    EXPECT_THAT(r.out, HasSubstr("\n  3  internal error: ")) << cmd;
  }
  const int rc = std::system(("'" + tool + "' inspect '" + dir + "/t.cube' > /dev/full 2> /dev/null").c_str());
  EXPECT_EQ(WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, 1);
}

// An exception that escapes a command, from a pool thread too, is one line and a status of its own.
TEST(CommandGuard, AnEscapingExceptionIsOneLineNeverAnAbort) {
  const pctool::Command boom{"boom", "", "", [](const std::vector<std::string>&) {
                               pctool::parallelFor(8, 2, [](size_t i) {
                                 if (i == 5) throw std::runtime_error("File name too long");
                               });
                               return 0;
                             }};
  testing::internal::CaptureStderr();
  EXPECT_EQ(pctool::runCommand(boom, {}), pctool::kInternal);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "panelcorvane boom: internal error: File name too long\n");
}

class WorkbenchAnswers : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
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
  EXPECT_THAT(r.out, HasSubstr("tables of PanelCorvane_primary: ready (generated); optical data: golden (identity not "
                               "matched: panel_id holds "));
  EXPECT_THAT(r.out, HasSubstr("tables of PanelCorvane_secondary: ready (generated); optical data: golden"));
  // The next run loads the cache and still says why.
  r = simulate("D", "O");
  EXPECT_THAT(r.out,
              HasSubstr("tables of PanelCorvane_primary: ready (cache); optical data: golden (identity not matched"));
  // The report, from the device tree alone, reads the reason from the session's log beside it.
  if (pctool::reportSupported()) {
    EXPECT_EQ(run("report O/device -o pages").status, 0);
    EXPECT_TRUE(std::filesystem::exists(dir + "/pages/report-PanelCorvane_primary.png"));
  }
}

// An output folder answers only for the device it was copied from, as that device is now, and
// lists only its own run's files; a cache the device's data no longer gives is named.
TEST_F(WorkbenchAnswers, AnOutputFolderHoldsOnlyWhatThisRunAnswersFor) {
  root.write("/frame.txt", "init primary\ninit secondary\nwait-tables primary\nwait-tables secondary\n"
                           "frame primary 1 256\n");
  for (const char* cmd : {"mkdevice A", "mkdevice B --seed 2", "simulate --device A --out O --session frame.txt"})
    ASSERT_EQ(run(cmd).status, 0) << cmd;
  EXPECT_THAT(run("simulate --device B --out O --session frame.txt").err, HasSubstr("O: holds a copy of the device tree"));
  ASSERT_EQ(run("mkdevice A --seed 3 --force").status, 0);
  EXPECT_THAT(run("simulate --device A --out O").err,
              HasSubstr("A: has changed since an earlier run copied it to O/device; --fresh copies it again"));
  fs::remove(dir + "/O/device-origin.txt");
  EXPECT_THAT(run("simulate --device A --out O").err, HasSubstr("which device tree O/device was copied from is unknown"));
  ToolRun r = run("simulate --device B --out O --session frame.txt --fresh");
  ASSERT_EQ(r.status, 0) << r.err;
  std::vector<std::string> cubes;  // A's table gone, B's named in the listing
  for (const auto& e : fs::directory_iterator(dir + "/O"))
    if (e.path().extension() == ".cube") cubes.push_back(e.path().filename().string());
  ASSERT_EQ(cubes.size(), 1u);
  EXPECT_THAT(r.out, HasSubstr("(" + cubes[0] + ")"));
  // The plugin loads the cache whatever became of the data; the workbench says so.
  for (const char* set : {"1_max", "2_max", "1_100nit", "2_100nit"})
    fs::copy_file(dir + "/A/mnt/vendor/persist/display/Loading_ON_" + set + ".odf",
                  dir + "/O/device/mnt/vendor/persist/display/Loading_ON_" + set + ".odf",
                  fs::copy_options::overwrite_existing);
  r = run("simulate --device B --out O --session frame.txt");
  EXPECT_THAT(r.out, HasSubstr("tables of PanelCorvane_primary: ready (cache); optical data: local"));
  EXPECT_THAT(r.out, HasSubstr("WARNING: PanelCorvane_primary: the cache predates the optical data or targets now in "
                               "the device: the tables made from them differ from the cached ones by up to "));
  EXPECT_THAT(r.out, Not(HasSubstr("WARNING: PanelCorvane_secondary")));
  // A cache's tables are named by their mode.
  EXPECT_THAT(run("inspect O/device/data/vendor/display/cofc.fw").out, HasSubstr("\ntable 7 LsRGB:\n"));
  EXPECT_THAT(run("diff O/device/data/vendor/display/cofc.fw O/device/data/vendor/display/cofc2.fw --table 2").out,
              HasSubstr("A: cofc.fw table 2 of 8 (Nature 100-nit)\n"));
}

// A panel initialised again after DeInit has no tables: the job before must not answer for it.
TEST_F(WorkbenchAnswers, APanelInitialisedAgainIsNotReadyOnItsEarlierJob) {
  ASSERT_EQ(run("mkdevice D").status, 0);
  root.write("/again.txt", "init primary\ninit secondary\nwait-tables secondary\ndeinit secondary\n"
                           "init secondary\nwait-tables secondary\nframe secondary 1 256\n");
  ToolRun r = run("simulate --device D --out O --session again.txt");
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_THAT(r.out, HasSubstr("tables of PanelCorvane_secondary: ready (generated)"));
  EXPECT_THAT(r.out, HasSubstr("tables of PanelCorvane_secondary: NOT ready (initialised again"));
  EXPECT_THAT(r.out, HasSubstr("frame PanelCorvane_secondary gamut  1 intent 256 -> no table"));
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
  EXPECT_THAT(r.out, HasSubstr("removed O/device/data/vendor/display: 2 files (the old tree's table cache and dumps)"));
  EXPECT_FALSE(std::filesystem::exists(dir + "/O/device/data/vendor/display/cofc.fw"));
  EXPECT_THAT(simulate("D", "O").out, HasSubstr("tables of PanelCorvane_primary: ready (generated)"));
}

TEST_F(WorkbenchAnswers, AGradedCubeBecomesAHookTableTheBackendReads) {
  auto lut = pctest::mixingTable();
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/graded.cube", *lut, "Vivid \"warm\"", err)) << err;
  ToolRun r = run("inspect graded.cube");
  EXPECT_THAT(r.out, HasSubstr("Vivid 'warm'"));  // a quote in a title is no end of it
  r = run("export graded.cube 3D-Lut_Center_sRGB.txt");
  ASSERT_EQ(r.status, 0) << r.err;
  auto back = std::make_unique<lut3d_info>();
  ASSERT_EQ(postblend::LutTextFile::readFile((dir + "/3D-Lut_Center_sRGB.txt").c_str(), back.get()), 29478);
  EXPECT_EQ(std::memcmp(back->entries, lut->entries, sizeof lut->entries), 0);
  r = run("verify 3D-Lut_Center_sRGB.txt --json");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_THAT(r.out, HasSubstr("\"pass\":"));
}

}  // namespace
