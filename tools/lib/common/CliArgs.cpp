#include "tools/lib/common/CliArgs.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

namespace pctool {

std::string ParsedArgs::value(const std::string& name, const std::string& def) const {
  auto it = values.find(name);
  return it == values.end() || it->second.empty() ? def : it->second.back();
}

bool parseArgs(const std::vector<std::string>& args, const std::set<std::string>& withValue,
               const std::set<std::string>& flagNames, ParsedArgs& out, std::string& error) {
  out = ParsedArgs{};
  bool optionsDone = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (optionsDone || a.size() < 2 || a[0] != '-') {
      out.positional.push_back(a);
      continue;
    }
    if (a == "--") {
      optionsDone = true;
      continue;
    }
    std::string name = a, val;
    bool inlineValue = false;
    size_t eq = a.find('=');
    if (a.compare(0, 2, "--") == 0 && eq != std::string::npos) {
      name = a.substr(0, eq);
      val = a.substr(eq + 1);
      inlineValue = true;
    } else if (a[1] != '-' && a.size() > 2 && withValue.count(a.substr(0, 2))) {
      name = a.substr(0, 2);  // "-j4", as getopt reads a short option's value
      val = a.substr(2);
      inlineValue = true;
    }
    if (withValue.count(name)) {
      if (!inlineValue) {
        if (i + 1 >= args.size()) {
          error = "option " + name + " needs a value";
          return false;
        }
        val = args[++i];
      }
      out.values[name].push_back(val);
    } else if (flagNames.count(name) && !inlineValue) {
      out.flags.insert(name);
    } else {
      error = "unknown option " + a;
      return false;
    }
  }
  return true;
}

bool parseNumber(const std::string& s, double& out) {
  char* end = nullptr;
  out = std::strtod(s.c_str(), &end);
  return !s.empty() && *end == '\0' && std::isfinite(out);
}

bool parseIndex(const std::string& s, int limit, int& out) {
  if (s.empty() || s.size() > 9) return false;
  for (char c : s)
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  out = std::stoi(s);
  return out < limit;
}

}  // namespace pctool
