#include "ToolRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <sstream>

extern char** environ;

namespace golden {

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "pc-golden-XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) mPath = pattern;
}

ScratchDir::~ScratchDir() {
  if (mPath.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(mPath, ignored);
}

std::string toolPath() { return std::string(PC_BUILD_DIR) + "/panelcorvane"; }

ToolResult runTool(const std::vector<std::string>& args, const std::string& outputFile) {
  const std::string tool = toolPath();
  std::vector<char*> argv{const_cast<char*>(tool.c_str())};
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  pid_t pid = -1;
  const int spawned = posix_spawn(&pid, tool.c_str(), &files, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&files);

  ToolResult result;
  if (spawned != 0) {
    result.output = tool + ": cannot be started";
    return result;
  }
  int wstatus = 0;
  if (waitpid(pid, &wstatus, 0) == pid && WIFEXITED(wstatus)) result.status = WEXITSTATUS(wstatus);
  std::ifstream in(outputFile);
  std::stringstream text;
  text << in.rdbuf();
  result.output = text.str();
  return result;
}

}  // namespace golden
