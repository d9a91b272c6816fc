// Runs the built tool as an engineer would, in a throw-away folder (skipped when not built).
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/support/TestSupport.h"

namespace pctest {

struct ToolRun {
  int status;
  std::string out, err;
};

class ToolRunner : public ::testing::Test {
 protected:
  void SetUp() override {
    resetSharedState();
    tool = std::string(PC_BUILD_DIR) + "/panelcorvane";
    dir = root.path();
    if (access(tool.c_str(), X_OK) != 0) GTEST_SKIP() << "panelcorvane not built at " << tool;
  }
  // `args` as a shell would split them; paths with blanks must be quoted by the caller.
  ToolRun run(const std::string& args) {
    const std::string cmd = "cd '" + dir + "' && '" + tool + "' " + args + " > .out 2> .err";
    const int rc = std::system(cmd.c_str());
    return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, root.read("/.out"), root.read("/.err")};
  }
  TempRoot root;
  std::string tool, dir;
};

}  // namespace pctest
