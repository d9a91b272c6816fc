#include <gtest/gtest.h>

#include <string>

#include "config/PropertyReader.h"

using postblend::PropertyProblem;
using postblend::readProperties;

namespace {

TEST(PropertyReader, EachMalformedClassIsToldWithItsLineWhileTheLinesStillCount) {
  const struct {
    const char* name;
    std::string text;
    PropertyProblem problem;
    uint32_t line;
    std::string message;
    size_t accepted;
  } cases[] = {
      {"sound", "# c\n\nLogLevel=3\nA=1=2\n", PropertyProblem::None, 0, "", 2},
      {"no equals", "LogLevel=3\nGammaCorrection 1\nCMDebug=1\n", PropertyProblem::NoEquals, 2,
       "line 2: 'GammaCorrection 1' has no '=': skipped", 2},
      {"padded key", "LogLevel = 3\n", PropertyProblem::PaddedKey, 1,
       "line 1: key 'LogLevel ' has blanks around it, which are part of the key", 1},
      {"carriage return", "A=1\r\nB=2\r\n", PropertyProblem::CarriageReturn, 1,
       "line 1: value of 'A' ends in a carriage return (a file saved with CR LF)", 2},
      {"unterminated", "A=1\nLogLevel=7", PropertyProblem::Unterminated, 2,
       "line 2: no line feed at the end: 'LogLevel=7' is ignored", 1},
      {"first problem wins", "x\nLogLevel=7", PropertyProblem::NoEquals, 1,
       "line 1: 'x' has no '=': skipped", 0},
      {"control bytes quoted", std::string("a\0b\n", 4), PropertyProblem::NoEquals, 1,
       "line 1: 'a?b' has no '=': skipped", 0},
  };
  for (const auto& c : cases) {
    const auto r = readProperties(c.text);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.line, c.line) << c.name;
    EXPECT_EQ(r.diagnosis.message, c.message) << c.name;
    EXPECT_EQ(r.accepted.size(), c.accepted) << c.name;
  }
}

TEST(PropertyReader, OversizedTextIsReadUpToTheLimitOnly) {
  std::string text = "A=1\n";
  text += std::string(postblend::kMaxPropertyBytes, '#') + "\nB=2\n";
  const auto r = readProperties(text);
  EXPECT_EQ(r.diagnosis.problem, PropertyProblem::TooLarge);
  EXPECT_EQ(r.diagnosis.message, "larger than 1024 KiB: not a property file");
  ASSERT_EQ(r.accepted.size(), 1u);
  EXPECT_EQ(r.accepted[0].key, "A");
}

TEST(PropertyReader, IntegersAndPanelsAsThePluginReadsThem) {
  const struct {
    const char* value;
    int32_t integer;
    uint32_t panel;
  } cases[] = {{"150", 150, 1}, {"99", 99, 0},     {"200", 200, 0}, {" 120x", 120, 1},
               {"0x20", 0, 0},  {"-150", -150, 0}, {"", 0, 0},      {"4294967396", 100, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(postblend::propertyInt(c.value), c.integer) << c.value;
    EXPECT_EQ(postblend::panelIndexOf(c.value), c.panel) << c.value;
  }
}

}  // namespace
