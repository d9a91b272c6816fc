#include "tools/lib/device/PropertyFile.h"

#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

namespace {

TEST(PropertyFile, DisplayNamesAndTheirPanelsAsThePluginReadsThem) {
  pctest::TempRoot root;
  root.write("/p", "LogLevel=1\n# Hidden=100\nMain=0\nSide=150\nMain=100\nOther =120\ninParam100nits=1\nLast=100");
  pctool::PropertyFile prop;
  std::string err;
  ASSERT_TRUE(prop.load(root.host("/p"), err)) << err;
  ASSERT_EQ(prop.displayNames().size(), 3u);
  EXPECT_EQ(prop.panelOf("Main"), 0u);  // the first occurrence wins
  EXPECT_EQ(prop.panelOf("Side"), 1u);
  EXPECT_EQ(prop.panelOf("Other "), 1u);  // nothing is trimmed
  EXPECT_FALSE(prop.has("Last"));         // no line feed: not read
  EXPECT_EQ(prop.intOr("inParam100nits", 0), 1);
  EXPECT_EQ(prop.namesText(), "Main, Side, Other ");

  EXPECT_FALSE(prop.load(root.path(), err));
  EXPECT_EQ(err, "is a folder, not a file");
}

}  // namespace
