// `panelcorvane simulate`: plays the colour manager and the control services against the real
// plugin library on a device tree, and tells what each step did.
#include <dlfcn.h>
#include <pchost/host.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "tools/cli/Command.h"
#include "tools/cli/SessionPlayer.h"
#include "tools/cli/SimulateOutputs.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/device/DeviceCopy.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/Session.h"

namespace fs = std::filesystem;

namespace pctool {
namespace {

const char* kHelp = R"(usage: panelcorvane simulate [options]

Loads libPanelCorvane.so the way the colour manager does, registers a display service that
records refresh requests, and plays a session against a device tree: panels are initialised,
frames are sent as render-intent operations, brightness changes, and the HIDL and AIDL control
services are called. Each frame prints the table it got; each wait-tables step prints whether
the panel's tables came from the cache or were generated, and from which optical data (local,
golden, or golden although the identity matched) with the reason from the plugin's log.

options:
  --device DIR     device tree to start from (default: examples/device of the source tree)
  --out DIR        output folder, created when missing (default: simulate/ beside the tool).
                   The device tree is copied to OUT/device on the first run and used from
                   there, so the table cache written on the first run is loaded on the next.
                   OUT/device-origin.txt records the tree copied: a later run refuses OUT
                   when it is given another tree, or this one changed since (exit 1)
  --fresh          copy the device tree again (the cache is generated anew)
  --session FILE   session script to play (default: the built-in session)
  --print-session  print the built-in session and exit
  --plugin FILE    plugin library (default: libPanelCorvane.so beside the tool)
  --primary NAME   display name of the primary panel (default: read from the property file)
  --secondary NAME display name of the secondary panel (default: read from the property file)

A display name must be one the device's property file maps to a panel. The session fails
(exit 1) when a panel's tables never become ready at a wait-tables step; it is still played
to the end and its outputs written. A run first removes an earlier run's .cube files and
report pages from OUT. When the tables come from a cache that the device's optical data or
targets no longer give (changed after the cache was written), the wait-tables step says so.

The pauses of the plugin (retries, DeInit) are scaled by PANELCORVANE_SLEEP_SCALE; simulate
sets it to 0 unless it is already set. The plugin's log goes to OUT/session.log.

session script, one step per line ('#' starts a comment):
  init PANEL | deinit PANEL | wait-tables PANEL | needs-update PANEL     (PANEL: primary|secondary)
  brightness FRACTION             SetProperty 769 on every running panel
  frame PANEL GAMUT INTENT [hdr]  render-intent op (gamut 1 sRGB, 12 DCI-P3)
  hidl-set CMD [ARG...]           configureSet;  hidl-get TYPE [ARG...]  configureGet
  aidl-set DISP CMD               MixLut3D set
  echo TEXT
)";

constexpr const char* kPropertyFile = "odm/etc/PanelCorvane/panelcorvane";

fs::path exeDir() {
  std::error_code ec;
  fs::path p = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::current_path(ec) : p.parent_path();
}

struct Options {
  fs::path device, out, plugin;
  std::string sessionFile;
  std::string names[2];
  bool fresh = false;
  bool printSession = false;
};

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane simulate: %s (see --help)\n", why.c_str());
  return kUsage;
}

int fail(const std::string& what, const std::string& why) {
  fprintf(stderr, "panelcorvane simulate: %s: %s\n", what.c_str(), why.c_str());
  return kBadInput;
}

bool isFolder(const fs::path& p) {
  std::error_code ec;
  return fs::is_directory(p, ec);
}

int parseOptions(const std::vector<std::string>& args, Options& o) {
  const fs::path here = exeDir();
  o.device = here / ".." / "examples" / "device";
#ifdef PC_SOURCE_DIR
  if (!isFolder(o.device)) o.device = fs::path(PC_SOURCE_DIR) / "examples" / "device";
#endif
  o.out = here / "simulate";
  o.plugin = here / "libPanelCorvane.so";
  ParsedArgs a;
  std::string error;
  const char* const valued[] = {"--device", "--out", "--plugin", "--session", "--primary", "--secondary"};
  if (!parseArgs(args, {std::begin(valued), std::end(valued)}, {"--fresh", "--print-session"}, a, error))
    return usage(error);
  if (!a.positional.empty()) return usage("unexpected argument '" + a.positional[0] + "'");
  for (const char* name : valued)
    if (a.has(name) && a.value(name).empty()) return usage(std::string(name) + " needs a value");
  o.fresh = a.has("--fresh");
  o.printSession = a.has("--print-session");
  if (a.has("--device")) o.device = a.value("--device");
  if (a.has("--out")) o.out = a.value("--out");
  if (a.has("--plugin")) o.plugin = a.value("--plugin");
  o.sessionFile = a.value("--session");
  o.names[0] = a.value("--primary");
  o.names[1] = a.value("--secondary");
  return kOk;
}

// The session's steps; a failure is an input-file fault (exit 1).
int loadSession(const Options& o, std::vector<SessionStep>& steps) {
  std::string script = defaultSession();
  std::string error;
  if (!o.sessionFile.empty()) {
    if (!readInputFile(o.sessionFile, kMaxSessionBytes, script, error)) return fail(o.sessionFile, error);
  }
  if (!parseSession(script, &steps, &error))
    return fail(o.sessionFile.empty() ? "built-in session" : o.sessionFile, error);
  if (steps.empty()) return fail(o.sessionFile, "no steps: nothing to play");
  return kOk;
}

// simulate's own outputs: panel<P>-table<K>-<hash>.cube and report-<display name>.png.
bool isOutputOfARun(const std::string& name) {
  const std::string ext = lowerExtension(name);
  return (name.rfind("panel", 0) == 0 && name.find("-table") != std::string::npos && ext == ".cube") ||
         (name.rfind("report-", 0) == 0 && ext == ".png");
}

// Takes OUT/device when an earlier run copied it from the same device tree, unchanged since;
// else (or with --fresh) copies the tree there. Then removes the earlier run's outputs, so what
// this run lists is its own.
int prepareTree(const Options& o, fs::path& root) {
  std::string error;
  if (!isFolder(o.device)) return fail(o.device.string(), "no such device tree (not a folder)");
  if (!makeFolders(o.out.string(), error)) return fail(o.out.string(), "output folder: " + error);
  DeviceOrigin origin, earlier;
  if (!deviceOrigin(o.device.string(), origin, error)) return fail(o.device.string(), error);
  root = o.out / "device";
  const std::string record = (o.out / kDeviceOriginFile).string();
  const bool copied = pathExists(root.string(), error);
  if (!error.empty()) return fail(root.string(), error);
  if (copied && !o.fresh) {
    if (!readDeviceOrigin(record, earlier, error))
      return fail(record, error + ": which device tree " + root.string() +
                              " was copied from is unknown; --fresh copies " + o.device.string() + " there");
    if (earlier.source != origin.source)
      return fail(o.out.string(), "holds a copy of the device tree " + earlier.source + ", not of " +
                                      origin.source + "; --fresh starts over with it, or give another --out");
    if (earlier.fingerprint != origin.fingerprint)
      return fail(o.device.string(), "has changed since an earlier run copied it to " + root.string() +
                                         "; --fresh copies it again");
    printf("device tree %s (copied from %s by an earlier run; --fresh starts over)\n", root.string().c_str(),
           origin.source.c_str());
  } else {
    // The record goes first: a copy that fails half way must not pass for the earlier one.
    std::error_code ec;
    fs::remove(record, ec);
    if (!ec) fs::remove_all(root, ec);
    if (!ec) fs::copy(o.device, root, fs::copy_options::recursive, ec);
    if (ec) return fail(root.string(), "cannot copy the device tree there: " + ec.message());
    if (!writeDeviceOrigin(record, origin, error)) return fail(record, error);
    printf("device tree %s copied to %s\n", o.device.lexically_normal().string().c_str(), root.string().c_str());
  }
  std::vector<std::string> names;
  if (!listFolder(o.out.string(), names, error)) return fail(o.out.string(), error);
  size_t removed = 0;
  for (const auto& name : names) {
    std::error_code ec;
    if (!isOutputOfARun(name)) continue;
    fs::remove(o.out / name, ec);
    if (ec) return fail((o.out / name).string(), "cannot remove an earlier run's output: " + ec.message());
    ++removed;
  }
  if (removed > 0) printf("removed %zu outputs of an earlier run from %s\n", removed, o.out.string().c_str());
  // The cache folder exists on every device; a copied tree may lack it (git keeps no empty folder).
  if (!makeFolders((root / "data" / "vendor" / "display").string(), error)) return fail(root.string(), error);
  return kOk;
}

// Display names from the options or the property file; each must be one the file maps.
int choosePanels(const Options& o, const fs::path& root, PanelUnderTest (&panels)[2]) {
  PropertyFile prop;
  std::string error;
  const std::string propPath = (root / kPropertyFile).string();
  if (!prop.load(propPath, error)) return fail(propPath, error + " (the plugin would run in bypass)");
  for (int p = 0; p < 2; ++p) {
    std::string name = o.names[p];
    if (name.empty()) {
      for (const auto& [n, panel] : prop.displayNames())
        if (panel == static_cast<uint32_t>(p)) {
          name = n;
          break;
        }
    }
    if (name.empty())
      return fail(propPath, std::string("maps no display name to the ") + (p ? "secondary" : "primary") +
                                " panel; give --" + (p ? "secondary" : "primary") + " NAME");
    bool mapped = false;
    for (const auto& n : prop.displayNames()) mapped = mapped || n.first == name;
    if (!mapped)
      return fail(propPath, "does not map the display name '" + name + "' (it maps: " + prop.namesText() + ")");
    panels[p] = {name, prop.panelOf(name)};
  }
  return kOk;
}

int runSimulate(const std::vector<std::string>& args) {
  Options o;
  int rc = parseOptions(args, o);
  if (rc != kOk) return rc;
  if (o.printSession) {
    fputs(defaultSession(), stdout);
    return kOk;
  }
  std::vector<SessionStep> steps;
  if ((rc = loadSession(o, steps)) != kOk) return rc;
  fs::path root;
  if ((rc = prepareTree(o, root)) != kOk) return rc;
  PanelUnderTest panels[2];
  if ((rc = choosePanels(o, root, panels)) != kOk) return rc;

  const fs::path logPath = o.out / "session.log";
  std::string error;
  if (!writeWholeFile(logPath.string(), "", error)) return fail(logPath.string(), error);
  std::error_code rootEc, logEc;
  const std::string absRoot = fs::absolute(root, rootEc).string(), absLog = fs::absolute(logPath, logEc).string();
  if (rootEc || logEc) return fail(root.string(), (rootEc ? rootEc : logEc).message());
  setenv("PANELCORVANE_ROOT", absRoot.c_str(), 1);
  setenv("PANELCORVANE_LOG", absLog.c_str(), 1);
  setenv("PANELCORVANE_SLEEP_SCALE", "0", 0);

  LogWatch log;
  pchost::setLogSink([&log](int prio, const char* tag, const char* text) { log.add(prio, tag, text); });
  void* handle = dlopen(o.plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return fail(o.plugin.string(), std::string("cannot load the plugin: ") + dlerror());
  auto get = reinterpret_cast<postblend::GetScPostBlendInterfaceFn>(dlsym(handle, "GetScPostBlendInterface"));
  if (get == nullptr) return fail(o.plugin.string(), "no GetScPostBlendInterface");

  SimulateOutputs outputs(o.out);
  printf("plugin %s, panels '%s' (primary) and '%s' (secondary)\n", o.plugin.string().c_str(),
         panels[0].name.c_str(), panels[1].name.c_str());
  const auto t0 = std::chrono::steady_clock::now();
  SessionPlayer player(get, log, outputs, absRoot, panels);
  player.play(steps);
  player.finish();
  const double secs = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  pchost::setLogSink(nullptr);

  printf("\nsummary: %zu steps, %d frames, %d screen refreshes, %zu log lines (%s) in %.2f s\n", steps.size(),
         player.frames(), player.refreshes(), log.lines().size(), log.countsText().c_str(), secs);
  const bool written = outputs.finish(log.lines());
  printf("log: %s\n", logPath.string().c_str());
  for (const auto& name : player.notReady())
    fprintf(stderr, "panelcorvane simulate: %s: the tables never became ready (see %s)\n", name.c_str(),
            logPath.string().c_str());
  return player.notReady().empty() && written ? kOk : kBadInput;
}

Registrar reg({"simulate", "play the colour manager and the control services against the plugin",
               kHelp, runSimulate});

}  // namespace
}  // namespace pctool
