// Device files, the display driver and pauses on a development machine.
#include <fcntl.h>
#include <pchost/host.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "tarnu_display/panel_ioctl.h"

namespace {

using tarnu_display::kSerialArgSize;
constexpr unsigned long kSerialNumberIoctl = tarnu_display::kPanelIoctlGetSerialNumber;
constexpr size_t kMaxDriverFile = 64 * 1024;

std::mutex gOverrideMutex;
std::string gRootOverride;
bool gHasRootOverride = false;
std::atomic<double> gSleepScaleOverride{-1.0};

std::string root() {
  {
    std::lock_guard<std::mutex> lock(gOverrideMutex);
    if (gHasRootOverride) return gRootOverride;
  }
  const char* env = getenv("PANELCORVANE_ROOT");
  return env ? env : "";
}

}  // namespace

namespace pchost {

std::string mapPath(const char* devicePath) {
  if (devicePath == nullptr) return "";
  std::string r = root();
  if (r.empty() || devicePath[0] != '/') return devicePath;
  while (!r.empty() && r.back() == '/') r.pop_back();
  return r + devicePath;
}

int openPath(const char* devicePath, int flags, int mode) {
  return ::open(mapPath(devicePath).c_str(), flags, mode);
}

FILE* fopenPath(const char* devicePath, const char* mode) {
  return ::fopen(mapPath(devicePath).c_str(), mode);
}

int ioctlDevice(int fd, unsigned long request, void* arg) {
  if (request != kSerialNumberIoctl) return ::ioctl(fd, request, arg);
  if (arg == nullptr) return -1;
  // The emulated driver: line k of the device file is panel k's serial number.
  auto* buf = static_cast<unsigned char*>(arg);
  uint32_t panel = 0;
  std::memcpy(&panel, buf, sizeof(panel));
  std::string content;
  char chunk[1024];
  off_t pos = 0;
  for (;;) {
    ssize_t n = ::pread(fd, chunk, sizeof(chunk), pos);
    if (n <= 0) break;
    content.append(chunk, static_cast<size_t>(n));
    pos += n;
    if (content.size() > kMaxDriverFile) break;
  }
  size_t start = 0;
  for (uint32_t line = 0; line < panel; ++line) {
    size_t nl = content.find('\n', start);
    if (nl == std::string::npos) return -1;
    start = nl + 1;
  }
  size_t end = content.find('\n', start);
  std::string serial = content.substr(start, end == std::string::npos ? std::string::npos : end - start);
  if (!serial.empty() && serial.back() == '\r') serial.pop_back();
  std::memset(buf, 0, kSerialArgSize);
  std::memcpy(buf, serial.data(), std::min(serial.size(), kSerialArgSize - 1));
  return 0;
}

void sleepSeconds(double seconds) {
  double scale = gSleepScaleOverride.load(std::memory_order_relaxed);
  if (scale < 0) {
    const char* env = getenv("PANELCORVANE_SLEEP_SCALE");
    scale = env ? atof(env) : 1.0;
    if (!(scale >= 0)) scale = 1.0;
  }
  double total = seconds * scale;
  if (total <= 0) return;
  std::this_thread::sleep_for(std::chrono::duration<double>(total));
}

void setSleepScale(double scale) { gSleepScaleOverride.store(scale, std::memory_order_relaxed); }

void setRootOverride(const char* r) {
  std::lock_guard<std::mutex> lock(gOverrideMutex);
  gHasRootOverride = r != nullptr;
  gRootOverride = r ? r : "";
}

}  // namespace pchost
