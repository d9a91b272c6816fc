#include "tools/cli/SessionPlayer.h"

#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>
#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <pchost/host.h>
#include <pchost/services.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utils/String16.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <thread>

#include "postblend/color_records.h"
#include "tools/lib/device/DataSource.h"
#include "tools/lib/device/StaleCache.h"

using namespace postblend;

namespace pctool {

namespace {
const char* const kAssetNames[] = {"PostBlendGamut", "PostBlendPCC", "PostBlendGC", "PostBlendIGC",
                                   "PostBlendPa", "PostBlendDither", "PostBlendPaDither"};

std::string join(const std::vector<int32_t>& v) {
  std::string s;
  for (int x : v) s += " " + std::to_string(x);
  return s;
}
}  // namespace

android::status_t RecordingDisplayService::dispatch(uint32_t command, const android::Parcel* in, android::Parcel*) {
  if (command == 20 && in != nullptr && in->readInt32() == 1) ++refreshes;
  return android::OK;
}

void LogWatch::add(int prio, const char* tag, const char* text) {
  static const char kLetters[] = "??VDIWEF";
  PluginLogLine l;
  l.tid = static_cast<long>(syscall(SYS_gettid));  // the sink runs on the logging thread
  l.level = prio >= 2 && prio <= 7 ? kLetters[prio] : '?';
  l.tag = tag;
  l.text = text;
  std::lock_guard<std::mutex> lock(mMutex);
  mLines.push_back(std::move(l));
}

bool LogWatch::has(const std::string& needle) {
  std::lock_guard<std::mutex> lock(mMutex);
  for (const auto& l : mLines)
    if (l.text.find(needle) != std::string::npos) return true;
  return false;
}

size_t LogWatch::size() {
  std::lock_guard<std::mutex> lock(mMutex);
  return mLines.size();
}

std::string LogWatch::lastSince(size_t from, const std::string& needle) {
  std::lock_guard<std::mutex> lock(mMutex);
  for (size_t i = mLines.size(); i > from; --i)
    if (mLines[i - 1].text.find(needle) != std::string::npos) return mLines[i - 1].text;
  return "";
}

std::vector<PluginLogLine> LogWatch::lines() {
  std::lock_guard<std::mutex> lock(mMutex);
  return mLines;
}

std::string LogWatch::countsText() {
  std::map<char, int> counts;
  std::lock_guard<std::mutex> lock(mMutex);
  for (const auto& l : mLines) ++counts[l.level];
  std::string s;
  for (auto [letter, n] : counts) s += (s.empty() ? "" : ", ") + std::string(1, letter) + " " + std::to_string(n);
  return s;
}

SessionPlayer::SessionPlayer(GetScPostBlendInterfaceFn get, LogWatch& log, SimulateOutputs& outputs,
                             const std::string& deviceRoot, const PanelUnderTest (&panels)[2])
    : mGet(get), mLog(log), mOutputs(outputs), mDeviceRoot(deviceRoot) {
  mPanels[0] = panels[0];
  mPanels[1] = panels[1];
  mDisplay = android::sp<RecordingDisplayService>::make();
  android::defaultServiceManager()->addService(android::String16("display.qservice"), mDisplay);
}

SessionPlayer::~SessionPlayer() { finish(); }

ScPostBlendInterface* SessionPlayer::panel(int i) {
  if (mObjects[i] == nullptr) mObjects[i] = mGet(2, 0);
  return mObjects[i];
}

void SessionPlayer::finish() {
  if (mFinished) return;
  mFinished = true;
  for (int i = 0; i < 2; ++i)
    if (mRunning[i]) mObjects[i]->DeInit();
  // Services hold the plugin objects; drop them before the objects go.
  pchost::clearServices();
  for (auto*& p : mObjects) {
    delete p;
    p = nullptr;
  }
}

void SessionPlayer::play(const std::vector<SessionStep>& steps) {
  for (const SessionStep& s : steps) {
    const int before = mDisplay->refreshes;
    step(s);
    const int after = settledRefreshes();
    if (s.kind != SessionStep::kEcho) {
      if (after != before) printf("; screen refresh");
      printf("\n");
    }
  }
}

// The worker answers refresh requests on its own thread: the count is final once every message
// loop has run what was posted to it.
int SessionPlayer::settledRefreshes() {
  pchost::waitForIdleLoopers();
  return mDisplay->refreshes;
}

void SessionPlayer::frame(const SessionStep& s) {
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
  ++mFrames;

  std::string off;
  for (const auto& [name, rec] : output.payload)
    if (!rec->enabled) off += (off.empty() ? "" : ",") + name.substr(9);
  const lut3d_info& lut = gamut->gamut_info;
  std::string what;
  if (lut.num_entries == 0) {
    what = gamut->enabled ? "no table (output untouched)" : "no table, gamut off";
  } else {
    what = "table " + std::to_string(lut.lut3d_id) + " (" + mOutputs.recordTable(s.panel, lut) + ")";
  }
  printf("  frame %-9s gamut %2d intent %3d%s -> %s; blocks off: %s", mPanels[s.panel].name.c_str(), s.ints[0],
         s.ints[1], s.hdr ? " hdr" : "", what.c_str(), off.empty() ? "none" : off.c_str());
}

void SessionPlayer::waitTables(int p) {
  const PanelUnderTest& pu = mPanels[p];
  // The loading job is a message of the panel's worker: once every loop is idle it has ended.
  if (mRunning[p]) pchost::waitForIdleLoopers(120);
  const std::string verdict =
      mLog.lastSince(mInitMark[p], "1-onLoad3dLut: panel:" + std::to_string(pu.pluginPanel) + " init (");
  const bool ready = !verdict.empty() && verdict.find("init (1)") != std::string::npos;
  if (mRunning[p] && verdict.empty()) {
    // An object initialised before keeps its ready flag, while DeInit released the tables for
    // good: no job runs and the panel serves no table.
    mNotReady.push_back(pu.name);
    printf("  tables of %s: NOT ready (initialised again: no loading job ran, the tables released "
           "by its DeInit stay released)",
           pu.name.c_str());
    return;
  }
  const std::vector<TableJob> jobs = tableJobs(mLog.lines());
  const TableJob* job = lastJobOf(jobs, pu.name);
  if (!ready) {
    mNotReady.push_back(pu.name);
    std::string why = job && !job->odfFaults.empty() ? " (" + job->odfFaults.back() + ")" : "";
    printf("  tables of %s: NOT ready%s", pu.name.c_str(), why.c_str());
    return;
  }
  uint32_t source = 0;
  std::string error;
  const int trailer = readCacheSource(mDeviceRoot, pu.pluginPanel, source, error) ? static_cast<int>(source) : -1;
  const DataSource ds = describeDataSource(trailer, job, pu.pluginPanel, pu.name);
  const char* from = job && job->fromCache ? "cache" : job && job->generated ? "generated" : "earlier";
  printf("  tables of %s: ready (%s); optical data: %s", pu.name.c_str(), from, ds.statement().c_str());
  // The plugin takes such a cache as it is; the workbench says what it holds.
  const std::string stale = job && job->fromCache ? staleCacheNote(mDeviceRoot, pu.name, pu.pluginPanel) : "";
  if (!stale.empty()) printf("\n  WARNING: %s: %s", pu.name.c_str(), stale.c_str());
}

void SessionPlayer::control(const SessionStep& s) {
  using vendor::display::PanelCorvane::V1_0::IPanelCorvane;
  using aidl::vendor::tarnu::hardware::display::MixLut3D::IMixLut3D;
  if (s.kind == SessionStep::kAidlSet) {
    const std::string name = std::string(IMixLut3D::descriptor) + "/default";
    auto aidl = IMixLut3D::fromBinder(ndk::SpAIBinder(AServiceManager_checkService(name.c_str())));
    if (!aidl) {
      printf("  aidl set: service not registered");
      return;
    }
    int32_t ret = 0;
    aidl->set(s.ints[0], s.ints[1], &ret);
    printf("  aidl set disp %d cmd %d -> %d", s.ints[0], s.ints[1], ret);
    return;
  }
  android::sp<IPanelCorvane> hidl = IPanelCorvane::getService("default");
  if (hidl == nullptr) {
    printf("  %s: HIDL service not registered", s.text.c_str());
    return;
  }
  std::vector<int32_t> args(s.ints.begin() + 1, s.ints.end());
  if (s.kind == SessionStep::kHidlSet) {
    hidl->configureSet(s.ints[0], args);
    printf("  hidl configureSet %d%s", s.ints[0], join(args).c_str());
    return;
  }
  bool answered = false;
  hidl->configureGet(s.ints[0], args, [&](int32_t value, const auto&) {
    answered = true;
    printf("  hidl configureGet %d%s -> %d", s.ints[0], join(args).c_str(), value);
  });
  if (!answered) printf("  hidl configureGet %d%s -> no answer", s.ints[0], join(args).c_str());
}

void SessionPlayer::step(const SessionStep& s) {
  const std::string& name = mPanels[s.panel].name;
  switch (s.kind) {
    case SessionStep::kEcho:
      printf("%s\n", s.text.c_str());
      break;
    case SessionStep::kInit:
      mInitMark[s.panel] = mLog.size();
      panel(s.panel)->Init(name);
      mRunning[s.panel] = true;
      printf("  init %s", name.c_str());
      break;
    case SessionStep::kDeInit:
      if (mObjects[s.panel]) mObjects[s.panel]->DeInit();
      mRunning[s.panel] = false;
      printf("  deinit %s", name.c_str());
      break;
    case SessionStep::kWaitTables:
      waitTables(s.panel);
      break;
    case SessionStep::kBrightness: {
      double v = s.fraction;
      ScPayload p;
      p.prop = kSetPanelBrightness;
      p.len = sizeof(v);
      p.payload = reinterpret_cast<uintptr_t>(&v);
      for (int i = 0; i < 2; ++i)
        if (mRunning[i]) mObjects[i]->SetProperty(p);
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
      printf("  needs-update %s: %s", name.c_str(), needs ? "yes" : "no");
      break;
    }
    case SessionStep::kFrame:
      frame(s);
      break;
    case SessionStep::kHidlSet:
    case SessionStep::kHidlGet:
    case SessionStep::kAidlSet:
      control(s);
      break;
  }
}

}  // namespace pctool
