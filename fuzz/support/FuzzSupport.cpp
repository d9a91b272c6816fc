#include "fuzz/support/FuzzSupport.h"

#include <pchost/host.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tools/lib/device/SyntheticDevice.h"

namespace pcfuzz {

const std::string& quietPlatform() {
  static const std::string root = [] {
    pchost::setLogEcho(std::getenv("PC_FUZZ_LOG") != nullptr);
    pchost::setSleepScale(0);
    char pattern[] = "/tmp/pcfuzz-XXXXXX";
    const std::string dir = mkdtemp(pattern) != nullptr ? pattern : "/tmp/pcfuzz";
    std::filesystem::create_directories(dir);
    pchost::setRootOverride(dir.c_str());
    return dir;
  }();
  return root;
}

void writeDeviceFile(const std::string& devicePath, const uint8_t* data, size_t size) {
  const std::filesystem::path host = quietPlatform() + devicePath;
  std::filesystem::create_directories(host.parent_path());
  std::ofstream out(host, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void removeDeviceFile(const std::string& devicePath) {
  std::error_code ignored;
  std::filesystem::remove(quietPlatform() + devicePath, ignored);
}

TwoPanels& runningDevice() {
  static TwoPanels* device = [] {
    std::string error;
    const bool written = pctool::writeSyntheticDevice(quietPlatform(), {}, &error);
    std::filesystem::create_directories(quietPlatform() + "/data/vendor/display");
    auto* d = new TwoPanels{new postblend::PanelCorvane(), new postblend::PanelCorvane()};
    d->primary->Init("PanelCorvane_primary");
    d->secondary->Init("PanelCorvane_secondary");
    // Once the workers are idle the loading jobs have ended and let go of the tables.
    if (!written || !pchost::waitForIdleLoopers(60) || !d->primary->tablesReady() ||
        !d->secondary->tablesReady()) {
      std::fprintf(stderr, "the device's tables never became ready %s\n", error.c_str());
      std::abort();
    }
    return d;
  }();
  return *device;
}

}  // namespace pcfuzz
