#include <cstring>
#include <string>

#include "frontend/OdfCheckReader.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"
#include "tests/frontend/FeFixtures.h"

using postblend::OdfCheckProblem;
using postblend::OdfProblem;
using postblend::PanelCorvaneBase;
using postblend::TargetProblem;

namespace {

// 127 floats 0, 1, 2, ... and their CRC, little-endian.
std::string odfImage() {
  PanelCorvaneBase::OpticalDataFile odf{};
  for (int i = 0; i < 127; ++i) odf.values[i] = static_cast<float>(i);
  unsigned char covered[508];
  std::memcpy(covered, odf.values, sizeof covered);
  odf.crc = static_cast<uint16_t>(postblend::Algorithm::crc_cal_by_bit(covered, 508));
  return std::string(reinterpret_cast<const char*>(&odf), 510);
}

TEST(OdfReader, ShortAndCorruptImages) {
  const std::string good = odfImage();
  std::string flipped = good;
  flipped[37] ^= 0x04;
  const struct {
    const char* name;
    std::string data;
    OdfProblem problem;
    std::string message;  // without the CRC values, which the case computes
  } cases[] = {
      {"sound", good, OdfProblem::None, ""},
      {"longer: the rest is not looked at", good + "junk", OdfProblem::None, ""},
      {"empty", "", OdfProblem::Short, "0 bytes, an optical data file holds 510"},
      {"one byte short", good.substr(0, 509), OdfProblem::Short,
       "509 bytes, an optical data file holds 510"},
      {"a measurement bit flipped", flipped, OdfProblem::CrcMismatch, "CRC mismatch: stored "},
  };
  for (const auto& c : cases) {
    PanelCorvaneBase::OpticalDataFile odf{};
    const auto r = postblend::readOdf(reinterpret_cast<const uint8_t*>(c.data.data()),
                                            c.data.size(), odf);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.message.substr(0, c.message.size()), c.message) << c.name;
    EXPECT_EQ(r.crcOk(), c.problem == OdfProblem::None) << c.name;
  }
  // A short input over a record that was consistent keeps its tail, and so its CRC: the plugin
  // takes it.
  PanelCorvaneBase::OpticalDataFile odf{};
  postblend::readOdf(reinterpret_cast<const uint8_t*>(good.data()), good.size(), odf);
  const auto r = postblend::readOdf(reinterpret_cast<const uint8_t*>(good.data()), 100, odf);
  EXPECT_TRUE(r.crcOk() && r.bytes == 100u && r.diagnosis.problem == OdfProblem::Short);
}

TEST(TargetReader, MalformedClassesAndWhatTheLenientReadingKeeps) {
  const std::string nine = "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.329 0.4545";
  const std::string twenty = nine + "\n1 2 3 4 5 6 7 8 9 10 11\n";
  const struct {
    const char* name;
    std::string text;
    TargetProblem problem;
    std::string message;
    int count;  // numbers the plugin's extraction takes
  } cases[] = {
      {"nine", nine, TargetProblem::None, "", 9},
      {"twenty", twenty, TargetProblem::None, "", 20},
      {"word", "0.64 0.33\n0.30 x 0.15", TargetProblem::Malformed,
       "line 2 malformed: 'x' is not a number", 3},
      {"number glued to a sign", nine + "\n0.5-3", TargetProblem::Malformed,
       "line 2 malformed: '0.5-3' is not a number", 11},
      {"a word quoted to 40 characters", nine + " " + std::string(41, 'w'), TargetProblem::Malformed,
       "line 1 malformed: '" + std::string(40, 'w') + "' is not a number", 9},
      {"overflow", "1e99 " + nine, TargetProblem::Malformed,
       "line 1 malformed: '1e99' is not a number", 0},
      {"twenty-one", twenty + "12", TargetProblem::TooMany,
       "line 3 malformed: more than 20 numbers", 20},
      {"eight", "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.329", TargetProblem::TooFew,
       "too short: 8 numbers, a target has 9 or 20", 8},
      {"chromaticity", "0.64 1.33 0.30 0.60 0.15 0.06 0.3127 0.329 0.4545",
       TargetProblem::OutOfRange, "not a target: red y = 1.330000 is outside 0..1", 9},
      {"chromaticity zero", "0.64 0.33 0.30 0.60 0.15 0 0.3127 0.329 0.4545", TargetProblem::OutOfRange,
       "not a target: blue y = 0.000000 is outside 0..1", 9},
      {"exponent", "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.329 0", TargetProblem::OutOfRange,
       "not a target: exponent parameter 0.000000 is not positive", 9},
      {"oversized", nine + std::string(postblend::kMaxTargetBytes, ' ') + "1",
       TargetProblem::TooLarge, "too large for a target file (over 65536 bytes)", 9},
  };
  for (const auto& c : cases) {
    const auto r = postblend::readTarget(c.text);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.message, c.message) << c.name;
    EXPECT_EQ(r.count, c.count) << c.name;
  }
  const auto glued = postblend::readTarget(nine + "\n0.5-3");
  EXPECT_EQ(glued.values[9], 0.5f);
  EXPECT_EQ(glued.values[10], -3.0f) << "the extraction goes on after the glued sign";
}

TEST(OdfCheckReader, ConversionsAsTheCLibraryMakesThem) {
  std::string full;
  for (int i = 0; i < 32; ++i) full += std::to_string(i) + ".5 ";
  const struct {
    const char* name;
    std::string text;
    OdfCheckProblem problem;
    std::string message;
    int converted;
  } cases[] = {
      {"thirty-two", full, OdfCheckProblem::None, "", 32},
      {"empty", "", OdfCheckProblem::TooFew, "too short: 0 of 32 numbers", 0},
      {"three", "1 2\n3\n", OdfCheckProblem::TooFew, "too short: 3 of 32 numbers", 3},
      {"word", "1 2\n  abc 4", OdfCheckProblem::Malformed,
       "line 2 malformed: 'abc' is not a number", 2},
  };
  for (const auto& c : cases) {
    PanelCorvaneBase::ODFErrorCheck check{};
    check.values[31] = -7.0f;
    const auto r = postblend::readOdfCheck(c.text, check);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.message, c.message) << c.name;
    EXPECT_EQ(r.converted, c.converted) << c.name;
    EXPECT_EQ(check.values[31], c.converted == 32 ? 31.5f : -7.0f) << c.name;
  }
}

using OdfFiles = fetest::FeTest;
constexpr const char* kOdf = "/mnt/vendor/persist/display/Loading_ON_1_max.odf";

TEST(Crc, CheckValuesOfTheCcittFalseSet) {
  unsigned char digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(postblend::Algorithm::crc_cal_by_bit(digits, 9), 0x29B1u);
  EXPECT_EQ(postblend::Algorithm::crc_cal_by_bit(digits, 0), 0xFFFFu);
}

TEST_F(OdfFiles, SealedImageIsAcceptedAFlippedBitRejectedAndMissingFilesTold) {
  const std::string good = fetest::bytesOf(fetest::makeOdf(fetest::kPanel, 500, 2.2));
  root.write(kOdf, good + "trailing bytes are ignored");
  fetest::Odf odf{};
  ASSERT_EQ(fe.readODF(odf, kOdf), 0);
  EXPECT_EQ(std::memcmp(&odf, good.data(), 510), 0);
  std::string flipped = good;
  flipped[509] ^= 0x01;  // the stored CRC itself
  root.write(kOdf, flipped);
  EXPECT_EQ(fe.readODF(odf, kOdf), -1);
  root.remove(kOdf);
  EXPECT_EQ(fe.readODF(odf, kOdf), -1);
  EXPECT_TRUE(log.has("1-readODF: open " + std::string(kOdf) + " failed!"));
  root.write(kOdf, "");  // a fresh record: stored 0 against the CRC of 508 zero bytes
  fetest::Odf fresh{};
  EXPECT_EQ(fe.readODF(fresh, kOdf), -1);
}

TEST_F(OdfFiles, TargetNumbersDependOnGammaCorrectionAndStopAtBadOnes) {
  const char* path = "/odm/etc/PanelCorvane/t.txt";
  root.write(path, "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20\n");
  for (bool gc : {false, true}) {
    PanelCorvaneBase::sIsGammaCorrectionOn = gc;
    fetest::Target t;
    for (float& v : t.values) v = -1;
    ASSERT_EQ(fe.readTargetParm(t, path), 0);
    EXPECT_EQ(t.values[8], 9);
    EXPECT_EQ(t.values[19], gc ? 20 : -1);
  }
  root.write(path, "0.5 0.25 x 4 5");
  fetest::Target t;
  for (float& v : t.values) v = 7;
  EXPECT_EQ(fe.readTargetParm(t, path), 0);
  EXPECT_EQ(t.values[1], 0.25f);
  EXPECT_EQ(t.values[2] + t.values[3], 14);
  EXPECT_EQ(fe.readTargetParm(t, "/odm/etc/none.txt"), -1);
  EXPECT_TRUE(log.has("1-readTargetParm: read /odm/etc/none.txt failed"));
  PanelCorvaneBase::ODFErrorCheck check{};  // read without interpretation, failure or not
  check.values[31] = 5;
  EXPECT_EQ(fe.readODFCheck("/odm/etc/missing", &check), 0);
  root.write("/odm/etc/check.txt", "1.5 2.5\n-3");
  EXPECT_EQ(fe.readODFCheck("/odm/etc/check.txt", &check), 0);
  EXPECT_EQ(check.values[2], -3.0f);
  EXPECT_EQ(check.values[31], 5.0f);
}

}  // namespace
