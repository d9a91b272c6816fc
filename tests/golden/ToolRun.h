// The built panelcorvane tool run as a subprocess, in a scratch folder of its own.
#pragma once

#include <string>
#include <vector>

namespace golden {

// A fresh empty folder under the system's temporary folder, removed with everything in it.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  const std::string& path() const { return mPath; }

 private:
  std::string mPath;
};

struct ToolResult {
  int status = -1;     // exit status; -1 when it could not start or did not exit normally
  std::string output;  // stdout and stderr together, for failure messages
};

std::string toolPath();

// Runs `panelcorvane ARGS...` without a shell; its output goes to OUTPUT_FILE, then is read back.
ToolResult runTool(const std::vector<std::string>& args, const std::string& outputFile);

}  // namespace golden
