#include "tools/cli/Command.h"

namespace pctool {

namespace {
std::vector<Command>& registry() {
  static std::vector<Command> r;
  return r;
}
}  // namespace

void registerCommand(const Command& cmd) { registry().push_back(cmd); }
const std::vector<Command>& commands() { return registry(); }

}  // namespace pctool
