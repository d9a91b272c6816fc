// The fuzz targets' support on a device: no host layer, so no re-rooted paths, no scaled pauses
// and no device files (their targets are host-only); the services run on the device's own data.
#include "fuzz/support/FuzzSupport.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace pcfuzz {

const std::string& quietPlatform() {
  static const std::string scratch = "/data/local/tmp";
  return scratch;
}

TwoPanels& runningDevice() {
  static TwoPanels* device = [] {
    auto* d = new TwoPanels{new postblend::PanelCorvane(), new postblend::PanelCorvane()};
    d->primary->Init("PanelCorvane_primary");
    d->secondary->Init("PanelCorvane_secondary");
    // Two minutes at most for the device's own tables; the loading jobs log their last line
    // after the flag, so give them time to let go of the tables too.
    const auto ready = [d] { return d->primary->tablesReady() && d->secondary->tablesReady(); };
    for (int ms = 0; ms < 120000 && !ready(); ++ms)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (!ready()) {
      std::fprintf(stderr, "the panels' tables never became ready\n");
      std::abort();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return d;
  }();
  return *device;
}

}  // namespace pcfuzz
