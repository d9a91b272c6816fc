// Controls of the host platform layer. Only the plugin's device-access shim (base/DeviceIo.h,
// host branch), host tools and tests include this; nothing of it exists on a device.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace pchost {

// Log: every line also goes to the sink when one is installed (tests assert exact lines).
// `text` is without its trailing line feed.
using LogSink = std::function<void(int prio, const char* tag, const char* text)>;
void setLogSink(LogSink sink);  // empty function removes it
void setLogEcho(bool on);       // false: lines go only to the sink (quiet tests)

// Trace.
void setTraceTags(uint64_t tags);
struct TraceEvent {
  bool begin;
  std::string name;
};
std::vector<TraceEvent> takeTraceEvents();

// Device paths: "/odm/x" becomes $PANELCORVANE_ROOT + "/odm/x" when the variable is set.
std::string mapPath(const char* devicePath);
int openPath(const char* devicePath, int flags, int mode = 0);
FILE* fopenPath(const char* devicePath, const char* mode);
// The display driver's ioctls, emulated from the text file ROOT/dev/tarnu_display; other
// requests go to the real ioctl.
int ioctlDevice(int fd, unsigned long request, void* arg);
// Platform pause: seconds * $PANELCORVANE_SLEEP_SCALE (default 1, 0 means no pause).
void sleepSeconds(double seconds);
// Overrides for tests (take precedence over the environment). Negative scale or null root
// clears the override.
void setSleepScale(double scale);
void setRootOverride(const char* root);

// Message loops: waits until no looper of the process has a message due or a handler running,
// so a caller knows the work its calls posted is done (a refresh answered, a table job ended)
// without guessing a time. Delayed messages not yet due do not count. False when `timeoutSeconds`
// passed first.
bool waitForIdleLoopers(double timeoutSeconds = 60);

}  // namespace pchost
