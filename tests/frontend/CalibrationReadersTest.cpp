#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/Algorithm.h"
#include "frontend/OdfCheckReader.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"

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
}

TEST(OdfReader, AShortInputOverAConsistentRecordPassesItsCrcAsThePluginExpects) {
  const std::string good = odfImage();
  PanelCorvaneBase::OpticalDataFile odf{};
  postblend::readOdf(reinterpret_cast<const uint8_t*>(good.data()), good.size(), odf);
  const auto r = postblend::readOdf(reinterpret_cast<const uint8_t*>(good.data()), 100, odf);
  EXPECT_EQ(r.bytes, 100u);
  EXPECT_TRUE(r.crcOk()) << "the tail kept what the record held";
  EXPECT_EQ(r.diagnosis.problem, OdfProblem::Short);
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
      {"overflow", "1e99 " + nine, TargetProblem::Malformed,
       "line 1 malformed: '1e99' is not a number", 0},
      {"twenty-one", twenty + "12", TargetProblem::TooMany,
       "line 3 malformed: more than 20 numbers", 20},
      {"eight", "0.64 0.33 0.30 0.60 0.15 0.06 0.3127 0.329", TargetProblem::TooFew,
       "too short: 8 numbers, a target has 9 or 20", 8},
      {"chromaticity", "0.64 1.33 0.30 0.60 0.15 0.06 0.3127 0.329 0.4545",
       TargetProblem::OutOfRange, "not a target: red y = 1.330000 is outside 0..1", 9},
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

}  // namespace
