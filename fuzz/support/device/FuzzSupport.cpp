// The fuzz targets' support on a device: no host layer, so no re-rooted paths and no scaled
// pauses. Targets that place device files (writeDeviceFile) are host-only and not built here; the
// service targets run against the device's own panel data.
#include "fuzz/support/FuzzSupport.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "base/PanelCorvaneBase.h"
#include "core/PanelCorvane.h"

namespace pcfuzz {

const std::string& quietPlatform() {
  static const std::string scratch = "/data/local/tmp";
  return scratch;
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
    auto* d = new TwoPanels{new postblend::PanelCorvane(), new postblend::PanelCorvane()};
    d->primary->Init("PanelCorvane_primary");
    d->secondary->Init("PanelCorvane_secondary");
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (!(d->primary->tablesReady() && d->secondary->tablesReady())) {
      if (std::chrono::steady_clock::now() > until) {
        std::fprintf(stderr, "the panels' tables never became ready\n");
        std::abort();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    // The loading jobs log their last line after the flag; give them time to let go of the tables.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return d;
  }();
  return *device;
}

}  // namespace pcfuzz
