// Minimal option parsing for the workbench commands, as getopt reads them: "--name VALUE",
// "--name=VALUE", "-x VALUE" and "-xVALUE" for a one-letter option, flags and positional
// arguments; "--" ends the options.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace pctool {

struct ParsedArgs {
  std::vector<std::string> positional;
  std::map<std::string, std::vector<std::string>> values;  // every occurrence, in order
  std::set<std::string> flags;

  bool has(const std::string& name) const { return flags.count(name) || values.count(name); }
  // Last value given for `name`, or `def`.
  std::string value(const std::string& name, const std::string& def = "") const;
};

// False with a reason for an unknown option or a missing value.
bool parseArgs(const std::vector<std::string>& args, const std::set<std::string>& withValue,
               const std::set<std::string>& flagNames, ParsedArgs& out, std::string& error);

// A whole number that is a finite decimal number.
bool parseNumber(const std::string& s, double& out);

// A whole non-negative decimal number below `limit`.
bool parseIndex(const std::string& s, int limit, int& out);

}  // namespace pctool
