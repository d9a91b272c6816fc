// The colorimeter's side of the workbench, run through the tool: patch sets out, readings in.
// ArgyllCMS's fakeread plays the instrument through a display profile, as dispread would.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <string>

#include "frontend/Lut3dGeneration.h"
#include "tests/tools/ToolRunner.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/measurements/PatchSets.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/LutApply.h"
#include "tools/lib/verify/Verify.h"
#include "tools/lib/verify/PanelProfile.h"
#include "tools/lib/verify/VerifyPage.h"

using pctest::ToolRun;

namespace {

using ::testing::HasSubstr;

// Display P3: its primaries and D65 white, as the profile Argyll ships declares them.
const char kP3Profile[] = "/usr/share/color/argyll/ref/DisplayP3.icm";
const double kP3[4][2] = {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}};

class Colorimeter : public pctest::ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    root.write("/srgb.txt", "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.3290 0.454545\n");
    std::string err;
    ASSERT_TRUE(pctool::CubeFile::writeFile(dir + "/identity.cube", pctest::identityTables(1)[0], "id", err)) << err;
  }
  void argyllOrSkip() {
    if (!pctest::haveProgram("fakeread")) GTEST_SKIP() << "ArgyllCMS's fakeread is not installed";
    if (access(kP3Profile, R_OK) != 0) GTEST_SKIP() << "no " << kP3Profile << " in this ArgyllCMS";
  }
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
  // A .ti3 as an sRGB display at 400 cd/m2 would give for `patches`, absolute or not.
  void sRgbReadings(const std::string& name, const std::vector<pctool::Patch>& patches, bool absolute) {
    pctool::CgatsTable t = pctool::ti1Table(patches, "readings");
    t.identifier = "CTI3";
    t.keywords.push_back({"DEVICE_CLASS", "DISPLAY"});
    if (absolute) t.keywords.push_back({"LUMINANCE_XYZ_CDM2", "380.19 400 435.53"});
    root.write("/" + name, pctool::formatCgats(t));
  }
  // The panel's .odf and the target as the library reads them.
  void readPanel() {
    std::string err;
    pctool::OdfCheck check;
    int count = 0;
    ASSERT_TRUE(pctool::readOdfFile(dir + "/panel.odf", odf, check, err)) << err;
    ASSERT_TRUE(pctool::readTargetFile(dir + "/srgb.txt", target, count, err)) << err;
  }
  // The measured CIEDE2000 of post.ti3 beside the prediction for `lut`.
  pctool::MeasuredCheck measuredAndPredicted(const postblend::lut3d_info& lut) {
    pctool::Measurements m;
    pctool::MeasuredCheck measured;
    pctool::Prediction p;
    std::string err;
    EXPECT_TRUE(pctool::readMeasurements(dir + "/post.ti3", &m, &err)) << err;
    EXPECT_TRUE(pctool::checkMeasured(m, target, &measured, &err)) << err;
    EXPECT_TRUE(pctool::predict(lut, odf, target, p, err)) << err;
    pctool::addPredicted(p, &measured);
    return measured;
  }
  pctool::OpticalDataFile odf{};
  pctool::TargetParm target{};
};

TEST_F(Colorimeter, AnSrgbPanelReadAndVerifiedThroughTheTool) {
  ASSERT_EQ(run("odf patches --ti1 odf.ti1").status, 0);
  pctool::CgatsTable t = table("odf.ti1");
  EXPECT_EQ(t.identifier, "CTI1");
  ASSERT_EQ(t.rows.size(), 15u);        // black and three near-black levels after the eleven
  EXPECT_EQ(t.rows[4][1], "87.5214");   // 12-bit level 3584
  EXPECT_EQ(t.rows[10][3], "12.5031");  // level 512
  EXPECT_EQ(t.rows[14][3], "1.56288");  // level 64
  ASSERT_EQ(run("verify --patches-ti1 verify.ti1").status, 0);
  t = table("verify.ti1");
  ASSERT_EQ(t.rows.size(), 32u);  // 21 reference colours, 17 grey levels (9 shared), 3 near black
  EXPECT_EQ(t.rows[28][1], "94.1176");  // 8-bit grey 240

  // Absolute readings are scaled back to cd/m2 (relative ones: a row of the command table).
  sRgbReadings("abs.ti3", pctool::odfPatches(), true);
  ToolRun w = run("odf write abs.odf --ti3 abs.ti3");
  ASSERT_EQ(w.err, "");
  EXPECT_THAT(w.out, HasSubstr("the panel model carries level 512's exponent (2.041) down to black; measured grey 256 "
                               "exponent 1.900"));
  ToolRun r = run("odf print abs.odf");
  EXPECT_THAT(r.out, HasSubstr("white  X   380.1880  Y   400.0000"));

  // An sRGB panel through an identity table against the sRGB target: nothing to correct.
  sRgbReadings("post.ti3", pctool::verifyPatches(), false);
  r = run("verify identity.cube --odf abs.odf --target srgb.txt --measured post.ti3 --json");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_THAT(r.out, HasSubstr("\"measured\":{\"white_Y\":100.0000,\"absolute\":false"));
  for (const char* key : {"\"name\":\"dark blue\",\"rgb\":[0,0,128]", "\"reference_summary\":{", "\"p95\":",
                          "\"white\":{\"without_table\":{\"Y\":400.0000", "\"near_black\":[{\"name\":\"grey 4\""})
    EXPECT_THAT(r.out, HasSubstr(key));
  r = run("verify identity.cube --odf abs.odf --target srgb.txt --measured post.ti3 --png page.png");
  if (pctool::verifyPageSupported()) {
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(root.read("/page.png").substr(1, 3), "PNG");
  } else {
    EXPECT_EQ(r.status, 1);
    EXPECT_THAT(r.err, HasSubstr("without cairo"));
  }
  std::vector<pctool::Patch> patches = pctool::verifyPatches();
  patches.erase(patches.begin() + 5);  // grey 96
  sRgbReadings("post.ti3", patches, false);
  r = run("verify identity.cube --odf abs.odf --target srgb.txt --measured post.ti3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "panelcorvane verify: post.ti3:1: no reading of grey 96 (RGB 37.6471 37.6471 37.6471 %)\n");

  // The engineer's own chart: five patches, reported each and in aggregate; readings of another
  // set are refused by row.
  const std::vector<pctool::Patch> chart = {pctool::writtenPatch("W", 100, 100, 100), pctool::writtenPatch("R", 100, 0, 0),
                                            pctool::writtenPatch("G50", 0, 50, 0), pctool::writtenPatch("K", 0, 0, 0),
                                            pctool::writtenPatch("M", 33.3, 33.3, 33.3)};
  root.write("/chart.ti1", pctool::formatCgats(pctool::ti1Table(chart, "chart")));
  sRgbReadings("chart.ti3", chart, true);
  r = run("verify identity.cube --odf abs.odf --target srgb.txt --measured chart.ti3 --chart chart.ti1");
  ASSERT_EQ(r.status, 0) << r.err;
  for (const char* says : {"chart: 5 patches, mean 0.13, 95th percentile 0.35, max 0.35", "white: Y 400.00 cd/m2, x 0.3127 y "
                           "0.3290, 6505 K, duv +0.0033", "black: Y 0 (below the instrument's floor)", "RGB 33.3 33.3 33.3 %"})
    EXPECT_THAT(r.out, HasSubstr(says));
  r = run("verify identity.cube --odf abs.odf --target srgb.txt --measured post.ti3 --chart chart.ti1");
  EXPECT_THAT(r.err, HasSubstr("reads none of the chart chart.ti1"));
}

// The panel's ICC profile, and the calibrated panel's, give the panel's readings back through
// Little CMS's transicc within 0.2 % of white's luminance; ArgyllCMS reads them too.
TEST_F(Colorimeter, ProfilesGiveTheReadingsBack) {
  if (!pctool::iccSupported() || !pctest::haveProgram("transicc")) GTEST_SKIP() << "no Little CMS or no transicc";
  sRgbReadings("abs.ti3", pctool::odfPatches(), true);
  ASSERT_EQ(run("odf write abs.odf --ti3 abs.ti3").status, 0);
  ASSERT_EQ(run("odf icc abs.odf panel.icc").status, 0);
  ASSERT_EQ(run("verify identity.cube --odf abs.odf --target srgb.txt --icc calibrated.icc").status, 0);
  // sRGB's primaries adapted to the D50 of the profile connection space, and the grey level 3584.
  const double expected[4][3] = {{43.607, 22.250, 1.393}, {38.515, 71.687, 9.708}, {14.307, 6.061, 71.410},
                                 {71.277, 73.925, 60.981}};
  for (const char* icc : {"panel.icc", "calibrated.icc"}) {
    const std::string cmd = "cd '" + dir + "' && printf '255 0 0\\n0 255 0\\n0 0 255\\n223.214 223.214 223.214\\n' | transicc -n -i " +
                            icc + " -o '*XYZ' > xyz.txt 2>/dev/null";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << icc;
    std::istringstream xyz(root.read("/xyz.txt"));
    for (const auto& e : expected)
      for (double v : e) {
        double got = NAN;
        xyz >> got;
        EXPECT_NEAR(got, v, 0.2) << icc;
      }
  }
  if (pctest::haveProgram("iccdump")) {
    ASSERT_EQ(std::system(("iccdump -v3 -t lumi '" + dir + "/panel.icc' > '" + dir + "/lumi.txt'").c_str()), 0);
    EXPECT_THAT(root.read("/lumi.txt"), HasSubstr("0.00000000, 400.00000000, 0.00000000"));
  }
}

// The whole loop, Argyll's P3 display as the panel: read through our patches, its table generated
// by the plugin from those readings, the verification patches driven through it and read again.
TEST_F(Colorimeter, AnArgyllPanelCalibratedFromItsOwnReadingsMeetsTheTarget) {
  argyllOrSkip();
  ASSERT_EQ(run("odf patches --ti1 panel.ti1").status, 0);
  ASSERT_NO_FATAL_FAILURE(fakeread("panel"));
  ASSERT_EQ(run("odf write panel.odf --ti3 panel.ti3").status, 0);
  ASSERT_NO_FATAL_FAILURE(readPanel());
  pctool::OdfValues values;
  std::copy(std::begin(odf.values), std::end(odf.values), values.v);
  const pctool::OdfMeasurements m = pctool::measurementsOf(values);
  const double* xyz[4] = {m.red, m.green, m.blue, m.white};
  for (int k = 0; k < 4; ++k) {
    const double sum = xyz[k][0] + xyz[k][1] + xyz[k][2];
    EXPECT_NEAR(xyz[k][0] / sum, kP3[k][0], 0.002) << "primary " << k;
    EXPECT_NEAR(xyz[k][1] / sum, kP3[k][1], 0.002) << "primary " << k;
  }
  EXPECT_NEAR(m.greyY[3] / m.white[1], 0.214, 0.003);  // sRGB's curve: level 2048 shows 21.4 %

  ASSERT_EQ(run("verify --patches-ti1 post.ti1").status, 0);
  ASSERT_NO_FATAL_FAILURE(fakeread("post"));
  ToolRun r = run("verify identity.cube --odf panel.odf --target srgb.txt --measured post.ti3");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_THAT(r.out, HasSubstr("measured error of the calibrated panel against the target (CIEDE2000, post.ti3"));
  // A P3 panel showing sRGB content unconverted is off by several units in saturated colours.
  pctool::MeasuredCheck measured = measuredAndPredicted(pctest::identityTables(1)[0]);
  ASSERT_EQ(measured.reference.size(), 21u);
  EXPECT_GT(measured.referenceSummary.max, 4);
  for (const auto& c : measured.reference) EXPECT_NEAR(c.de, c.predictedDe, 0.1) << c.name;
  // Below level 32 the model's curve through the .odf's grey levels leaves the profile's.
  for (const auto& c : measured.grey) {
    if (c.rgb[0] >= 32) {
      EXPECT_NEAR(c.de, c.predictedDe, 0.3) << c.name;
    }
  }

  auto lut = std::make_unique<postblend::lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  postblend::fe::generateLut3D(odf, target, {}, *lut);

  // Drive values through the table; the readings go back under the patches' own RGB.
  const pctool::CgatsTable patches = table("post.ti1");
  pctool::CgatsTable drive = patches;
  const int rgb[3] = {drive.field("RGB_R"), drive.field("RGB_G"), drive.field("RGB_B")};
  for (auto& row : drive.rows) {
    const pctool::Rgb in{std::stod(row[rgb[0]]) / 100, std::stod(row[rgb[1]]) / 100, std::stod(row[rgb[2]]) / 100};
    const pctool::Rgb out = pctool::sampleLut(*lut, in, pctool::Interp::Trilinear, pctool::NodeGrid::Device);
    const double codes[3] = {out.r, out.g, out.b};
    for (int c = 0; c < 3; ++c) row[rgb[c]] = std::to_string(codes[c] / 4095.0 * 100);
  }
  root.write("/drive.ti1", pctool::formatCgats(drive));
  ASSERT_NO_FATAL_FAILURE(fakeread("drive"));
  pctool::CgatsTable readings = table("drive.ti3");
  ASSERT_EQ(readings.rows.size(), patches.rows.size());
  for (size_t i = 0; i < readings.rows.size(); ++i)
    for (int c = 0; c < 3; ++c) readings.rows[i][readings.field(drive.fields[rgb[c]])] = patches.rows[i][rgb[c]];
  root.write("/post.ti3", pctool::formatCgats(readings));

  measured = measuredAndPredicted(*lut);  // uncalibrated: up to 6.8 in saturated colours
  EXPECT_LT(measured.referenceSummary.max, 2.5);
  EXPECT_LT(measured.referenceSummary.mean, 1.0);
  // The model's tone curve is weakest in dark colours (dark red: 0.8 predicted, 0.2 measured).
  for (const auto& c : measured.reference) EXPECT_NEAR(c.de, c.predictedDe, 0.8) << c.name;
}

}  // namespace
