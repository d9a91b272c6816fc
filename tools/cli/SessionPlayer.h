// Plays a session script against the loaded plugin: the colour manager's calls on the two
// panel objects, and the HIDL and AIDL services as other processes call them. Prints one line
// per step; remembers what the plugin logged (with the logging thread) and which panels'
// tables never became ready.
#pragma once

#include <IQService.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "postblend/post_blend_interface.h"
#include "tools/cli/SimulateOutputs.h"
#include "tools/lib/device/Session.h"
#include "tools/lib/device/TableJobLog.h"

namespace pctool {

class RecordingDisplayService : public qService::BnQService {
 public:
  android::status_t dispatch(uint32_t command, const android::Parcel* in, android::Parcel*) override;
  std::atomic<int> refreshes{0};
};

// The plugin's log lines as they arrive, from any thread.
class LogWatch {
 public:
  void add(int prio, const char* tag, const char* text);
  bool has(const std::string& needle);
  size_t size();
  // The text of the last line from index `from` on that contains `needle`, or "".
  std::string lastSince(size_t from, const std::string& needle);
  std::vector<PluginLogLine> lines();
  // Lines per priority letter, for the summary: "D 189, E 45".
  std::string countsText();

 private:
  std::mutex mMutex;
  std::vector<PluginLogLine> mLines;
};

struct PanelUnderTest {
  std::string name;         // display name given to Init
  uint32_t pluginPanel = 0;  // the panel index the property file gives the name
};

class SessionPlayer {
 public:
  SessionPlayer(postblend::GetScPostBlendInterfaceFn get, LogWatch& log, SimulateOutputs& outputs,
                const std::string& deviceRoot, const PanelUnderTest (&panels)[2]);
  ~SessionPlayer();

  void play(const std::vector<SessionStep>& steps);
  // DeInits running panels, drops the services' references, deletes the plugin objects.
  void finish();

  int frames() const { return mFrames; }
  int refreshes() const { return mDisplay->refreshes.load(); }
  // Display names whose tables were waited for and never became ready.
  const std::vector<std::string>& notReady() const { return mNotReady; }

 private:
  postblend::ScPostBlendInterface* panel(int i);
  void step(const SessionStep& s);
  void frame(const SessionStep& s);
  void waitTables(int p);
  void control(const SessionStep& s);
  int settledRefreshes();

  postblend::GetScPostBlendInterfaceFn mGet;
  LogWatch& mLog;
  SimulateOutputs& mOutputs;
  std::string mDeviceRoot;
  PanelUnderTest mPanels[2];
  postblend::ScPostBlendInterface* mObjects[2] = {nullptr, nullptr};
  bool mRunning[2] = {false, false};
  size_t mInitMark[2] = {0, 0};  // log size when the panel's last Init began
  android::sp<RecordingDisplayService> mDisplay;
  int mFrames = 0;
  std::vector<std::string> mNotReady;
  bool mFinished = false;
};

}  // namespace pctool
