#include "tools/lib/common/FileAccess.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/TestSupport.h"

namespace {

TEST(FileAccess, InputsThatAreNoFilesAreNamed) {
  pctest::TempRoot root;
  root.write("/f.txt", "x");
  struct Case {
    std::string path;
    bool ok;
    std::string error;
  } cases[] = {
      {root.host("/f.txt"), true, ""},
      {root.path(), false, "is a folder, not a file"},
      {root.host("/missing"), false, "no such file"},
      {"/dev/null", false, "not a regular file"},
      {"", false, "empty file name"},
  };
  for (const auto& c : cases) {
    std::string err;
    EXPECT_EQ(pctool::checkInputFile(c.path, err), c.ok) << c.path;
    EXPECT_EQ(err, c.error) << c.path;
  }
}

TEST(FileAccess, EveryWriteFailureHasItsReason) {
  pctest::TempRoot root;
  std::string err;
  ASSERT_TRUE(pctool::writeWholeFile(root.host("/out.bin"), "abc", err)) << err;
  EXPECT_EQ(root.read("/out.bin"), "abc");
  struct Case {
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
  EXPECT_EQ(pctool::parentFolder("a/b/c.png"), "a/b");
  EXPECT_EQ(pctool::parentFolder("c.png"), "");
}

}  // namespace
