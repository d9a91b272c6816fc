// Sub-commands of the panelcorvane host tool register themselves here.
#pragma once

#include <string>
#include <vector>

#include "tools/cli/ExitStatus.h"

namespace pctool {

struct Command {
  const char* name;
  const char* summary;  // one line for the command list
  const char* help;     // --help text; main adds the exit-status contract after it
  int (*run)(const std::vector<std::string>& args);  // args after the command name
};

void registerCommand(const Command& cmd);
// Runs `cmd`. An exception that escapes it becomes one line on stderr naming the command and
// the exception, and the status kInternal: never an abort.
int runCommand(const Command& cmd, const std::vector<std::string>& args);
const std::vector<Command>& commands();

struct Registrar {
  explicit Registrar(const Command& cmd) { registerCommand(cmd); }
};

}  // namespace pctool
