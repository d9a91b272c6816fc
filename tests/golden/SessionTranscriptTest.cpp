// The built-in `simulate` session on the sample device, pinned: what it prints for every step
// (the tables each frame got, the blocks switched off, the refreshes, where the optical data came
// from) and the tables it applied, each by the fingerprint of the .cube file it wrote. Times, the
// machine's paths, the report lines (they depend on the build having cairo) and the number of
// debug lines are taken out of the transcript before it is compared.
//
// PC_GOLDEN_UPDATE=1 rewrites data/sample-session.txt and data/sample-session.cubes; a change
// needs a reason in the commit message, as for the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "CacheImage.h"
#include "GoldenFiles.h"
#include "ToolRun.h"

namespace golden {
namespace {

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

std::vector<std::string> transcriptLines(const std::string& output, const std::string& out) {
  std::string text = replaceAll(output, out, "OUT");
  text = replaceAll(text, PC_BUILD_DIR, "BUILD");  // first: the build folder may sit in the source
  text = replaceAll(text, PC_SOURCE_DIR, "SOURCE");
  text = std::regex_replace(text, std::regex(" in [0-9.]+ s\n"), " in T s\n");
  // Call-stack frames are debug lines whose number depends on the compiler's inlining (the
  // sanitizer and clang builds differ): only the error lines are counted exactly.
  text = std::regex_replace(text, std::regex("[0-9]+ log lines \\(D [0-9]+, E ([0-9]+)\\)"),
                            "N log lines (D N, E $1)");
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    // Whether the report pages are drawn depends on the build (cairo), not on the plugin.
    if (!line.empty() && line.rfind("report: ", 0) != 0) lines.push_back(line);
  }
  return lines;
}

// "NAME FINGERPRINT" for every .cube file the session wrote, sorted by name.
std::vector<std::string> cubeLines(const std::string& out) {
  std::vector<std::string> lines;
  for (const auto& entry : std::filesystem::directory_iterator(out)) {
    if (entry.path().extension() != ".cube") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    lines.push_back(entry.path().filename().string() + " " + hex64(fingerprint(bytes)));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

void compareOrUpdate(const std::string& name, const std::vector<std::string>& found,
                     const std::string& header) {
  if (updating()) {
    ASSERT_TRUE(writeDataLines(name, {header}, found)) << name;
    return;
  }
  std::vector<std::string> stored;
  ASSERT_TRUE(readDataLines(name, stored)) << "cannot read " << dataPath(name);
  for (size_t i = 0; i < std::max(stored.size(), found.size()); ++i) {
    const std::string want = i < stored.size() ? stored[i] : "(nothing)";
    const std::string got = i < found.size() ? found[i] : "(nothing)";
    if (want != got) {
      ADD_FAILURE() << name << " line " << i + 1 << ":\n  expected: " << want
                    << "\n  found:    " << got;
      return;  // the first difference says enough; the rest usually follows from it
    }
  }
}

TEST(SessionTranscript, SampleDeviceSessionPrintsAndAppliesWhatItAlwaysHas) {
  ScratchDir scratch;
  const std::string out = scratch.path() + "/simulate";
  const ToolResult run = runTool({"simulate", "--out", out, "--fresh"}, scratch.path() + "/output");
  ASSERT_EQ(run.status, 0) << run.output;
  compareOrUpdate("sample-session.txt", transcriptLines(run.output, out),
                  "panelcorvane simulate --fresh on examples/device, paths and time replaced");
  compareOrUpdate("sample-session.cubes", cubeLines(out),
                  "the .cube files of the tables the session applied, and their fingerprints");
}

}  // namespace
}  // namespace golden
