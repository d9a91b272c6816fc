// Runs the built panelcorvane tool as an engineer would, in a throw-away folder, and keeps its
// exit status, standard output and standard error.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
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
  }
  // `args` as a shell would split them; paths with blanks must be quoted by the caller.
  ToolRun run(const std::string& args) {
    const std::string cmd = "cd '" + dir + "' && '" + tool + "' " + args + " > '" + dir + "/.out' 2> '" + dir + "/.err'";
    const int rc = std::system(cmd.c_str());
    return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, slurp(dir + "/.out"), slurp(dir + "/.err")};
  }
  static std::string slurp(const std::string& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }
  bool haveTool() const { return access(tool.c_str(), X_OK) == 0; }
  TempRoot root;
  std::string tool, dir;
};

}  // namespace pctest
