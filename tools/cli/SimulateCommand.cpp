// `panelcorvane simulate`: plays the colour manager and the control services against the real
// plugin library on a device tree, and tells what each step did.
#include <IQService.h>
#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>
#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <dlfcn.h>
#include <pchost/host.h>
#include <pchost/services.h>
#include <unistd.h>
#include <utils/String16.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

#include "snapdragoncolor/sc_color_records.h"
#include "snapdragoncolor/sc_post_blend_interface.h"
#include "tools/cli/Command.h"
#include "tools/cli/SimulateOutputs.h"
#include "tools/lib/Session.h"

namespace fs = std::filesystem;
using namespace snapdragoncolor;

namespace pctool {
namespace {

const char* kHelp = R"(usage: panelcorvane simulate [options]

Loads libPanelCorvane.so the way the colour manager does, registers a display service that
records refresh requests, and plays a session against a device tree: panels are initialised,
frames are sent as render-intent operations, brightness changes, and the HIDL and AIDL control
services are called. Each frame prints the table it got.

options:
  --device DIR     device tree to start from (default: examples/device of the source tree)
  --out DIR        output folder (default: simulate/ beside the tool). The device tree is
                   copied to OUT/device on the first run and used from there, so the table
                   cache written on the first run is loaded on the next one.
  --fresh          copy the device tree again (the cache is generated anew)
  --session FILE   session script to play (default: the built-in session)
  --print-session  print the built-in session and exit
  --plugin FILE    plugin library (default: libPanelCorvane.so beside the tool)
  --primary NAME   display name of the primary panel (default: read from the property file)
  --secondary NAME display name of the secondary panel (default: read from the property file)

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

fs::path exeDir() {
  std::error_code ec;
  fs::path p = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::current_path() : p.parent_path();
}

// Display names: keys of the property file whose value is a panel number.
void namesFromProperties(const fs::path& device, std::string* primary, std::string* secondary) {
  static const char* kKnown[] = {"LogLevel", "ParamVersion", "FWVersion", "PanelCalibration",
                                 "PanelNitsCalibration", "GammaCorrection", "CMDebug",
                                 "GCDisable", "IGCDisable", "GamutDisable", "PaConfigDisable",
                                 "DitherConfigDisable", "PaDitherConfigDisable", "inParam100nits"};
  std::ifstream in(device / "odm/etc/PanelCorvane/panelcorvane");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    size_t eq = line.find('=');
    if (eq == std::string::npos || eq == 0) continue;
    std::string key = line.substr(0, eq);
    bool known = false;
    for (const char* k : kKnown) known = known || key == k;
    if (known) continue;
    long v = strtol(line.c_str() + eq + 1, nullptr, 10);
    if (v >= 100 && v < 200) {
      if (secondary->empty()) *secondary = key;
    } else if (primary->empty()) {
      *primary = key;
    }
  }
  if (primary->empty()) *primary = "primary";
  if (secondary->empty()) *secondary = "secondary";
}

class RecordingDisplayService : public qService::BnQService {
 public:
  android::status_t dispatch(uint32_t command, const android::Parcel* in,
                             android::Parcel*) override {
    if (command == 20 && in != nullptr && in->readInt32() == 1) ++refreshes;
    return android::OK;
  }
  std::atomic<int> refreshes{0};
};

struct LogWatch {
  std::mutex mutex;
  std::vector<std::string> lines;  // "TAG: text"
  std::map<char, int> byPriority;
  bool has(const std::string& needle) {
    std::lock_guard<std::mutex> lock(mutex);
    for (const auto& l : lines)
      if (l.find(needle) != std::string::npos) return true;
    return false;
  }
  size_t size() {
    std::lock_guard<std::mutex> lock(mutex);
    return lines.size();
  }
};

const char* kAssetNames[] = {"PostBlendGamut", "PostBlendPCC", "PostBlendGC", "PostBlendIGC",
                             "PostBlendPa", "PostBlendDither", "PostBlendPaDither"};

struct Simulator {
  ScPostBlendInterface* panels[2] = {nullptr, nullptr};
  bool running[2] = {false, false};
  std::string names[2];
  GetScPostBlendInterfaceFn get = nullptr;
  LogWatch* log = nullptr;
  android::sp<RecordingDisplayService> display;
  SimulateOutputs* outputs = nullptr;
  int frames = 0;

  ScPostBlendInterface* panel(int i) {
    if (panels[i] == nullptr) panels[i] = get(2, 0);
    return panels[i];
  }

  void frame(const SessionStep& s) {
    ModeRenderInputParams input;
    input.color_mode.gamut = static_cast<uint32_t>(s.ints[0]);
    input.color_mode.intent = static_cast<uint32_t>(s.ints[1]);
    input.valid_meta_data = s.hdr;
    for (const char* n : kAssetNames) input.color_mode.hw_assets.push_back(n);
    HwConfigOutputParams output;
    auto gamut = std::make_shared<GamutConfig>();
    gamut->enabled = true;
    output.payload.emplace_back(kAssetNames[0], gamut);
    for (size_t i = 1; i < sizeof(kAssetNames) / sizeof(kAssetNames[0]); ++i) {
      auto rec = std::make_shared<HwConfigPayload>();
      rec->version = sizeof(HwConfigPayload);
      rec->enabled = true;
      output.payload.emplace_back(kAssetNames[i], rec);
    }
    ScPayload in, out;
    in.len = sizeof(input);
    in.payload = reinterpret_cast<uintptr_t>(&input);
    out.len = sizeof(output);
    out.payload = reinterpret_cast<uintptr_t>(&output);
    panel(s.panel)->ProcessOps(kScModeRenderIntent, in, &out);
    ++frames;

    std::string off;
    for (const auto& [name, rec] : output.payload)
      if (!rec->enabled) off += (off.empty() ? "" : ",") + name.substr(9);
    const lut3d_info& lut = gamut->gamut_info;
    std::string what;
    if (lut.num_entries == 0) {
      what = gamut->enabled ? "no table (output untouched)" : "no table, gamut off";
    } else {
      std::string file = outputs->recordTable(s.panel, lut);
      char buf[160];
      snprintf(buf, sizeof(buf), "table %u (%s)", lut.lut3d_id, file.c_str());
      what = buf;
    }
    printf("  frame %-9s gamut %2d intent %3d%s -> %s; blocks off: %s", names[s.panel].c_str(),
           s.ints[0], s.ints[1], s.hdr ? " hdr" : "", what.c_str(), off.empty() ? "none" : off.c_str());
  }

  // The worker answers refresh requests on its own thread; wait until the count settles.
  int settledRefreshes() {
    int last = display->refreshes;
    for (int stable = 0, i = 0; stable < 3 && i < 100; ++i) {
      std::this_thread::sleep_for(std::chrono::microseconds(300));
      int now = display->refreshes;
      stable = now == last ? stable + 1 : 0;
      last = now;
    }
    return last;
  }

  bool waitTables(int p) {
    std::string needle = "1-onLoad3dLut: panel:" + std::to_string(p) + " init (";
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (!log->has(needle)) {
      if (!running[p] || std::chrono::steady_clock::now() > until) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return log->has(needle + "1)");
  }

  int play(const std::vector<SessionStep>& steps) {
    for (const SessionStep& s : steps) {
      int before = display->refreshes;
      step(s);
      int after = settledRefreshes();
      if (s.kind != SessionStep::kEcho) {
        if (after != before) printf("; screen refresh");
        printf("\n");
      }
    }
    return 0;
  }

  void step(const SessionStep& s) {
    using vendor::display::PanelCorvane::V1_0::IPanelCorvane;
    using aidl::vendor::tarnu::hardware::display::MixLut3D::IMixLut3D;
    {
      switch (s.kind) {
        case SessionStep::kEcho:
          printf("%s\n", s.text.c_str());
          break;
        case SessionStep::kInit:
          panel(s.panel)->Init(names[s.panel]);
          running[s.panel] = true;
          printf("  init %s", names[s.panel].c_str());
          break;
        case SessionStep::kDeInit:
          if (panels[s.panel]) panels[s.panel]->DeInit();
          running[s.panel] = false;
          printf("  deinit %s", names[s.panel].c_str());
          break;
        case SessionStep::kWaitTables: {
          bool ok = waitTables(s.panel);
          const char* from = log->has("1-onLoad3dLut: generateCfgFile done!") ? "generated" : "cache";
          printf("  tables of %s: %s", names[s.panel].c_str(),
                 ok ? (std::string("ready (") + from + ")").c_str() : "NOT ready");
          break;
        }
        case SessionStep::kBrightness: {
          double v = s.fraction;
          ScPayload p;
          p.prop = kSetPanelBrightness;
          p.len = sizeof(v);
          p.payload = reinterpret_cast<uintptr_t>(&v);
          for (int i = 0; i < 2; ++i)
            if (running[i]) panels[i]->SetProperty(p);
          printf("  brightness %.2f", v);
          break;
        }
        case SessionStep::kNeedsUpdate: {
          bool needs = false;
          ScPayload p;
          p.prop = kNeedsUpdate;
          p.len = sizeof(needs);
          p.payload = reinterpret_cast<uintptr_t>(&needs);
          panel(s.panel)->GetProperty(&p);
          printf("  needs-update %s: %s", names[s.panel].c_str(), needs ? "yes" : "no");
          break;
        }
        case SessionStep::kFrame:
          frame(s);
          break;
        case SessionStep::kHidlSet:
        case SessionStep::kHidlGet: {
          android::sp<IPanelCorvane> hidl = IPanelCorvane::getService("default");
          if (hidl == nullptr) {
            printf("  %s: HIDL service not registered", s.text.c_str());
            break;
          }
          std::vector<int32_t> args(s.ints.begin() + 1, s.ints.end());
          if (s.kind == SessionStep::kHidlSet) {
            hidl->configureSet(s.ints[0], args);
            printf("  hidl configureSet %d%s", s.ints[0], join(args).c_str());
          } else {
            bool answered = false;
            hidl->configureGet(s.ints[0], args, [&](int32_t value, const auto&) {
              answered = true;
              printf("  hidl configureGet %d%s -> %d", s.ints[0], join(args).c_str(), value);
            });
            if (!answered) printf("  hidl configureGet %d%s -> no answer", s.ints[0], join(args).c_str());
          }
          break;
        }
        case SessionStep::kAidlSet: {
          std::string name = std::string(IMixLut3D::descriptor) + "/default";
          auto aidl = IMixLut3D::fromBinder(ndk::SpAIBinder(AServiceManager_checkService(name.c_str())));
          if (!aidl) {
            printf("  aidl set: service not registered");
            break;
          }
          int32_t ret = 0;
          aidl->set(s.ints[0], s.ints[1], &ret);
          printf("  aidl set disp %d cmd %d -> %d", s.ints[0], s.ints[1], ret);
          break;
        }
      }
    }
  }

  static std::string join(const std::vector<int32_t>& v) {
    std::string s;
    for (int x : v) s += " " + std::to_string(x);
    return s;
  }
};

int runSimulate(const std::vector<std::string>& args) {
  fs::path here = exeDir();
  fs::path device = here / ".." / "examples" / "device";
#ifdef PC_SOURCE_DIR
  if (!fs::is_directory(device)) device = fs::path(PC_SOURCE_DIR) / "examples" / "device";
#endif
  fs::path out = here / "simulate";
  fs::path plugin = here / "libPanelCorvane.so";
  std::string sessionFile, primary, secondary;
  bool fresh = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string* dst) {
      if (i + 1 >= args.size()) return false;
      *dst = args[++i];
      return true;
    };
    std::string v;
    if (a == "--fresh") fresh = true;
    else if (a == "--print-session") { fputs(defaultSession(), stdout); return kOk; }
    else if (a == "--device" && value(&v)) device = v;
    else if (a == "--out" && value(&v)) out = v;
    else if (a == "--plugin" && value(&v)) plugin = v;
    else if (a == "--session" && value(&sessionFile)) {}
    else if (a == "--primary" && value(&primary)) {}
    else if (a == "--secondary" && value(&secondary)) {}
    else {
      fprintf(stderr, "simulate: bad argument '%s' (see --help)\n", a.c_str());
      return kUsage;
    }
  }

  std::string script = defaultSession();
  if (!sessionFile.empty()) {
    std::ifstream in(sessionFile);
    if (!in) {
      fprintf(stderr, "simulate: %s: cannot open the session script\n", sessionFile.c_str());
      return kBadInput;
    }
    std::stringstream ss;
    ss << in.rdbuf();
    script = ss.str();
  }
  std::vector<SessionStep> steps;
  std::string error;
  if (!parseSession(script, &steps, &error)) {
    fprintf(stderr, "simulate: %s: %s\n", sessionFile.empty() ? "built-in session" : sessionFile.c_str(),
            error.c_str());
    return kBadInput;
  }
  if (!fs::is_directory(device)) {
    fprintf(stderr, "simulate: %s: no such device tree\n", device.string().c_str());
    return kBadInput;
  }

  std::error_code ec;
  fs::create_directories(out, ec);
  // Outputs of an earlier run would be mistaken for this one's.
  for (const auto& entry : fs::directory_iterator(out, ec)) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() == ".cube" || (name.rfind("report-", 0) == 0 && entry.path().extension() == ".png"))
      fs::remove(entry.path(), ec);
  }
  fs::path root = out / "device";
  if (fresh) fs::remove_all(root, ec);
  if (!fs::exists(root)) {
    fs::copy(device, root, fs::copy_options::recursive, ec);
    if (ec) {
      fprintf(stderr, "simulate: %s: cannot copy the device tree: %s\n", device.string().c_str(),
              ec.message().c_str());
      return kBadInput;
    }
    printf("device tree %s copied to %s\n", device.lexically_normal().string().c_str(), root.string().c_str());
  } else {
    printf("device tree %s (from an earlier run; --fresh starts over)\n", root.string().c_str());
  }
  // The cache folder exists on every device; a copied tree may lack it (git keeps no empty folder).
  fs::create_directories(root / "data" / "vendor" / "display", ec);
  if (primary.empty() || secondary.empty()) namesFromProperties(root, &primary, &secondary);

  fs::path logPath = out / "session.log";
  { std::ofstream truncate(logPath, std::ios::trunc); }
  setenv("PANELCORVANE_ROOT", fs::absolute(root).string().c_str(), 1);
  setenv("PANELCORVANE_LOG", fs::absolute(logPath).string().c_str(), 1);
  setenv("PANELCORVANE_SLEEP_SCALE", "0", 0);

  LogWatch log;
  pchost::setLogSink([&log](int prio, const char* tag, const char* text) {
    static const char kLetters[] = "??VDIWEF";
    std::lock_guard<std::mutex> lock(log.mutex);
    log.lines.push_back(std::string(tag) + ": " + text);
    log.byPriority[prio >= 2 && prio <= 7 ? kLetters[prio] : '?']++;
  });

  void* handle = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    fprintf(stderr, "simulate: %s: cannot load the plugin: %s\n", plugin.string().c_str(), dlerror());
    return kBadInput;
  }
  Simulator sim;
  sim.get = reinterpret_cast<GetScPostBlendInterfaceFn>(dlsym(handle, "GetScPostBlendInterface"));
  if (sim.get == nullptr) {
    fprintf(stderr, "simulate: %s: no GetScPostBlendInterface\n", plugin.string().c_str());
    return kBadInput;
  }
  sim.names[0] = primary;
  sim.names[1] = secondary;
  sim.log = &log;
  sim.display = android::sp<RecordingDisplayService>::make();
  android::defaultServiceManager()->addService(android::String16("display.qservice"), sim.display);
  SimulateOutputs outputs(out);
  sim.outputs = &outputs;

  printf("plugin %s, panels '%s' (primary) and '%s' (secondary)\n", plugin.string().c_str(),
         primary.c_str(), secondary.c_str());
  auto t0 = std::chrono::steady_clock::now();
  sim.play(steps);
  for (int i = 0; i < 2; ++i)
    if (sim.running[i]) sim.panels[i]->DeInit();
  double secs = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();

  // Services hold the plugin objects; drop them before the objects go.
  pchost::clearServices();
  for (auto* p : sim.panels) delete p;
  pchost::setLogSink(nullptr);

  printf("\nsummary: %zu steps, %d frames, %d screen refreshes, %zu log lines (", steps.size(),
         sim.frames, sim.display->refreshes.load(), log.lines.size());
  bool first = true;
  for (auto [letter, n] : log.byPriority) {
    printf("%s%c %d", first ? "" : ", ", letter, n);
    first = false;
  }
  printf(") in %.2f s\n", secs);
  outputs.finish(log.lines, primary, secondary);
  printf("log: %s\n", logPath.string().c_str());
  return kOk;
}

Registrar reg({"simulate", "play the colour manager and the control services against the plugin",
               kHelp, runSimulate});

}  // namespace
}  // namespace pctool
