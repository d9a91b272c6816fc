#include "config/Prop.h"

#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

using postblend::Prop;

namespace {

class PropTest : public ::testing::Test {
 protected:
  void SetUp() override { pctest::resetSharedState(); }

  // Parses `content` as the property file at its device path.
  Prop load(const std::string& content) {
    root.write(Prop::kPath, content);
    Prop prop;
    EXPECT_TRUE(prop.Init());
    return prop;
  }

  pctest::TempRoot root;
  pctest::LogCapture log;
};

TEST_F(PropTest, MissingFileFailsAndEmptyFileRunsWithDefaults) {
  Prop missing;
  EXPECT_FALSE(missing.Init());

  Prop empty = load("");
  EXPECT_EQ(empty.entryCount(), 0u);
  EXPECT_EQ(empty.GetLogLevel(), 1);
  EXPECT_EQ(empty.GetValueByKey("GCDisable", 7), 7);
  EXPECT_EQ(empty.GetValueByKey("GCDisable"), nullptr);
  EXPECT_EQ(empty.GetPanelId("any"), 0u);
  EXPECT_EQ(log.countContaining("can not find"), 0) << "no lines while the file holds nothing";
}

TEST_F(PropTest, LineSyntax) {
  Prop p = load(
      "# comment=1\n"
      "\n"
      "no equals sign\n"
      "LogLevel = 3\n"
      "ParamVersion=12=13\n"
      "=5\n"
      "FWVersion=707584\r\n"
      "CMDebug=1\n"
      "CMDebug=0\n"
      "key#x=#v\n"
      "PanelCalibration=1");  // no final line feed: ignored
  EXPECT_EQ(p.entryCount(), 7u) << "duplicates count, skipped lines do not";
  EXPECT_EQ(p.GetLogLevel(), 1) << "'LogLevel ' with its space is another key";
  EXPECT_EQ(p.GetValueByKey("LogLevel ", 0), 3);
  EXPECT_STREQ(p.GetValueByKey("ParamVersion"), "12=13");
  EXPECT_EQ(p.GetParamVersion(), 12);
  EXPECT_EQ(p.GetValueByKey("", 0), 5) << "'=5' defines the empty key";
  EXPECT_STREQ(p.GetValueByKey("FWVersion"), "707584\r");
  EXPECT_EQ(p.GetFWVersion(), 707584);
  EXPECT_TRUE(p.IsCMDebugOn()) << "first occurrence wins";
  EXPECT_STREQ(p.GetValueByKey("key#x"), "#v");
  EXPECT_FALSE(p.IsPanelCalibrationOn());
  EXPECT_TRUE(log.has("1-parsePropertyFile: LogLevel = 3,", "PanelCorvane"));
}

TEST_F(PropTest, IntegerConversionAndSwitches) {
  struct Case {
    const char* value;
    int asInt;
    bool asSwitch;
  } cases[] = {
      {"1", 1, true},     {"01", 1, true},    {"2", 2, false},       {"0x20", 0, false},
      {"  1", 1, true},   {"-1", -1, false},  {"abc", 0, false},     {"1abc", 1, true},
      {"4294967297", 1, true},  // wraps like the C conversion into 32 bits
  };
  for (const auto& c : cases) {
    Prop p = load(std::string("PanelCalibration=") + c.value + "\nX=" + c.value + "\n");
    EXPECT_EQ(p.GetValueByKey("X", 99), c.asInt) << c.value;
    EXPECT_EQ(p.IsPanelCalibrationOn(), c.asSwitch) << c.value;
  }
}

TEST_F(PropTest, PanelIdByHundredsDigit) {
  Prop p = load("a=150\nb=99\nc=250\nd=100\ne=199\nf=-150\n");
  EXPECT_EQ(p.GetPanelId("a"), 1u);
  EXPECT_EQ(p.GetPanelId("b"), 0u);
  EXPECT_EQ(p.GetPanelId("c"), 0u);
  EXPECT_EQ(p.GetPanelId("d"), 1u);
  EXPECT_EQ(p.GetPanelId("e"), 1u);
  EXPECT_EQ(p.GetPanelId("f"), 0u);
  EXPECT_EQ(p.GetPanelId("missing"), 0u);
  EXPECT_TRUE(log.has("1-GetPanelId: can not find missing"));
  p.GetValueByKey("nokey", 4);
  EXPECT_TRUE(log.has("1-GetValueByKey: can not find nokey defVal:4"));
  p.GetValueByKey("nokey2");
  EXPECT_TRUE(log.has("1-GetValueByKey: can not find nokey2"));
}

TEST_F(PropTest, HostileContentNeverCrashes) {
  std::string huge(300000, 'k');
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>(i * 37));
  Prop p = load(huge + "=" + huge + "\n" + garbage + "\nLogLevel=5\n" + std::string(2000, '\n'));
  EXPECT_EQ(p.GetLogLevel(), 5);
  EXPECT_EQ(p.GetValueByKey(huge.c_str(), 0), 0);
}

}  // namespace
