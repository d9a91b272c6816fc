#include "tools/cli/Command.h"

#include <cstdio>
#include <exception>

namespace pctool {

namespace {
std::vector<Command>& registry() {
  static std::vector<Command> r;
  return r;
}
}  // namespace

void registerCommand(const Command& cmd) { registry().push_back(cmd); }
const std::vector<Command>& commands() { return registry(); }

int runCommand(const Command& cmd, const std::vector<std::string>& args) {
  try {
    return cmd.run(args);
  } catch (const std::exception& e) {
    fflush(stdout);
    fprintf(stderr, "panelcorvane %s: internal error: %s\n", cmd.name, e.what());
  } catch (...) {
    fflush(stdout);
    fprintf(stderr, "panelcorvane %s: internal error: an exception of unknown type\n", cmd.name);
  }
  return kInternal;
}

}  // namespace pctool
