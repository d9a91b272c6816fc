// CGATS text as ArgyllCMS writes it, read into tables, readings and an .odf.
#include "tools/lib/measurements/Cgats.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/measurements/MeasuredPatches.h"
#include "tools/lib/measurements/OdfFromMeasurements.h"
#include "tools/lib/measurements/PatchMatch.h"
#include "tools/lib/measurements/PatchSets.h"

namespace {

using pctool::CgatsFile;

bool parse(const std::string& text, CgatsFile* f, std::string* err) {
  return pctool::parseCgats(text, "m.ti3", f, err);
}

// dispread.ti3: absolute readings as dispread writes them, then a calibration table.
CgatsFile dispread() {
  CgatsFile f;
  std::string err;
  EXPECT_TRUE(pctool::readCgatsFile(pctest::dataPath("dispread.ti3"), &f, &err)) << err;
  return f;
}

TEST(Cgats, ReadsAnArgyllFileWithSeveralTables) {
  const CgatsFile f = dispread();
  ASSERT_EQ(f.tables.size(), 2u);
  const pctool::CgatsTable& t = f.tables[0];
  EXPECT_EQ(t.identifier, "CTI3");
  EXPECT_EQ(*t.keyword("ORIGINATOR"), "Argyll dispread");
  int line = 0;
  EXPECT_EQ(*t.keyword("LUMINANCE_XYZ_CDM2", &line), "380.1 400.0 435.6");
  EXPECT_EQ(line, 6);
  EXPECT_EQ(t.keyword("NO_SUCH"), nullptr);
  EXPECT_EQ(t.field("XYZ_Z"), 6);
  ASSERT_EQ(t.rows.size(), 3u);
  EXPECT_EQ(t.rows[1][6], "-0.0004");
  EXPECT_EQ(t.rowLines[1], 17);
  EXPECT_EQ(pctool::pickCgatsTable(f, "CAL"), &f.tables[1]);
  EXPECT_EQ(pctool::pickCgatsTable(f, "CTI1"), &f.tables[0]);

  // Quoted values keep their blanks; field names may share the format's lines.
  CgatsFile q;
  std::string err;
  ASSERT_TRUE(parse("BEGIN_DATA_FORMAT SAMPLE_NAME X END_DATA_FORMAT\nBEGIN_DATA\n\"A 1\" 2 # note\nEND_DATA\n", &q, &err));
  EXPECT_EQ(q.tables[0].identifier, "");
  EXPECT_EQ(q.tables[0].rows.at(0).at(0), "A 1");
}

TEST(Cgats, EachFaultNamesItsLine) {
  const std::string head = "CTI3\nNUMBER_OF_FIELDS 2\nBEGIN_DATA_FORMAT\nA B\nEND_DATA_FORMAT\n";
  const std::pair<std::string, std::string> cases[] = {
      {head + "NUMBER_OF_SETS 1\nBEGIN_DATA\n1 2 3\nEND_DATA\n", "8: row has 3 values, the data format names 2 fields"},
      {head + "NUMBER_OF_SETS 2\nBEGIN_DATA\n1 2\nEND_DATA\n", "9: NUMBER_OF_SETS says 2, the table holds 1 rows"},
      {head + "BEGIN_DATA\n1 2\n", "7: no END_DATA before the end of the file"},
      {"CTI3\nNUMBER_OF_FIELDS 3\nBEGIN_DATA_FORMAT\nA B\nEND_DATA_FORMAT\n",
       "5: NUMBER_OF_FIELDS says 3, the data format names 2"},
      {"CTI3\nBEGIN_DATA_FORMAT\nA B A\nEND_DATA_FORMAT\n", "3: field 'A' named twice"},
      {"CTI3\nBEGIN_DATA_FORMAT\nA\n", "3: no END_DATA_FORMAT before the end of the file"},
      {"CTI3\nDESCRIPTOR \"open\nBEGIN_DATA\n", "2: a quoted string is not closed"},
      {"CTI3\nBEGIN_DATA\n1\nEND_DATA\n", "2: BEGIN_DATA before BEGIN_DATA_FORMAT .. END_DATA_FORMAT"},
      {"CTI3\nNUMBER_OF_SETS many\n", "2: NUMBER_OF_SETS needs a whole number up to 100000"},
      {"CTI3\nEND_DATA\n", "2: END_DATA without its BEGIN"},
      {"CTI3\n\"quoted\" keyword\n", "2: a keyword line starts with a quoted string"},
      {head + "BEGIN_DATA\nEND_DATA\nCTI3\nORIGINATOR \"x\"\n", "8: table has no BEGIN_DATA .. END_DATA"},
      {"# nothing but a comment\n\n", "2: no CGATS table (BEGIN_DATA_FORMAT .. BEGIN_DATA .. END_DATA)"},
      {"CTI3\n" + std::string(5000, 'x') + "\n", "2: line longer than 4096 characters"},
      {std::string("CTI3\n\0\n", 7), "0: binary data: not a CGATS text file"},
  };
  for (const auto& [text, error] : cases) {
    CgatsFile f;
    std::string err;
    EXPECT_FALSE(parse(text, &f, &err)) << error;
    EXPECT_EQ(err, "m.ti3:" + error);
  }
  double v = 0;
  EXPECT_TRUE(pctool::cgatsNumber("-1.5e2", &v));
  EXPECT_EQ(v, -150);
  for (const char* notNumber : {"1.5x", "nan", ""}) EXPECT_FALSE(pctool::cgatsNumber(notNumber, &v)) << notNumber;
}

TEST(MeasuredPatches, AbsoluteReadingsScaleToCandelasAndRepeatsAverage) {
  pctool::Measurements m;
  std::string err;
  ASSERT_TRUE(pctool::measurementsFromCgats(dispread(), "m.ti3", &m, &err)) << err;
  EXPECT_TRUE(m.absolute);
  EXPECT_TRUE(m.warnings.empty());
  const std::vector<pctool::Patch> set = {pctool::writtenPatch("white", 100, 100, 100), pctool::writtenPatch("red", 100, 0, 0)};
  std::vector<pctool::PatchReading> r;
  ASSERT_TRUE(pctool::matchReadings(m, set, "s", &r, &err)) << err;
  EXPECT_EQ(r[0].readings, 2);
  EXPECT_NEAR(r[0].xyz.X, 95.04 * 4, 1e-9);
  EXPECT_NEAR(r[0].xyz.Y, 400, 1e-9);
  EXPECT_EQ(r[1].line, 17);
}

// Rows read a patch only at the precision written; the set must be the one asked for.
TEST(MeasuredPatches, ReadingsOfAnotherSetOrDisagreeingRepeatsAreRefusedByRow) {
  const std::vector<pctool::Patch> set = {pctool::writtenPatch("white", 100, 100, 100),
                                          pctool::writtenPatch("grey 3584", 87.5214, 87.5214, 87.5214)};
  const std::string white = "100 100 100 95 100 109\n";
  const std::pair<std::string, std::string> cases[] = {
      {white + "87.52 87.52 87.52 70 74 80\n", ""},  // a coarser file's own precision
      {white + "87.6 87.6 87.6 70 74 80\n", "m.ti3:7: not the readings of s: no reading of grey 3584 (RGB 87.5214 "
                                            "87.5214 87.5214 %), and line 7 (RGB 87.6 87.6 87.6 %) reads none of s"},
      {white + "87.5214 87.5214 87.5214 70 74 80\n87.8431 87.8431 87.8431 72 76 82\n",
       "m.ti3:8: line 8 (RGB 87.8431 87.8431 87.8431 %) reads none of s"},
      {white + "87.5214 87.5214 87.5214 70 74 80\n100 100 100 47 50 54\n",
       "m.ti3:8: white read twice differently: XYZ 95 100 109 (line 6) and XYZ 47 50 54 (line 8) are 15.41 dE00 "
       "apart; repeats are averaged only within 1.0"},
  };
  for (const auto& [rows, error] : cases) {
    CgatsFile f;
    std::string err;
    ASSERT_TRUE(parse("CTI3\nBEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\n" + rows +
                          "END_DATA\n",
                      &f, &err))
        << err;
    pctool::Measurements m;
    ASSERT_TRUE(pctool::measurementsFromCgats(f, "m.ti3", &m, &err)) << err;
    std::vector<pctool::PatchReading> r;
    EXPECT_EQ(pctool::matchReadings(m, set, "s", &r, &err), error.empty()) << rows;
    if (!error.empty()) {
      EXPECT_EQ(err, error);
    }
  }
}

TEST(MeasuredPatches, RefusesFilesThatAreNotXyzReadings) {
  const std::string format = "BEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n";
  const std::pair<std::string, std::string> cases[] = {
      {"CTI3\nBEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\nBEGIN_DATA\nEND_DATA\n",
       "m.ti3:1: no XYZ_X field: the readings must be XYZ"},
      {"CTI3\nBEGIN_DATA_FORMAT\nCMYK_C XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\nEND_DATA\n",
       "m.ti3:1: no RGB_R field: not a measurement of RGB patches"},
      {"CTI3\n" + format + "BEGIN_DATA\n100 100 100 95 100 10x\nEND_DATA\n", "m.ti3:6: XYZ_Z '10x' is not a number"},
      {"CTI3\nLUMINANCE_XYZ_CDM2 \"1 0 1\"\n" + format + "BEGIN_DATA\nEND_DATA\n",
       "m.ti3:2: LUMINANCE_XYZ_CDM2 needs three numbers X Y Z with Y above 0"},
      {"CTI1\n" + format + "BEGIN_DATA\nEND_DATA\n",
       "m.ti3:1: CTI1: the patches' nominal values, not readings; readings are a .ti3 (CTI3)"},
      {"CTI3\nDEVICE_CLASS \"OUTPUT\"\n" + format + "BEGIN_DATA\nEND_DATA\n",
       "m.ti3:2: DEVICE_CLASS 'OUTPUT': readings of a display (DISPLAY) are needed"},
  };
  for (const auto& [text, error] : cases) {
    CgatsFile f;
    std::string err;
    pctool::Measurements m;
    ASSERT_TRUE(parse(text, &f, &err)) << err;
    EXPECT_FALSE(pctool::measurementsFromCgats(f, "m.ti3", &m, &err));
    EXPECT_EQ(err, error);
  }
}

TEST(MeasuredPatches, OdfNeedsEveryPatchAndForgivesNoiseBelowZero) {
  pctool::Measurements m;
  std::string err;
  ASSERT_TRUE(pctool::measurementsFromCgats(dispread(), "m.ti3", &m, &err)) << err;
  pctool::OdfValues v;
  std::vector<std::string> warnings;
  EXPECT_FALSE(pctool::odfFromMeasurements(m, &v, &warnings, &err));
  EXPECT_EQ(err, "m.ti3:1: no reading of green (RGB 0 100 0 %)");

  // Every patch read as a quarter of white, red's Z a little below zero.
  m.rows.clear();
  for (const auto& p : pctool::odfPatches())
    m.rows.push_back({{p.rgb[0], p.rgb[1], p.rgb[2]}, {0, 0, 0}, {10, 10, p.name == "red" ? -0.01 : 10}, 20});
  ASSERT_TRUE(pctool::odfFromMeasurements(m, &v, &warnings, &err)) << err;
  EXPECT_EQ(warnings, std::vector<std::string>{"1 XYZ value(s) slightly below zero (instrument noise) taken as 0"});
  EXPECT_EQ(pctool::measurementsOf(v).red[2], 0);
  EXPECT_EQ(pctool::measurementsOf(v).white[1], 10);
  // Farther below zero is not noise: left for the plausibility checks to refuse.
  m.rows[1].xyz.Z = -1;
  ASSERT_TRUE(pctool::odfFromMeasurements(m, &v, &warnings, &err));
  EXPECT_EQ(pctool::measurementsOf(v).red[2], -1);
  // A reading no float of the file can hold is refused by its line.
  m.rows[0].xyz.Y = 5e39;
  EXPECT_FALSE(pctool::odfFromMeasurements(m, &v, &warnings, &err));
  EXPECT_EQ(err, "m.ti3:20: white XYZ_Y 5e+39 cd/m2 does not fit a float of the optical data file");
}

}  // namespace
