#include "tools/lib/common/FileAccess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

#include "tests/support/TestSupport.h"
#include "tools/lib/common/JsonText.h"
#include "tools/lib/common/PrintfString.h"

namespace {

TEST(FileAccess, InputsThatAreNoFilesAreNamed) {
  pctest::TempRoot root;
  root.write("/f.txt", "0123456789");
  const std::pair<std::string, std::string> cases[] = {
      {root.host("/f.txt"), ""},
      {root.path(), "is a folder, not a file"},
      {root.host("/missing"), "no such file"},
      {"/dev/null", "not a regular file"},  // a device node would block or read without end
      {"", "empty file name"},
  };
  for (const auto& [path, error] : cases) {  // an empty error: read
    std::string text, err;
    EXPECT_EQ(pctool::readInputFile(path, 4, text, err), error.empty()) << path;
    EXPECT_EQ(err, error) << path;
    // One byte past the limit, so the reader can tell the file is too large, and no more.
    EXPECT_EQ(text, error.empty() ? "01234" : "") << path;
  }
}

TEST(FileAccess, EveryWriteFailureHasItsReason) {
  pctest::TempRoot root;
  std::string err;
  ASSERT_TRUE(pctool::writeWholeFile(root.host("/out.bin"), "abc", err)) << err;
  EXPECT_EQ(root.read("/out.bin"), "abc");
  const std::pair<std::string, std::string> cases[] = {
      {"/dev/full", "cannot write: No space left on device"},
      {root.host("/no/such/folder/x"), "cannot create: No such file or directory"},
      {root.path(), "cannot write: is a folder"},
  };
  for (const auto& [path, error] : cases) {
    EXPECT_FALSE(pctool::writeWholeFile(path, std::string(70000, 'x'), err)) << path;
    EXPECT_EQ(err, error) << path;
  }
  EXPECT_FALSE(pctool::makeFolders(root.host("/out.bin/sub"), err));
  EXPECT_EQ(err, "cannot create the folder: Not a directory");
  EXPECT_TRUE(pctool::makeFolders(root.host("/a/b"), err));
}

TEST(FileAccess, PathParts) {
  const std::pair<const char*, const char*> rows[] = {{"a/b/c.PNG", "a/b|c.PNG|.png"}, {"/x.d/c", "/x.d|c|"}};
  for (const auto& [path, parts] : rows)
    EXPECT_EQ(pctool::parentFolder(path) + "|" + pctool::fileName(path) + "|" + pctool::lowerExtension(path), parts);
}

// What every JSON output is made of: strings escaped, a value that is no number never "nan".
TEST(JsonText, StringsAreEscapedAndNonNumbersAreNull) {
  EXPECT_EQ(pctool::jsonString("a \"q\" \\ \x01"), "\"a \\\"q\\\" \\\\ \\u0001\"");
  EXPECT_EQ(pctool::jsonNumber(NAN) + pctool::jsonNumber(INFINITY) + " " + pctool::jsonNumber(0.5, 2), "nullnull 0.50");
}

// A figure printed against a limit reads on the side of the limit that it is on.
TEST(PrintfString, FiguresAreAsPreciseAsTheyDecide) {
  const std::tuple<double, double, const char*> rows[] = {
      {1.302, 1.3, "1.302"},    // fails: not "1.30"
      {1.2996, 1.3, "1.30"},    // passes, and "1.30" passes too
      {1.3004, 1.3, "1.3004"},  // fails by less than a thousandth
      {1.3, 1.3, "1.30"},       // at the limit passes
      {2.5, 1.3, "2.50"},
  };
  for (const auto& [v, limit, text] : rows) EXPECT_EQ(pctool::decidingFigure(v, limit), text) << v;
  EXPECT_EQ(pctool::exactFigure(1.255) + " " + pctool::exactFigure(2), "1.255 2") << "a limit as it was given";
}

}  // namespace
