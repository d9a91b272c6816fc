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
  const std::string kLongName = std::string(300, 'L');
};

TEST_F(ExitContract, EveryFaultHasItsStatusAndReason) {
  ASSERT_NO_FATAL_FAILURE(writeInputs());
  const bool cairo = pctool::reportSupported();
  const std::string order = "blue-fastest.txt: entries out of order: entry 1 (line 2) has inputs 0 0 256, expected 256";
  struct Row {
    Row(std::string a, int st, std::string s, std::string never = "", bool cairo = false)
        : args(std::move(a)), status(st), says(std::move(s)), neverMade(std::move(never)), needsCairo(cairo) {}
    std::string args;
    int status;
    std::string says;       // part of stderr, or of either output on success
    std::string neverMade;  // a file the command must not leave behind
    bool needsCairo;
  };
  const Row rows[] = {
      // Files that are no files, or missing.
      {"inspect D", 1, "inspect: D: is a folder, not a file"},
      {"odf print D", 1, "odf: D: is a folder, not a file"},
      {"diff t.cube missing.cube", 1, "diff: missing.cube: no such file\n"},
      {"odf write y.odf --ti3=missing.ti3", 1, "odf: missing.ti3: no such file\n", "y.odf"},
      // Malformed inputs name their line.
      {"export bad.cube o.txt", 1, "export: bad.cube: line 2 malformed: want 3 numbers, found 2\n", "o.txt"},
      {"inspect huge.cube", 1, "inspect: huge.cube: line 1 unsupported: LUT_3D_SIZE 129 (2..65)\n"},
      {"apply t.cube bad.csv out.csv", 1, "apply: bad.csv: line 1 malformed: want three values r,g,b\n", "out.csv"},
      {"apply t.cube not.png out.png", 1, "apply: not.png: ", "out.png"},
      {"odf write y.odf --ti3 bad.ti3", 1, "bad.ti3:6: row has 2 values, the data format names 6 fields\n", "y.odf"},
      {"export blue-fastest.txt o.cube", 1, order, "o.cube"},
      {"verify blue-fastest.txt", 1, order},
      {"inspect blue-fastest.txt", 1, order},
      // Data no panel or target can be: refused, never a "nan" in the answer.
      {"inspect x.odf", 1, "inspect: x.odf: CRC mismatch: stored 0x0101, computed "},
      {"report --odf x.odf -o p.png", 1, "report: x.odf: CRC mismatch", "p.png", true},
      {"odf print zero.odf", 1, "zero.odf: impossible: white Y: luminance 0: nothing was measured"},
      {"inspect zero.odf", 1, "zero.odf: impossible: white Y: luminance 0"},
      {"odf write z.odf zero.txt", 1, "zero.txt: impossible: white Y: luminance 0", "z.odf"},
      {"verify t.cube --odf good.odf --target redgreen.txt", 1, "redgreen.txt: impossible: red and green: coincide"},
      {"inspect exp45.txt", 1, "exp45.txt: impossible: exponent parameter (value 9): 45.2 decodes with power 0.02212"},
      {"verify t.cube --odf zero.odf --target exp45.txt", 1, "zero.odf: impossible: white Y"},
      // Numbers and files an optical data file cannot be.
      {"odf write f.odf float.txt", 1, "float.txt:14: '5e39' does not fit a float of the optical data file", "f.odf"},
      {"odf write f.odf padded.odf", 1, "padded.odf: binary data (an optical data file?), not measurement text", "f.odf"},
      {"odf print inf.odf", 0, "warning: floats outside the measured fields: not finite at 30 (inf)"},
      {"odf print padded.odf", 0, "warning: 1024 bytes, padded beyond the 510 of an optical data file: the plugin reads "
                                  "the first 510 (127 floats and the CRC) and ignores the other 514"},
      {"inspect padded.odf", 0, "warning: 1024 bytes, padded beyond the 510"},
      {"odf icc zero.odf z.icc", 1, "zero.odf: impossible: white Y", "z.icc"},
      {"verify t.cube --odf good.odf --target srgb.txt --chart c.ti1", 2, "--chart needs --measured"},
      {"verify t.cube --odf good.odf --target srgb.txt --max-de 0", 2, "--max-de wants"},
      // Outputs that cannot be written.
      {"odf write /dev/full m.txt", 1, "/dev/full: cannot write: No space left on device"},
      {"export t.cube /dev/full", 1, "/dev/full: cannot write: No space left on device"},
      {"report --odf good.odf -o /dev/full", 1, "/dev/full: cannot write: No space left on device", "", true},
      {"apply t.cube c.csv no/such/folder/out.csv", 1, "apply: no/such/folder/out.csv: "},
      {"odf patches --ti1 no/such/folder/x.ti1", 1, "no/such/folder/x.ti1: cannot create"},
      {"verify --lot L --csv plain/x.csv", 1, "plain/x.csv: "},
      // Device trees and lots that are none.
      {"simulate --device=D --out O --session session.txt --primary=Foo", 1,
       "O/device/odm/etc/PanelCorvane/panelcorvane: does not map the display name 'Foo' (it maps: "
       "PanelCorvane_primary, PanelCorvane_secondary)"},
      {"simulate --device Broken --out B --session session.txt", 1, "primary: the tables never became ready"},
      {"simulate --device Broken --out O --session session.txt", 1, "simulate: O: holds a copy of the device tree /"},
      // Paths a display name makes: the display named with the reason, the others still reported.
      {"report Long -o lp", 1, "report: Long: display " + kLongName + ": its files cannot be looked at (File name too long)\n",
       "", true},
      {"simulate --device Long --out LO --session session.txt", 1,
       "LO/device: display " + kLongName + ": its files cannot be looked at (File name too long): no report page", "", true},
      {"simulate --device D --out plain/sub --session session.txt", 1, "plain/sub: output folder: cannot create"},
      {"simulate --device D --out O --session D", 1, "simulate: D: is a folder, not a file"},
      {"mkdevice plain", 1, "mkdevice: plain: not a folder"},
      {"mkdevice --lot 5 plain", 1, "plain: not a folder"},
      {"verify --lot notatree", 1, "notatree: no device tree in it"},
      {"verify --lot missing", 1, "missing: no such folder"},
      {"verify --lot plain", 1, "plain: not a folder"},
      // Bad usage.
      {"simulate --device D --out O --session", 2, "--session needs a value"},
      {"verify t.cube --bogus", 2, "unknown option --bogus"},
      {"verify t.cube --odf x.odf", 2, "verify: --odf and --target go together\n"},
      {"verify t.cube --measured m.txt", 2, "verify: --measured needs --odf and --target\n"},
      {"verify t.cube --png page.png", 2, "", "page.png"},
      {"verify --patches-ti1", 2, ""},
      {"odf patches odf.ti1", 2, ""},
      {"export only-one-argument", 2, "export: needs INPUT and OUTPUT\n"},
      {"apply t.cube c.csv out.png", 2, ""},
      {"apply t.cube c.txt out.txt", 2, ""},
      {"apply t.cube c.csv out.csv --interp cubic", 2, ""},
      {"apply t.cube c.csv out.csv --grid odd", 2, ""},
      {"diff t.cube", 2, ""},
      {"diff t.cube t.cube --tolerance -1", 2, ""},
      {"diff t.cube t.cube --table 9", 2, ""},
      {"mkdevice", 2, "DIR missing"},
      {"mkdevice --lot 0 M", 2, "--lot wants a panel count"},
      {"mkdevice --lot 100001 M", 2, "--lot wants a panel count"},
      {"mkdevice --lot 5", 2, "DIR missing"},
      {"mkdevice --lot 5 M --tables 6", 2, "unknown option --tables"},
      {"mkdevice --lot 5 M -j 0", 2, "-j wants"},
      {"verify --lot", 2, "needs at least one DIR"},
      {"verify --lot L --max-de -1", 2, "--max-de wants"},
      {"verify --lot L --xy-tolerance 0", 2, "--xy-tolerance wants"},
      {"verify --lot L -j0", 2, "-j wants"},
      {"verify --lot L --bogus", 2, "unknown option --bogus"},
      // Done, with what an engineer must hear.
      {"apply t.cube c.csv out.csv --interp trilinear", 0, "wrote out.csv: 1 colours (8-bit values)"},
      {"inspect big.cube", 0, "note: resampled from 33 nodes (tetrahedral)\n"},
      {"odf write rel.odf --ti3 rel.ti3", 0, "rel.ti3: warning: no LUMINANCE_XYZ_CDM2 in the header: the XYZ values are "
                                             "taken as they are, not scaled to cd/m2\n"},
      {"verify --lot L --png page.png -j1", 0, "", "", true},
      {"export big.cube hook.txt", 0, "export: big.cube: note: resampled from 33 nodes (tetrahedral)\n"},
      {"report D -o new/pages", 0, "report-PanelCorvane_secondary.png", "", true},
  };
  for (const auto& row : rows) {
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
