#include <gtest/gtest.h>

#include <string>

#include "tools/lib/measurements/Cgats.h"
#include "tools/lib/measurements/MeasuredPatches.h"
#include "tools/lib/measurements/OdfFromMeasurements.h"
#include "tools/lib/measurements/PatchSets.h"

namespace {

using pctool::CgatsFile;
using pctool::CgatsTable;

// As dispread writes a .ti3 of an absolute measurement, with a calibration table after it.
const char kDispread[] =
    "CTI3   \n\n"
    "DESCRIPTOR \"Argyll Calibration Target chart information 3\"\n"
    "ORIGINATOR \"Argyll dispread\"  # the tool\n"
    "KEYWORD \"LUMINANCE_XYZ_CDM2\"\n"
    "LUMINANCE_XYZ_CDM2 \"380.1 400.0 435.6\"\n"
    "COLOR_REP \"RGB_XYZ\"\n\n"
    "NUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z \nEND_DATA_FORMAT\n\n"
    "NUMBER_OF_SETS 3\nBEGIN_DATA\n"
    "1 100 100 100 95.03 100 108.9\n"
    "2 100 0.00000 0.00000 48.6 22.9 -0.0004\n"
    "3 100 100 100 95.05 100 108.7\n"
    "END_DATA\n"
    "CAL    \n\nDESCRIPTOR \"Argyll Device Calibration State\"\n"
    "NUMBER_OF_FIELDS 4\nBEGIN_DATA_FORMAT\nRGB_I RGB_R RGB_G RGB_B\nEND_DATA_FORMAT\n"
    "NUMBER_OF_SETS 2\nBEGIN_DATA\n0 0 0 0\n1 1 1 1\nEND_DATA\n";

bool parse(const std::string& text, CgatsFile* f, std::string* err) { return pctool::parseCgats(text, "m.ti3", f, err); }

// The error a malformed file gives.
std::string errorOf(const std::string& text) {
  CgatsFile f;
  std::string err;
  EXPECT_FALSE(parse(text, &f, &err)) << text;
  return err;
}

TEST(Cgats, ReadsAnArgyllFileWithSeveralTables) {
  CgatsFile f;
  std::string err;
  ASSERT_TRUE(parse(kDispread, &f, &err)) << err;
  ASSERT_EQ(f.tables.size(), 2u);
  const CgatsTable& t = f.tables[0];
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
  EXPECT_EQ(f.tables[1].identifier, "CAL");
  EXPECT_EQ(pctool::pickCgatsTable(f, "CAL"), &f.tables[1]);
  EXPECT_EQ(pctool::pickCgatsTable(f, "CTI1"), &f.tables[0]);
}

TEST(Cgats, WrittenTableReadsBackTheSame) {
  CgatsTable t = pctool::ti1Table(pctool::odfPatches(), "patches");
  const std::string text = pctool::formatCgats(t);
  CgatsFile f;
  std::string err;
  ASSERT_TRUE(parse(text, &f, &err)) << err;
  ASSERT_EQ(f.tables.size(), 1u);
  const CgatsTable& back = f.tables[0];
  EXPECT_EQ(back.identifier, "CTI1");
  EXPECT_EQ(back.keywords, t.keywords);
  EXPECT_EQ(back.fields, t.fields);
  EXPECT_EQ(back.rows, t.rows);
  EXPECT_EQ(*back.keyword("COLOR_REP"), "RGB");
  // 12-bit level 2048 drives 50.0122 %; white shows the sRGB white at Y = 100.
  EXPECT_EQ(back.rows[7][1], "50.0122");
  EXPECT_EQ(back.rows[0][5], "100");
}

TEST(Cgats, EachFaultNamesItsLine) {
  const std::string head = "CTI3\nNUMBER_OF_FIELDS 2\nBEGIN_DATA_FORMAT\nA B\nEND_DATA_FORMAT\n";
  EXPECT_EQ(errorOf(head + "NUMBER_OF_SETS 1\nBEGIN_DATA\n1 2 3\nEND_DATA\n"),
            "m.ti3:8: row has 3 values, the data format names 2 fields");
  EXPECT_EQ(errorOf(head + "NUMBER_OF_SETS 2\nBEGIN_DATA\n1 2\nEND_DATA\n"),
            "m.ti3:9: NUMBER_OF_SETS says 2, the table holds 1 rows");
  EXPECT_EQ(errorOf(head + "BEGIN_DATA\n1 2\n"), "m.ti3:7: no END_DATA before the end of the file");
  EXPECT_EQ(errorOf("CTI3\nNUMBER_OF_FIELDS 3\nBEGIN_DATA_FORMAT\nA B\nEND_DATA_FORMAT\n"),
            "m.ti3:5: NUMBER_OF_FIELDS says 3, the data format names 2");
  EXPECT_EQ(errorOf("CTI3\nBEGIN_DATA_FORMAT\nA B A\nEND_DATA_FORMAT\n"), "m.ti3:3: field 'A' named twice");
  EXPECT_EQ(errorOf("CTI3\nBEGIN_DATA_FORMAT\nA\n"), "m.ti3:3: no END_DATA_FORMAT before the end of the file");
  EXPECT_EQ(errorOf("CTI3\nDESCRIPTOR \"open\nBEGIN_DATA\n"), "m.ti3:2: a quoted string is not closed");
  EXPECT_EQ(errorOf("CTI3\nBEGIN_DATA\n1\nEND_DATA\n"), "m.ti3:2: BEGIN_DATA before BEGIN_DATA_FORMAT .. END_DATA_FORMAT");
  EXPECT_EQ(errorOf("CTI3\nNUMBER_OF_SETS many\n"), "m.ti3:2: NUMBER_OF_SETS needs a whole number up to 100000");
  EXPECT_EQ(errorOf("CTI3\nEND_DATA\n"), "m.ti3:2: END_DATA without its BEGIN");
  EXPECT_EQ(errorOf(head + "BEGIN_DATA\nEND_DATA\nCTI3\nORIGINATOR \"x\"\n"),
            "m.ti3:8: table has no BEGIN_DATA .. END_DATA");
  EXPECT_EQ(errorOf("# nothing but a comment\n\n"), "m.ti3:2: no CGATS table (BEGIN_DATA_FORMAT .. BEGIN_DATA .. END_DATA)");
  EXPECT_EQ(errorOf("CTI3\n" + std::string(5000, 'x') + "\n"), "m.ti3:2: line longer than 4096 characters");
  EXPECT_EQ(errorOf(std::string("CTI3\n\0\n", 7)), "m.ti3:0: binary data: not a CGATS text file");
}

TEST(Cgats, QuotedValuesAndFieldsOnTheFormatLine) {
  CgatsFile f;
  std::string err;
  ASSERT_TRUE(parse("BEGIN_DATA_FORMAT SAMPLE_NAME X END_DATA_FORMAT\nBEGIN_DATA\n\"A 1\" 2 # note\nEND_DATA\n", &f, &err))
      << err;
  EXPECT_EQ(f.tables[0].identifier, "");
  ASSERT_EQ(f.tables[0].rows.size(), 1u);
  EXPECT_EQ(f.tables[0].rows[0][0], "A 1");
  double v = 0;
  EXPECT_TRUE(pctool::cgatsNumber("-1.5e2", &v));
  EXPECT_EQ(v, -150);
  EXPECT_FALSE(pctool::cgatsNumber("1.5x", &v));
  EXPECT_FALSE(pctool::cgatsNumber("nan", &v));
  EXPECT_FALSE(pctool::cgatsNumber("", &v));
}

TEST(MeasuredPatches, AbsoluteReadingsScaleToCandelasAndRepeatsAverage) {
  CgatsFile f;
  std::string err;
  ASSERT_TRUE(parse(kDispread, &f, &err)) << err;
  pctool::Measurements m;
  ASSERT_TRUE(pctool::measurementsFromCgats(f, "m.ti3", &m, &err)) << err;
  EXPECT_TRUE(m.absolute);
  EXPECT_TRUE(m.warnings.empty());
  pctool::Xyz white;
  EXPECT_EQ(m.find({"white", {100, 100, 99.6}}, &white), 2);
  EXPECT_NEAR(white.X, 95.04 * 4, 1e-9);
  EXPECT_NEAR(white.Y, 400, 1e-9);
  EXPECT_EQ(m.find({"off", {100, 100, 99.4}}, &white), 0);
}

TEST(MeasuredPatches, RefusesFilesThatAreNotXyzReadings) {
  auto err = [](const std::string& text) {
    CgatsFile f;
    std::string e;
    pctool::Measurements m;
    EXPECT_TRUE(parse(text, &f, &e)) << e;
    EXPECT_FALSE(pctool::measurementsFromCgats(f, "m.ti3", &m, &e));
    return e;
  };
  EXPECT_EQ(err("CTI3\nBEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\nBEGIN_DATA\nEND_DATA\n"),
            "m.ti3:1: no XYZ_X field: the readings must be XYZ");
  EXPECT_EQ(err("CTI3\nBEGIN_DATA_FORMAT\nCMYK_C XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\nEND_DATA\n"),
            "m.ti3:1: no RGB_R field: not a measurement of RGB patches");
  const std::string format = "BEGIN_DATA_FORMAT\nRGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n";
  EXPECT_EQ(err("CTI3\n" + format + "BEGIN_DATA\n100 100 100 95 100 10x\nEND_DATA\n"),
            "m.ti3:6: XYZ_Z '10x' is not a number");
  EXPECT_EQ(err("CTI3\nLUMINANCE_XYZ_CDM2 \"1 0 1\"\n" + format + "BEGIN_DATA\nEND_DATA\n"),
            "m.ti3:2: LUMINANCE_XYZ_CDM2 needs three numbers X Y Z with Y above 0");
}

TEST(MeasuredPatches, OdfNeedsEveryPatchAndForgivesNoiseBelowZero) {
  CgatsFile f;
  std::string err;
  ASSERT_TRUE(parse(kDispread, &f, &err)) << err;
  pctool::Measurements m;
  ASSERT_TRUE(pctool::measurementsFromCgats(f, "m.ti3", &m, &err)) << err;
  pctool::OdfValues v;
  std::vector<std::string> warnings;
  EXPECT_FALSE(pctool::odfFromMeasurements(m, &v, &warnings, &err));
  EXPECT_EQ(err, "m.ti3:1: no reading of green (RGB 0 100 0 %, within 0.5 %)");

  // Every patch read as a quarter of white, red's Z a little below zero.
  for (const auto& p : pctool::odfPatches())
    m.rows.push_back({{p.rgb[0], p.rgb[1], p.rgb[2]}, {10, 10, p.name == "red" ? -0.01 : 10}, 20});
  m.rows.erase(m.rows.begin(), m.rows.begin() + 3);
  ASSERT_TRUE(pctool::odfFromMeasurements(m, &v, &warnings, &err)) << err;
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_EQ(warnings[0], "1 XYZ value(s) slightly below zero (instrument noise) taken as 0");
  const pctool::OdfMeasurements back = pctool::measurementsOf(v);
  EXPECT_EQ(back.red[2], 0);
  EXPECT_EQ(back.white[1], 10);

  // Farther below zero is not noise: left for the plausibility checks to refuse.
  m.rows[1].xyz.Z = -1;
  warnings.clear();
  ASSERT_TRUE(pctool::odfFromMeasurements(m, &v, &warnings, &err));
  EXPECT_EQ(pctool::measurementsOf(v).red[2], -1);
}

}  // namespace
