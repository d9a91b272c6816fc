#include "fuzz/support/FuzzSupport.h"

#include <pchost/host.h>
#include <pchost/services.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "backend/PanelCorvaneBE.h"
#include "base/PanelCorvaneBase.h"
#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pcfuzz {

const std::string& quietPlatform() {
  static const std::string root = [] {
    pchost::setLogEcho(std::getenv("PC_FUZZ_LOG") != nullptr);
    pchost::setSleepScale(0);
    char pattern[] = "/tmp/pcfuzz-XXXXXX";
    const char* made = mkdtemp(pattern);
    std::string dir = made != nullptr ? made : "/tmp/pcfuzz";
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

void writeDeviceFile(const std::string& devicePath, const std::string& text) {
  writeDeviceFile(devicePath, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

void removeDeviceFile(const std::string& devicePath) {
  std::error_code ignored;
  std::filesystem::remove(quietPlatform() + devicePath, ignored);
}

void resetSharedState() {
  using B = postblend::PanelCorvaneBase;
  B::sDebug = 1;
  B::sIsByPass = false;
  B::sBrightness = 0;
  B::sCFGMode = -1;
  B::sDEStatus = -1;
  B::sNeedUpdate = false;
  B::sIsLut3dHook = false;
  B::sCurrentPanel = 0;
}

TwoPanels& runningDevice() {
  static TwoPanels* device = [] {
    const std::string& root = quietPlatform();
    std::string error;
    if (!pctool::writeSyntheticDevice(root, {}, &error)) {
      std::fprintf(stderr, "cannot write the device: %s\n", error.c_str());
      std::abort();
    }
    std::filesystem::create_directories(root + "/data/vendor/display");
    auto* d = new TwoPanels{new postblend::PanelCorvane(), new postblend::PanelCorvane()};
    d->primary->Init("PanelCorvane_primary");
    d->secondary->Init("PanelCorvane_secondary");
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!(d->primary->tablesReady() && d->secondary->tablesReady() &&
             postblend::PanelCorvaneBase::sIsHidlRegitsered.load())) {
      if (std::chrono::steady_clock::now() > until) {
        std::fprintf(stderr, "the device's tables never became ready\n");
        std::abort();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    pchost::waitForIdleLoopers();  // the loading jobs have let go of the tables
    return d;
  }();
  return *device;
}

}  // namespace pcfuzz
