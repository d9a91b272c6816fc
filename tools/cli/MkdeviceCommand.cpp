// `mkdevice DIR [options]`: a synthetic device tree for PANELCORVANE_ROOT.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "tools/cli/Command.h"
#include "tools/cli/LotCommands.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane mkdevice DIR [--seed N] [--tables 6|8] [--primary NAME]\n"
    "                             [--secondary NAME] [--param-version N] [--no-gamma]\n"
    "                             [--no-100nits] [--no-local] [--mismatch] [--force]\n"
    "\n"
    "Writes a synthetic device tree under DIR, for use as PANELCORVANE_ROOT: the property\n"
    "file, golden and local optical data of two wide-gamut OLED-like panels (varied by\n"
    "--seed, default 1), the Vivid, Nature, Cinema and LsRGB targets with their 100-nit\n"
    "variants, the panel identity stamps and the matching serial numbers in /dev/tarnu_display.\n"
    "The same seed and options always give byte-identical files.\n"
    "\n"
    "DIR must be empty or missing: a tree written over an older one would keep the older\n"
    "panel's table cache, and the plugin would load it. With --force, the parts of an older\n"
    "tree (odm/etc/PanelCorvane, mnt/vendor/persist/display, dev/tarnu_display and the cache\n"
    "folder data/vendor/display) are removed first and listed; anything else in DIR stays.\n"
    "\n"
    "  --tables 6|8        8 (default): CMDebug=1, FWVersion=943440; 6: CMDebug=0,\n"
    "                      FWVersion=707584 and no LsRGB targets\n"
    "  --primary NAME      display name of panel 0 (default PanelCorvane_primary)\n"
    "  --secondary NAME    display name of panel 1 (default PanelCorvane_secondary)\n"
    "  --param-version N   ParamVersion (default 1)\n"
    "  --no-gamma          GammaCorrection=0\n"
    "  --no-100nits        inParam100nits=0\n"
    "  --no-local          leave out the persist partition's optical data\n"
    "  --mismatch          identity stamps that do not match the serial numbers\n"
    "  --force             replace an existing tree in DIR\n";

bool parseUnsigned(const std::string& s, unsigned* out) {
  if (s.empty() || s[0] == '-' || s[0] == '+') return false;
  errno = 0;
  char* end = nullptr;
  const unsigned long v = std::strtoul(s.c_str(), &end, 10);
  if (*end != '\0' || errno != 0 || v > 0xFFFFFFFFul) return false;
  *out = static_cast<unsigned>(v);
  return true;
}

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane mkdevice: %s\n", why.c_str());
  return kUsage;
}

int run(const std::vector<std::string>& args) {
  for (const auto& a : args)
    if (a == "--lot" || a.rfind("--lot=", 0) == 0) return runMkdeviceLot(args);
  SyntheticDeviceOptions o;
  unsigned tables = static_cast<unsigned>(o.tables);
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--seed", "--tables", "--param-version", "--primary", "--secondary"},
                 {"--no-gamma", "--no-100nits", "--no-local", "--mismatch", "--force"}, a, err))
    return usage(err);
  for (auto [name, field] : {std::pair<const char*, unsigned*>{"--seed", &o.seed},
                              {"--param-version", &o.paramVersion}, {"--tables", &tables}}) {
    if (a.has(name) && !parseUnsigned(a.value(name), field)) return usage(std::string(name) + " needs a number");
  }
  if (tables != 6 && tables != 8) return usage("--tables must be 6 or 8");
  o.tables = static_cast<int>(tables);
  for (auto [name, field] : {std::pair<const char*, std::string*>{"--primary", &o.primaryName},
                              {"--secondary", &o.secondaryName}}) {
    if (!a.has(name)) continue;
    *field = a.value(name);
    if (field->empty() || field->find_first_of("=\n/") != std::string::npos)
      return usage(std::string(name) + " needs a name without '=', '/' or line feed");
  }
  o.gammaCorrection = !a.has("--no-gamma");
  o.in100nits = !a.has("--no-100nits");
  o.localData = !a.has("--no-local");
  o.matched = !a.has("--mismatch");
  const bool force = a.has("--force");
  if (a.positional.size() > 1) return usage("only one DIR expected");
  const std::string dir = a.positional.empty() ? "" : a.positional[0];
  if (dir.empty()) return usage("DIR missing");
  std::string error;
  namespace fs = std::filesystem;
  std::error_code ec;
  if (fs::exists(dir, ec) && !fs::is_directory(dir, ec)) {
    fprintf(stderr, "panelcorvane mkdevice: %s: not a folder\n", dir.c_str());
    return kBadInput;
  }
  if (fs::is_directory(dir, ec) && !fs::is_empty(dir, ec)) {
    if (!force) {
      fprintf(stderr,
              "panelcorvane mkdevice: %s: not empty; --force replaces the device tree in it "
              "(its table cache included)\n",
              dir.c_str());
      return kBadInput;
    }
    std::vector<std::string> removed;
    if (!clearDeviceTree(dir, &removed, &error)) {
      fprintf(stderr, "panelcorvane mkdevice: %s\n", error.c_str());
      return kBadInput;
    }
    for (const auto& r : removed) printf("removed %s/%s\n", dir.c_str(), r.c_str());
  }
  if (!writeSyntheticDevice(dir, o, &error)) {
    fprintf(stderr, "panelcorvane mkdevice: %s\n", error.c_str());
    return kBadInput;
  }
  return kOk;
}

const std::string kFullHelp = std::string(kHelp) + kMkdeviceLotHelp;
Registrar reg({"mkdevice", "write a synthetic device tree (or a lot of them)", kFullHelp.c_str(), run});

}  // namespace
}  // namespace pctool
