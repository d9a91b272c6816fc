// The built-in `simulate` session on the sample device, pinned: what it prints for every step
// (the tables each frame got, the blocks switched off, the refreshes, where the optical data came
// from) and the tables it applied, each by the fingerprint of the .cube file it wrote. Times, the
// machine's paths, the report lines (they depend on the build having cairo) and the number of
// debug lines are taken out of the transcript before it is compared.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "GoldenSupport.h"

namespace golden {
namespace {

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

TEST(SessionTranscript, SampleDeviceSessionPrintsAndAppliesThePinnedTables) {
  ScratchDir scratch;
  const std::string out = scratch.path() + "/simulate";
  const ToolResult run = runTool({"simulate", "--out", out, "--fresh"}, scratch.path() + "/output");
  ASSERT_EQ(run.status, 0) << run.output;

  std::string text = replaceAll(run.output, out, "OUT");
  text = replaceAll(text, PC_BUILD_DIR, "BUILD");  // first: the build folder may sit in the source
  text = replaceAll(text, PC_SOURCE_DIR, "SOURCE");
  text = std::regex_replace(text, std::regex(" in [0-9.]+ s\n"), " in T s\n");
  // Call-stack frames are debug lines whose number depends on the compiler's inlining.
  text = std::regex_replace(text, std::regex("[0-9]+ log lines \\(D [0-9]+, E ([0-9]+)\\)"), "N log lines (D N, E $1)");
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line.rfind("report: ", 0) != 0) lines.push_back(line);
  compareOrUpdate("sample-session.txt", "panelcorvane simulate --fresh on examples/device, paths and time replaced",
                  lines);

  std::vector<std::string> cubes;
  for (const auto& entry : std::filesystem::directory_iterator(out)) {
    if (entry.path().extension() != ".cube") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    cubes.push_back(entry.path().filename().string() + " " + fingerprint({std::istreambuf_iterator<char>(file), {}}));
  }
  std::sort(cubes.begin(), cubes.end());
  compareOrUpdate("sample-session.cubes", "the .cube files of the tables the session applied, and their fingerprints",
                  cubes);
}

}  // namespace
}  // namespace golden
