#include "GoldenFiles.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace golden {

bool updating() {
  const char* v = std::getenv("PC_GOLDEN_UPDATE");
  return v != nullptr && std::strcmp(v, "1") == 0;
}

std::string dataPath(const std::string& name) {
  return std::string(PC_SOURCE_DIR) + "/tests/golden/data/" + name;
}

bool readDataLines(const std::string& name, std::vector<std::string>& lines) {
  lines.clear();
  std::ifstream in(dataPath(name));
  if (!in) return false;
  // The largest file holds one line per table entry; anything much longer is not ours.
  constexpr size_t kMaxLines = 10000;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (lines.size() == kMaxLines) return false;
    lines.push_back(line);
  }
  return true;
}

bool writeDataLines(const std::string& name, const std::vector<std::string>& header,
                    const std::vector<std::string>& lines) {
  std::error_code ignored;
  std::filesystem::create_directories(dataPath(""), ignored);
  std::ofstream out(dataPath(name), std::ios::trunc);
  for (const std::string& h : header) out << "# " << h << '\n';
  for (const std::string& l : lines) out << l << '\n';
  return static_cast<bool>(out);
}

}  // namespace golden
