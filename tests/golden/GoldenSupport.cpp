#include "GoldenSupport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

extern char** environ;

namespace golden {

namespace {
std::string readWhole(const std::string& path, size_t limit) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes(limit, '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(limit));
  bytes.resize(static_cast<size_t>(in.gcount()));
  return bytes;
}
}  // namespace

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "pc-golden-XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) mPath = pattern;
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  if (!mPath.empty()) std::filesystem::remove_all(mPath, ignored);
}

ToolResult runTool(const std::vector<std::string>& args, const std::string& outputFile) {
  std::vector<std::string> words;
#ifdef PC_TOOL_EMULATOR
  // A cross build's tool runs through the emulator, as the tests do: no binfmt needed.
  std::istringstream emulator(PC_TOOL_EMULATOR);
  for (std::string w; emulator >> w;) words.push_back(w);
#endif
  const std::string tool = std::string(PC_BUILD_DIR) + "/panelcorvane";
  words.push_back(tool);
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  pid_t pid = -1;
  const int spawned = posix_spawn(&pid, argv[0], &files, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  ToolResult result;
  int wstatus = 0;
  if (spawned == 0 && waitpid(pid, &wstatus, 0) == pid && WIFEXITED(wstatus)) result.status = WEXITSTATUS(wstatus);
  result.output = spawned == 0 ? readWhole(outputFile, 1 << 20) : tool + ": cannot be started";
  return result;
}

void compareOrUpdate(const std::string& name, const std::string& header, const std::vector<std::string>& found) {
  const std::string path = std::string(PC_SOURCE_DIR) + "/tests/golden/data/" + name;
  const char* update = std::getenv("PC_GOLDEN_UPDATE");
  if (update != nullptr && std::strcmp(update, "1") == 0) {
    std::ofstream out(path, std::ios::trunc);
    out << "# " << header << '\n';
    for (const std::string& l : found) out << l << '\n';
    ASSERT_TRUE(out.good()) << path;
    return;
  }
  std::ifstream in(path);
  ASSERT_TRUE(in.good()) << path << " cannot be read; PC_GOLDEN_UPDATE=1 writes it";
  std::vector<std::string> stored;
  for (std::string line; std::getline(in, line) && stored.size() <= 2 * kEntries;)
    if (!line.empty() && line[0] != '#') stored.push_back(line);
  size_t first = 0, differ = 0;
  for (size_t i = 0; i < std::max(stored.size(), found.size()); ++i) {
    const bool same = i < stored.size() && i < found.size() && stored[i] == found[i];
    if (!same && differ++ == 0) first = i;
  }
  if (differ == 0) return;
  auto at = [](const std::vector<std::string>& v, size_t i) { return i < v.size() ? v[i] : "(nothing)"; };
  ADD_FAILURE() << name << " (" << header << "): line " << first + 1 << " expected '" << at(stored, first)
                << "', found '" << at(found, first) << "'; " << differ << " of " << stored.size()
                << " lines differ";
}

std::string fingerprint(const std::string& bytes) {
  uint64_t h = 0xcbf29ce484222325ull;
  for (unsigned char b : bytes) h = (h ^ b) * 0x100000001b3ull;
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, h);
  return text;
}

bool CacheImage::read(const std::string& path, std::string& why) {
  const std::string bytes = readWhole(path, 8 * kTableBytes + 17);
  const size_t n = bytes.size() < 16 ? 0 : (bytes.size() - 16) / kTableBytes;
  if (n == 0 || n > 8 || bytes.size() != n * kTableBytes + 16) {
    why = path + ": " + std::to_string(bytes.size()) + " bytes is not 16 + N x 117928, N 1..8";
    return false;
  }
  tables.clear();
  for (size_t t = 0; t < n; ++t) tables.push_back(bytes.substr(t * kTableBytes, kTableBytes));
  std::memcpy(trailer, bytes.data() + n * kTableBytes, sizeof trailer);
  return true;
}

uint32_t CacheImage::output(size_t table, size_t entry, int channel) const {
  uint32_t w = 0;
  std::memcpy(&w, tables[table].data() + (4 + entry * 6 + 3 + channel) * sizeof w, sizeof w);
  return w;
}

}  // namespace golden
