// The colorimeter's side of the workbench: patch sets out, readings in. With ArgyllCMS
// installed, fakeread plays the instrument: it reads our .ti1 and answers through a display
// profile, as dispread would on a panel with that profile.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <cstdlib>
#include <fstream>
#include <string>

#include "frontend/Lut3dGeneration.h"
#include "tests/tools/ToolRunner.h"
#include "tools/lib/measurements/Cgats.h"
#include "tools/lib/measurements/PatchSets.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/LutApply.h"
#include "tools/lib/tables/TableSource.h"
#include "tools/lib/verify/MeasuredVerify.h"
#include "tools/lib/verify/Verify.h"
#include "tools/lib/verify/VerifyPage.h"

namespace {

using pctest::ToolRun;

// Display P3: its primaries and D65 white, as the profile Argyll ships declares them.
const char kP3Profile[] = "/usr/share/color/argyll/ref/DisplayP3.icm";
const double kP3[4][2] = {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}};

// Why the Argyll cases cannot run here, or "" when they can.
std::string argyllMissing() {
  if (std::system("command -v fakeread > /dev/null 2>&1") != 0)
    return "ArgyllCMS's fakeread is not installed (scripts/install-deps.sh installs argyll)";
  if (access(kP3Profile, R_OK) != 0) return std::string("no ") + kP3Profile + " in this ArgyllCMS";
  return "";
}

class ColorimeterFiles : public pctest::ToolRunner {
 protected:
  void put(const std::string& name, const std::string& text) { std::ofstream(dir + "/" + name) << text; }
  bool exists(const std::string& name) const { return access((dir + "/" + name).c_str(), F_OK) == 0; }
  pctool::CgatsTable table(const std::string& name) {
    pctool::CgatsFile f;
    std::string err;
    EXPECT_TRUE(pctool::readCgatsFile(dir + "/" + name, &f, &err)) << err;
    return f.tables.empty() ? pctool::CgatsTable{} : f.tables[0];
  }
  // `base`.ti1 measured through the P3 profile into `base`.ti3.
  void fakeread(const std::string& base) {
    const std::string cmd = "cd '" + dir + "' && fakeread " + kP3Profile + " " + base + " > /dev/null 2>&1";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << "fakeread refused " << base << ".ti1";
  }
  // The panel (Argyll's P3 display) read through our patch set into panel.odf; an identity
  // table and the sRGB target beside it.
  void measureP3Panel() {
    identityAndTarget();
    ASSERT_EQ(run("odf patches --ti1 panel.ti1").status, 0);
    fakeread("panel");
    ASSERT_EQ(run("odf write panel.odf --ti3 panel.ti3").status, 0);
  }
  void readPanelAndTarget(pctool::OpticalDataFile& odf, pctool::TargetParm& target) {
    std::string err;
    pctool::OdfCheck check;
    int count = 0;
    ASSERT_TRUE(pctool::readOdfFile(dir + "/panel.odf", odf, check, err)) << err;
    ASSERT_TRUE(pctool::readTargetFile(dir + "/srgb.txt", target, count, err)) << err;
  }
  // An identity table and an sRGB target, gamma 2.2.
  void identityAndTarget() {
    std::string cube = "LUT_3D_SIZE 17\n";
    for (int b = 0; b < 17; ++b)
      for (int g = 0; g < 17; ++g)
        for (int r = 0; r < 17; ++r)
          cube += std::to_string(r / 16.0) + " " + std::to_string(g / 16.0) + " " + std::to_string(b / 16.0) + "\n";
    put("identity.cube", cube);
    put("srgb.txt", "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.3290 0.454545\n");
  }
  // A .ti3 as an sRGB display at 400 cd/m2 would give for `patches`, absolute or not.
  void sRgbReadings(const std::string& name, const std::vector<pctool::Patch>& patches, bool absolute) {
    pctool::CgatsTable t = pctool::ti1Table(patches, "readings");
    t.identifier = "CTI3";
    if (absolute) t.keywords.push_back({"LUMINANCE_XYZ_CDM2", "380.19 400 435.53"});
    put(name, pctool::formatCgats(t));
  }
};

TEST_F(ColorimeterFiles, PatchSetsAreCgatsTi1Files) {
  ASSERT_TRUE(haveTool());
  ASSERT_EQ(run("odf patches --ti1 odf.ti1").status, 0);
  pctool::CgatsTable t = table("odf.ti1");
  EXPECT_EQ(t.identifier, "CTI1");
  EXPECT_EQ(*t.keyword("COLOR_REP"), "RGB");
  ASSERT_EQ(t.rows.size(), 11u);
  EXPECT_EQ(t.rows[4][1], "87.5214");  // level 3584
  EXPECT_EQ(t.rows[10][3], "12.5031");  // level 512

  ASSERT_EQ(run("verify --patches-ti1 verify.ti1").status, 0);
  t = table("verify.ti1");
  // 21 reference colours and 17 grey levels, 9 of them among the colours.
  ASSERT_EQ(t.rows.size(), 29u);
  EXPECT_EQ(t.rows.back()[1], "94.1176");  // grey 240

  ToolRun r = run("odf patches --ti1 no/such/folder/x.ti1");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("no/such/folder/x.ti1: cannot create"), std::string::npos) << r.err;
  EXPECT_EQ(run("odf patches odf.ti1").status, 2);
  EXPECT_EQ(run("verify --patches-ti1").status, 2);
}

TEST_F(ColorimeterFiles, OdfFromAbsoluteReadingsIsInCandelas) {
  ASSERT_TRUE(haveTool());
  sRgbReadings("abs.ti3", pctool::odfPatches(), true);
  ToolRun r = run("odf write abs.odf --ti3 abs.ti3");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  r = run("odf print abs.odf");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("white  X   380.1880  Y   400.0000"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("x 0.6400  y 0.3300"), std::string::npos) << r.out;

  sRgbReadings("rel.ti3", pctool::odfPatches(), false);
  r = run("odf write rel.odf --ti3 rel.ti3");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err,
            "panelcorvane odf: rel.ti3: warning: no LUMINANCE_XYZ_CDM2 in the header: the XYZ values are taken as "
            "they are, not scaled to cd/m2\n");
}

TEST_F(ColorimeterFiles, UnusableReadingsWriteNothing) {
  ASSERT_TRUE(haveTool());
  std::vector<pctool::Patch> patches = pctool::odfPatches();
  patches.pop_back();
  sRgbReadings("short.ti3", patches, true);
  ToolRun r = run("odf write x.odf --ti3 short.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err,
            "panelcorvane odf: short.ti3:1: no reading of grey 512 (RGB 12.5 12.5 12.5 %, within 0.5 %); x.odf not "
            "written\n");
  EXPECT_FALSE(exists("x.odf"));

  // Green read as red: no panel has coinciding primaries.
  pctool::CgatsTable t = pctool::ti1Table(pctool::odfPatches(), "readings");
  t.identifier = "CTI3";
  for (int k = 4; k < 7; ++k) t.rows[2][k] = t.rows[1][k];
  put("same.ti3", pctool::formatCgats(t));
  r = run("odf write x.odf --ti3 same.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("impossible"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("x.odf not written"), std::string::npos) << r.err;
  EXPECT_FALSE(exists("x.odf"));

  put("bad.ti3", "CTI3\nBEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\n1 2\n");
  r = run("odf write x.odf --ti3 bad.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane odf: bad.ti3:6: row has 2 values, the data format names 6 fields\n");
  r = run("odf write x.odf --ti3 missing.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane odf: missing.ti3: no such file\n");
  EXPECT_FALSE(exists("x.odf"));
}

TEST_F(ColorimeterFiles, MeasuredVerificationNeedsItsInputs) {
  ASSERT_TRUE(haveTool());
  identityAndTarget();
  sRgbReadings("panel.ti3", pctool::odfPatches(), true);
  ASSERT_EQ(run("odf write panel.odf --ti3 panel.ti3").status, 0);
  sRgbReadings("post.ti3", pctool::verifyPatches(), false);
  EXPECT_EQ(run("verify identity.cube --target srgb.txt --measured post.ti3").status, 2);
  ToolRun usage = run("verify identity.cube --measured post.ti3");
  EXPECT_EQ(usage.status, 2);
  EXPECT_EQ(usage.err, "panelcorvane verify: --measured needs --odf and --target\n");

  // An sRGB panel shown the sRGB target through an identity table: nothing to correct.
  ToolRun r = run("verify identity.cube --odf panel.odf --target srgb.txt --measured post.ti3 --json");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("\"measured\":{\"white_Y\":100.0000,\"absolute\":false"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\"name\":\"dark blue\",\"rgb\":[0,0,128]"), std::string::npos);

  // The page beside the text: written where cairo is built in, refused with the reason elsewhere.
  EXPECT_EQ(run("verify identity.cube --png page.png").status, 2);
  r = run("verify identity.cube --odf panel.odf --target srgb.txt --measured post.ti3 --png page.png");
  if (pctool::verifyPageSupported()) {
    ASSERT_EQ(r.status, 0) << r.err;
    std::ifstream png(dir + "/page.png", std::ios::binary);
    char sig[8] = {};
    png.read(sig, 8);
    EXPECT_EQ(std::string(sig + 1, 3), "PNG");
  } else {
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("without cairo"), std::string::npos) << r.err;
  }

  std::vector<pctool::Patch> patches = pctool::verifyPatches();
  patches.erase(patches.begin() + 5);  // grey 96
  sRgbReadings("short.ti3", patches, false);
  r = run("verify identity.cube --odf panel.odf --target srgb.txt --measured short.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane verify: short.ti3:1: no reading of grey 96 (RGB 37.65 37.65 37.65 %, within 0.5 %)\n");
}

TEST_F(ColorimeterFiles, ArgyllReadsOurPatchesAndWeReadItsReadings) {
  const std::string why = argyllMissing();
  if (!why.empty()) GTEST_SKIP() << why;
  ASSERT_TRUE(haveTool());
  ASSERT_EQ(run("odf patches --ti1 panel.ti1").status, 0);
  fakeread("panel");
  ToolRun r = run("odf write panel.odf --ti3 panel.ti3");
  ASSERT_EQ(r.status, 0) << r.err;

  pctool::OpticalDataFile odf;
  pctool::OdfCheck check;
  std::string err;
  ASSERT_TRUE(pctool::readOdfFile(dir + "/panel.odf", odf, check, err)) << err;
  pctool::OdfValues values;
  std::copy(std::begin(odf.values), std::end(odf.values), values.v);
  const pctool::OdfMeasurements m = pctool::measurementsOf(values);
  const double* xyz[4] = {m.red, m.green, m.blue, m.white};
  for (int k = 0; k < 4; ++k) {
    const double sum = xyz[k][0] + xyz[k][1] + xyz[k][2];
    EXPECT_NEAR(xyz[k][0] / sum, kP3[k][0], 0.002) << "primary " << k;
    EXPECT_NEAR(xyz[k][1] / sum, kP3[k][1], 0.002) << "primary " << k;
  }
  // The profile's tone curve is sRGB's: level 2048 (50 %) shows 21.4 % of white.
  EXPECT_NEAR(m.greyY[3] / m.white[1], 0.214, 0.003);
}

TEST_F(ColorimeterFiles, MeasuredErrorOfAnArgyllPanelMatchesThePrediction) {
  const std::string why = argyllMissing();
  if (!why.empty()) GTEST_SKIP() << why;
  ASSERT_TRUE(haveTool());
  ASSERT_NO_FATAL_FAILURE(measureP3Panel());
  ASSERT_EQ(run("verify --patches-ti1 post.ti1").status, 0);
  fakeread("post");
  ToolRun r = run("verify identity.cube --odf panel.odf --target srgb.txt --measured post.ti3");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("measured error of the calibrated panel against the target (CIEDE2000, post.ti3"),
            std::string::npos)
      << r.out;

  // The same figures from the library: a P3 panel showing sRGB content unconverted is off by
  // several units in saturated colours, and the model built from its .odf predicts that.
  std::vector<pctool::LoadedTable> tables;
  std::string err;
  ASSERT_TRUE(pctool::loadTables(dir + "/identity.cube", tables, err)) << err;
  pctool::OpticalDataFile odf;
  pctool::TargetParm target{};
  ASSERT_NO_FATAL_FAILURE(readPanelAndTarget(odf, target));
  pctool::Prediction p;
  ASSERT_TRUE(pctool::predict(*tables[0].lut, odf, target, p, err)) << err;
  pctool::Measurements readings;
  ASSERT_TRUE(pctool::readMeasurements(dir + "/post.ti3", &readings, &err)) << err;
  pctool::MeasuredCheck measured;
  ASSERT_TRUE(pctool::checkMeasured(readings, target, &measured, &err)) << err;
  pctool::addPredicted(p, &measured);
  ASSERT_EQ(measured.reference.size(), 21u);
  EXPECT_GT(measured.referenceSummary.max, 4);
  for (const auto& c : measured.reference) EXPECT_NEAR(c.de, c.predictedDe, 0.1) << c.name;
  // Below level 32 the model's curve through the .odf's grey levels leaves the profile's.
  for (const auto& c : measured.grey) {
    if (c.rgb[0] < 32) continue;
    EXPECT_NEAR(c.de, c.predictedDe, 0.3) << c.name;
  }
}

// The whole loop an engineer runs: the panel read through our patch set, its table made from
// those readings by the plugin's generation, the verification patches driven through that
// table and read again. Argyll's P3 display stands in for the panel.
TEST_F(ColorimeterFiles, AnArgyllPanelCalibratedFromItsOwnReadingsMeetsTheTarget) {
  const std::string why = argyllMissing();
  if (!why.empty()) GTEST_SKIP() << why;
  ASSERT_TRUE(haveTool());
  ASSERT_NO_FATAL_FAILURE(measureP3Panel());

  std::string err;
  pctool::OpticalDataFile odf;
  pctool::TargetParm target{};
  ASSERT_NO_FATAL_FAILURE(readPanelAndTarget(odf, target));
  auto lut = std::make_unique<postblend::lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  postblend::fe::generateLut3D(odf, target, {}, *lut);
  ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/srgb.cube", *lut, "sRGB on this panel", err)) << err;

  // Drive values through the table as the hardware applies it; the readings then go back under
  // the patches' own RGB, as a colorimeter run with the table loaded would file them.
  ASSERT_EQ(run("verify --patches-ti1 post.ti1").status, 0);
  const pctool::CgatsTable patches = table("post.ti1");
  pctool::CgatsTable drive = patches;
  const int rgb[3] = {drive.field("RGB_R"), drive.field("RGB_G"), drive.field("RGB_B")};
  ASSERT_GE(std::min({rgb[0], rgb[1], rgb[2]}), 0);
  for (auto& row : drive.rows) {
    pctool::Rgb in{std::stod(row[rgb[0]]) / 100, std::stod(row[rgb[1]]) / 100, std::stod(row[rgb[2]]) / 100};
    pctool::Rgb out = pctool::sampleLut(*lut, in, pctool::Interp::Trilinear, pctool::NodeGrid::Device);
    const double codes[3] = {out.r, out.g, out.b};
    for (int c = 0; c < 3; ++c) row[rgb[c]] = std::to_string(codes[c] / 4095.0 * 100);
  }
  put("drive.ti1", pctool::formatCgats(drive));
  fakeread("drive");
  pctool::CgatsTable readings = table("drive.ti3");
  ASSERT_EQ(readings.rows.size(), patches.rows.size());
  for (size_t i = 0; i < readings.rows.size(); ++i)
    for (int c = 0; c < 3; ++c) readings.rows[i][readings.field(drive.fields[rgb[c]])] = patches.rows[i][rgb[c]];
  put("post.ti3", pctool::formatCgats(readings));

  ToolRun r = run("verify srgb.cube --odf panel.odf --target srgb.txt --measured post.ti3 --json");
  ASSERT_EQ(r.status, 0) << r.err;
  pctool::Measurements m;
  ASSERT_TRUE(pctool::readMeasurements(dir + "/post.ti3", &m, &err)) << err;
  pctool::MeasuredCheck measured;
  ASSERT_TRUE(pctool::checkMeasured(m, target, &measured, &err)) << err;
  pctool::Prediction p;
  ASSERT_TRUE(pctool::predict(*lut, odf, target, p, err)) << err;
  pctool::addPredicted(p, &measured);
  // Uncalibrated, this panel is off by up to 6.8 in saturated colours (the test above).
  EXPECT_LT(measured.referenceSummary.max, 2.5);
  EXPECT_LT(measured.referenceSummary.mean, 1.0);
  // The model's tone curve is weakest in dark colours (dark red: 0.8 predicted, 0.2 measured).
  for (const auto& c : measured.reference) EXPECT_NEAR(c.de, c.predictedDe, 0.8) << c.name;
  printf("calibrated: reference mean %.2f max %.2f, grey mean %.2f max %.2f\n", measured.referenceSummary.mean,
         measured.referenceSummary.max, measured.greySummary.mean, measured.greySummary.max);
}

}  // namespace
