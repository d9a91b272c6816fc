// panelcorvane: the host tool around the plugin. Each sub-command lives in tools/cli/.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tools/cli/Command.h"

namespace {

void printUsage(FILE* out) {
  std::vector<pctool::Command> cmds = pctool::commands();
  std::sort(cmds.begin(), cmds.end(),
            [](const pctool::Command& a, const pctool::Command& b) { return std::strcmp(a.name, b.name) < 0; });
  fprintf(out, "usage: panelcorvane COMMAND [ARGS...]\n\ncommands:\n");
  for (const auto& c : cmds) fprintf(out, "  %-10s %s\n", c.name, c.summary);
  fprintf(out, "\n'panelcorvane COMMAND --help' tells more about one command.\n");
  fputs(pctool::kExitContract, out);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    printUsage(stderr);
    return pctool::kUsage;
  }
  std::string name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") {
    printUsage(stdout);
    return pctool::kOk;
  }
  for (const auto& c : pctool::commands()) {
    if (name != c.name) continue;
    std::vector<std::string> args(argv + 2, argv + argc);
    if (std::find(args.begin(), args.end(), "--help") != args.end()) {
      fputs(c.help, stdout);
      fputs(pctool::kExitContract, stdout);
      return pctool::kOk;
    }
    int status = pctool::runCommand(c, args);
    // Output sent to a full disk or a closed pipe is a failed job, not a success.
    if (fflush(stdout) != 0 || ferror(stdout)) {
      fprintf(stderr, "panelcorvane %s: standard output: %s\n", c.name, std::strerror(errno));
      if (status == pctool::kOk) status = pctool::kBadInput;
    }
    return status;
  }
  fprintf(stderr, "panelcorvane: unknown command '%s'\n", name.c_str());
  printUsage(stderr);
  return pctool::kUsage;
}
