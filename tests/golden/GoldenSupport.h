// What the golden tests share. They drive the system from outside only, so that moving the
// plugin's sources cannot touch them: the built tool runs as a subprocess, and a table cache is
// read with the harness's own copy of its layout:
//   N records of 117928 bytes: 4 header words, then 4913 entries of 6 u32 words
//                              (input codes r g b, output codes r g b; entry n = 289b + 17g + r)
//   16 bytes                   trailer: source, panelId, paramVersion, checkSum
// Stored files live under tests/golden/data/ ('#' starts a comment line); PC_GOLDEN_UPDATE=1
// writes them anew instead of comparing. Changing one needs a reason in the commit message: it
// means a phone's colours change.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace golden {

constexpr size_t kEntries = 17 * 17 * 17;
constexpr size_t kTableBytes = (4 + kEntries * 6) * sizeof(uint32_t);
static_assert(kTableBytes == 117928, "one lut3d_info record");

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

// Runs `panelcorvane ARGS...` without a shell; its output goes to OUTPUT_FILE, then is read back.
ToolResult runTool(const std::vector<std::string>& args, const std::string& outputFile);

// FOUND against data file NAME line by line; a failure names the first line that differs and
// how many do. Updating, the file is written with HEADER as its comment line.
void compareOrUpdate(const std::string& name, const std::string& header, const std::vector<std::string>& found);

// 64-bit FNV-1a: a fingerprint that makes any change visible, not a security hash.
std::string fingerprint(const std::string& bytes);

struct CacheImage {
  std::vector<std::string> tables;  // the records' bytes
  uint32_t trailer[4] = {};
  // False with a reason when PATH cannot be read or is not 16 + N x 117928 bytes, N 1..8.
  bool read(const std::string& path, std::string& why);
  uint32_t output(size_t table, size_t entry, int channel) const;
};

}  // namespace golden
