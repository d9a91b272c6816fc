#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "backend/LutTextFile.h"
#include "base/LutGrid.h"

using postblend::lut3d_info;
using postblend::LutTextFile;
using postblend::LutTextProblem;

namespace {

// The identity table on the device grid, one entry per line, from entry `from` on.
std::string gridText(uint32_t from = 0) {
  std::string s;
  for (uint32_t n = from; n < postblend::kLut3dEntries; ++n) {
    const uint32_t g = postblend::kLut3dGridSize;
    const std::string in = std::to_string(postblend::lutGridCode(n % g)) + " " +
                           std::to_string(postblend::lutGridCode(n / g % g)) + " " +
                           std::to_string(postblend::lutGridCode(n / (g * g)));
    s += in + " " + in + "\n";
  }
  return s;
}

TEST(LutTextFile, MalformedClassesWithTheValuesThePluginStillTakes) {
  const std::string grid = gridText();
  const std::string rest = gridText(1);
  const struct {
    const char* name;
    std::string text;
    LutTextProblem problem;
    uint32_t line;
    std::string message;
    int values;     // what the plugin's lenient reader takes
    uint32_t out0;  // entry 0's output red as taken
  } cases[] = {
      {"sound", grid, LutTextProblem::None, 0, "", 29478, 0},
      {"trailing numbers are ignored", grid + "7 8\n", LutTextProblem::None, 0, "", 29478, 0},
      {"letter glued to digits", "0 0 0 12a 0 0\n" + rest, LutTextProblem::Malformed, 1,
       "line 1 malformed: '12a' is not a 12-bit code", 4, 12},
      {"word", "0 0 0\n\nx3 0 0\n" + rest, LutTextProblem::Malformed, 3,
       "line 3 malformed: 'x3' is not a 12-bit code", 3, 0},
      {"sign", "0 0 0 +5 0 0\n" + rest, LutTextProblem::Malformed, 1,
       "line 1 malformed: '+5' is not a 12-bit code", 3, 0},
      {"above 4095 is taken as written", "0 0 0 5000 0 0\n" + rest, LutTextProblem::AboveRange, 1,
       "line 1 malformed: 5000 is above 4095", 29478, 5000},
      {"too large for 32 bits saturates", "0 0 0 99999999999 0 0\n" + rest,
       LutTextProblem::AboveRange, 1, "line 1 malformed: 99999999999 is above 4095", 29478,
       4294967295u},
      {"short", "0 0 0 1 1 1\n0 0", LutTextProblem::TooFew, 0, "not a LUT: 8 of 29478 numbers", 8,
       1},
      {"empty", "", LutTextProblem::TooFew, 0, "not a LUT: 0 of 29478 numbers", 0, 0},
      {"inputs off the grid", "0 0 1 0 0 0\n" + rest, LutTextProblem::OutOfOrder, 1,
       "entries out of order: entry 0 (line 1) has inputs 0 0 1, expected 0 0 0 (red fastest: "
       "entry n = 289 b + 17 g + r)",
       29478, 0},
  };
  for (const auto& c : cases) {
    auto lut = std::make_unique<lut3d_info>();
    lut->lut3d_id = 77;
    const auto r = LutTextFile::parse(c.text.data(), c.text.size(), lut.get());
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.line, c.line) << c.name;
    EXPECT_EQ(r.diagnosis.message, c.message) << c.name;
    EXPECT_EQ(r.values, c.values) << c.name;
    EXPECT_EQ(lut->entries[0].out[0], c.out0) << c.name;
    EXPECT_EQ(lut->lut3d_id, 77u) << c.name << ": the header is the caller's";
    if (c.values < LutTextFile::kValueCount) {
      EXPECT_EQ(lut->entries[4912].out[2], 0u) << c.name << ": what is not supplied is zero";
    }
  }
}

TEST(LutTextFile, NumbersAfterTheTableAreCountedAndAnOversizedTextIsCutAtTheLimit) {
  auto lut = std::make_unique<lut3d_info>();
  const std::string extra = gridText() + "1 2 3\n";
  EXPECT_EQ(LutTextFile::parse(extra.data(), extra.size(), lut.get()).tokens, 29481u);

  std::string huge = gridText();
  huge += std::string(LutTextFile::kMaxBytes, ' ') + "x";
  const auto r = LutTextFile::parse(huge.data(), huge.size(), lut.get());
  EXPECT_EQ(r.diagnosis.problem, LutTextProblem::TooLarge);
  EXPECT_EQ(r.diagnosis.message, "too large for a LUT text file (over 4 MiB)");
  EXPECT_EQ(r.values, LutTextFile::kValueCount);
}

}  // namespace
