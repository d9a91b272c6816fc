// Sub-commands of the panelcorvane host tool register themselves here.
#pragma once

#include <string>
#include <vector>

namespace pctool {

// Exit statuses shared by every command.
enum Exit : int { kOk = 0, kBadInput = 1, kUsage = 2 };

struct Command {
  const char* name;
  const char* summary;  // one line for the command list
  const char* help;     // full --help text
  int (*run)(const std::vector<std::string>& args);  // args after the command name
};

void registerCommand(const Command& cmd);
const std::vector<Command>& commands();

struct Registrar {
  explicit Registrar(const Command& cmd) { registerCommand(cmd); }
};

}  // namespace pctool
