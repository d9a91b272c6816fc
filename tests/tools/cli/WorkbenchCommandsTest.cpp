// The workbench commands as an engineer runs them: exit statuses and one-line reasons.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "backend/LutTextFile.h"
#include "cache/Lut3DCacheManager.h"
#include "tests/support/TestSupport.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/device/FileInfo.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"

using pctest::ToolRun;
using postblend::lut3d_info;

namespace {

class WorkbenchCommands : public pctest::ToolRunner {};

std::unique_ptr<lut3d_info> warmTable() {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setIdentity(*lut, 0);
  for (auto& e : lut->entries) e.out[2] = e.in[2] * 7 / 8;
  return lut;
}

TEST_F(WorkbenchCommands, InspectTellsTheFwVersionAndTheChecksumVerdict) {
  std::vector<lut3d_info> t(6);
  for (uint32_t k = 0; k < 6; ++k) pctool::setIdentity(t[k], k);
  uint32_t trailer[4] = {2, 0, 1, 0};
  trailer[3] = postblend::Lut3DCacheManager::checkSum(t.data(), 6, 2, 0, 1) ^ 0x10;
  std::string image(reinterpret_cast<const char*>(t.data()), 6 * sizeof(lut3d_info));
  root.write("/cofc.fw", image + std::string(reinterpret_cast<const char*>(trailer), 16));
  std::string text, err;
  EXPECT_FALSE(pctool::inspectFile(dir + "/cofc.fw", text, err));
  EXPECT_EQ(err.rfind("checksum mismatch: stored 0x", 0), 0u) << err;
  EXPECT_NE(text.find("needs FWVersion=707584"), std::string::npos) << text;
  EXPECT_NE(text.find("source 2 (panel matched but golden data used; never accepted on reload)"), std::string::npos);
  EXPECT_NE(text.find("largest move from the input 0 codes (identity)"), std::string::npos);
}

TEST_F(WorkbenchCommands, GradedCubeBecomesAHookTableTheBackendReads) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  auto lut = warmTable();
  std::string err;
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/graded.cube", *lut, "warm", err)) << err;
  ToolRun r = run("export '" + dir + "/graded.cube' '" + dir + "/3D-Lut_Center_sRGB.txt'");
  ASSERT_EQ(r.status, 0) << r.err;
  auto back = std::make_unique<lut3d_info>();
  ASSERT_EQ(postblend::LutTextFile::readFile((dir + "/3D-Lut_Center_sRGB.txt").c_str(), back.get()), 29478);
  EXPECT_EQ(std::memcmp(back->entries, lut->entries, sizeof lut->entries), 0);

  r = run("verify '" + dir + "/3D-Lut_Center_sRGB.txt' --json");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("\"pass\":true"), std::string::npos);
  EXPECT_EQ(run("export --help").status, 0);
}

TEST_F(WorkbenchCommands, BadFilesAndBadUsageHaveTheirExitStatus) {
  if (!haveTool()) GTEST_SKIP() << "panelcorvane not built at " << tool;
  root.write("/bad.cube", "LUT_3D_SIZE 17\n0.1 0.2\n");
  root.write("/x.odf", std::string(510, '\x01'));
  struct Case {
    std::string args;
    int status;
    std::string err;
  };
  std::vector<Case> cases = {
      {"export '" + dir + "/bad.cube' '" + dir + "/o.txt'", 1,
       "panelcorvane export: " + dir + "/bad.cube: line 2 malformed\n"},
      {"inspect '" + dir + "/x.odf'", 1, "panelcorvane inspect: " + dir + "/x.odf: CRC mismatch: stored 0x0101, computed "},
      {"verify '" + dir + "/bad.cube' --odf '" + dir + "/x.odf'", 2, "panelcorvane verify: --odf and --target go together\n"},
      {"export only-one-argument", 2, "panelcorvane export: needs INPUT and OUTPUT\n"},
  };
  if (pctool::reportSupported()) {  // without cairo, report refuses before reading its inputs
    cases.push_back({"report --odf '" + dir + "/x.odf' -o '" + dir + "/p.png'", 1,
                     "panelcorvane report: " + dir + "/x.odf: CRC mismatch"});
  }
  for (const auto& c : cases) {
    ToolRun r = run(c.args);
    EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
    EXPECT_EQ(r.err.substr(0, c.err.size()), c.err) << c.args;
  }
}

}  // namespace
