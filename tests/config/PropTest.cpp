#include "config/Prop.h"

#include <gtest/gtest.h>

#include "config/PropertyReader.h"
#include "tests/support/TestSupport.h"

using postblend::Prop;
using postblend::PropertyProblem;

namespace {

// The reader takes the file as the plugin does and names the first oddity for the workbench.
TEST(PropertyReader, EachOddityIsNamedWithItsLineWhileTheLinesStillCount) {
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
      {"a long line quoted to 40 characters", std::string(41, 'k') + "\n", PropertyProblem::NoEquals, 1,
       "line 1: '" + std::string(40, 'k') + "...' has no '=': skipped", 0},
      {"oversized: read up to the limit", "A=1\n" + std::string(postblend::kMaxPropertyBytes, '#') + "\nB=2\n",
       PropertyProblem::TooLarge, 0, "larger than 1024 KiB: not a property file", 1},
  };
  for (const auto& c : cases) {
    const auto r = postblend::readProperties(c.text);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.diagnosis.line, c.line) << c.name;
    EXPECT_EQ(r.diagnosis.message, c.message) << c.name;
    EXPECT_EQ(r.accepted.size(), c.accepted) << c.name;
  }
}

TEST(PropertyReader, IntegersSwitchesAndPanelsAsTheCConversionMakesThem) {
  const struct {
    const char* value;
    int32_t integer;
    uint32_t panel;  // the hundreds digit: 1 is the secondary panel
  } cases[] = {{"150", 150, 1}, {"99", 99, 0},        {"200", 200, 0},   {" 120x", 120, 1},
               {"0x20", 0, 0},  {"-150", -150, 0},    {"", 0, 0},        {"100", 100, 1},
               {"199", 199, 1}, {"4294967396", 100, 1} /* wraps into 32 bits */};
  for (const auto& c : cases) {
    EXPECT_EQ(postblend::propertyInt(c.value), c.integer) << c.value;
    EXPECT_EQ(postblend::panelIndexOf(c.value), c.panel) << c.value;
  }
}

class PropTest : public ::testing::Test {
 protected:
  void SetUp() override { pctest::resetSharedState(); }
  Prop load(const std::string& content) {
    root.write(Prop::kPath, content);
    Prop prop;
    EXPECT_TRUE(prop.Init());
    return prop;
  }
  pctest::TempRoot root;
  pctest::LogCapture log;
};

TEST_F(PropTest, FileLinesKeysAndDefaults) {
  Prop missing;
  EXPECT_FALSE(missing.Init()) << "no file: the plugin runs in bypass";
  Prop empty = load("");
  EXPECT_EQ(empty.GetLogLevel(), 1);
  EXPECT_EQ(empty.GetValueByKey("GCDisable", 7), 7);
  EXPECT_EQ(log.countContaining("can not find"), 0) << "an empty file answers without a word";

  // The switches' meaning is PanelSwitches'; here the file's lines reach them.
  Prop p = load("LogLevel = 3\nParamVersion=12=13\n=5\nCMDebug=1\nCMDebug=0\nPanelCalibration=1");
  EXPECT_EQ(p.entryCount(), 5u) << "duplicates count";
  EXPECT_EQ(p.GetLogLevel(), 1) << "'LogLevel ' with its space is another key";
  EXPECT_EQ(p.GetParamVersion(), 12);
  EXPECT_EQ(p.GetValueByKey("", 0), 5) << "'=5' defines the empty key";
  EXPECT_TRUE(p.IsCMDebugOn()) << "first occurrence wins";
  EXPECT_FALSE(p.IsPanelCalibrationOn()) << "a last line without line feed is ignored";
  EXPECT_EQ(p.GetPanelId("missing"), 0u);
  EXPECT_TRUE(log.has("1-GetPanelId: can not find missing"));
  EXPECT_EQ(p.GetValueByKey("nokey"), nullptr);
  EXPECT_TRUE(log.has("1-GetValueByKey: can not find nokey"));
}

TEST_F(PropTest, HostileContentNeverCrashes) {
  const std::string huge(300000, 'k');
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>(i * 37));
  Prop p = load(huge + "=" + huge + "\n" + garbage + "\nLogLevel=5\n" + std::string(2000, '\n'));
  EXPECT_EQ(p.GetLogLevel(), 5);
  EXPECT_EQ(p.GetValueByKey(huge.c_str(), 0), 0);
}

}  // namespace
