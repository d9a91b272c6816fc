#include "tools/lib/common/FileAccess.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TestSupport.h"

namespace {

TEST(FileAccess, InputsThatAreNoFilesAreNamed) {
  pctest::TempRoot root;
  root.write("/f.txt", "0123456789");
  const struct {
    std::string path;
    std::string error;  // empty: read
  } cases[] = {
      {root.host("/f.txt"), ""},
      {root.path(), "is a folder, not a file"},
      {root.host("/missing"), "no such file"},
      {"/dev/null", "not a regular file"},  // a device node would block or read without end
      {"", "empty file name"},
  };
  for (const auto& c : cases) {
    std::string text, err;
    EXPECT_EQ(pctool::readInputFile(c.path, 4, text, err), c.error.empty()) << c.path;
    EXPECT_EQ(err, c.error) << c.path;
    // One byte past the limit, so the reader can tell the file is too large, and no more.
    EXPECT_EQ(text, c.error.empty() ? "01234" : "") << c.path;
  }
}

TEST(FileAccess, EveryWriteFailureHasItsReason) {
  pctest::TempRoot root;
  std::string err;
  ASSERT_TRUE(pctool::writeWholeFile(root.host("/out.bin"), "abc", err)) << err;
  EXPECT_EQ(root.read("/out.bin"), "abc");
  const struct {
    std::string path, error;
  } cases[] = {
      {"/dev/full", "cannot write: No space left on device"},
      {root.host("/no/such/folder/x"), "cannot create: No such file or directory"},
      {root.path(), "cannot write: is a folder"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(pctool::writeWholeFile(c.path, std::string(70000, 'x'), err)) << c.path;
    EXPECT_EQ(err, c.error) << c.path;
  }
  EXPECT_FALSE(pctool::makeFolders(root.host("/out.bin/sub"), err));
  EXPECT_EQ(err, "cannot create the folder: Not a directory");
  EXPECT_TRUE(pctool::makeFolders(root.host("/a/b"), err));
}

TEST(FileAccess, PathParts) {
  EXPECT_EQ(pctool::parentFolder("a/b/c.PNG") + "|" + pctool::fileName("a/b/c.PNG") + "|" + pctool::lowerExtension("a/b/c.PNG"),
            "a/b|c.PNG|.png");
  EXPECT_EQ(pctool::parentFolder("/x.d/c") + "|" + pctool::fileName("c") + "|" + pctool::lowerExtension("/x.d/c"), "/x.d|c|");
}

}  // namespace
