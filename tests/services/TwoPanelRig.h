// A running two-panel device for the tests that let the colour manager's threads, the workers
// and the binder threads loose on the plugin at once: both panels with their tables, the
// tables a frame may legitimately receive, and frames that check what they got.
#pragma once

#include <IQService.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <gtest/gtest.h>
#include <utils/String16.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "backend/PanelCorvaneBE.h"
#include "cache/DeltaApply.h"
#include "cache/Lut3DCacheManager.h"
#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pctest {

// Round and cycle counts come from the environment so that CI runs small storms and a
// developer can run large ones; `def` is the CI size.
inline int envCount(const char* name, int def) {
  const char* v = std::getenv(name);
  const long n = v != nullptr ? std::strtol(v, nullptr, 10) : 0;
  return n > 0 ? static_cast<int>(n) : def;
}

inline std::string bytesOf(const postblend::lut3d_info& t) {
  return std::string(reinterpret_cast<const char*>(&t), sizeof(t));
}

// Every table a frame of one panel may receive: the tables as loaded or generated, and each
// full-brightness table as interpolated for the brightness levels a test sets.
class TableWitness {
 public:
  void capture(unsigned panel, const std::vector<uint32_t>& levels) {
    using postblend::Lut3DCacheManager;
    std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(panel));
    postblend::lut3d_info* luts = nullptr;
    const int n = Lut3DCacheManager::getLutArrayPointer(panel, &luts);
    const int32_t* deltas = Lut3DCacheManager::slut3dDeltaPanel[panel];
    ASSERT_TRUE(n > 0 && deltas != nullptr);
    auto scratch = std::make_unique<postblend::lut3d_info>();
    for (int i = 0; i < n; ++i) {
      if (i % 2 == 0) {
        mTables[i].insert(bytesOf(luts[i]));  // a 100-nit table as it is
        continue;
      }
      for (uint32_t level : levels) {  // a full-brightness one as interpolated for each level
        const uint32_t w = level < 3500 ? 4096 : (level * 4096u - 14336000u) / 4691u;
        std::memcpy(scratch.get(), &luts[i], sizeof(*scratch));
        postblend::applyDeltaQ12(luts[i - 1], *scratch,
                                 deltas + 3 * postblend::kLut3dEntries * (i / 2), w);
        mTables[i].insert(bytesOf(*scratch));
      }
    }
  }
  bool valid(const postblend::lut3d_info& t) const {
    auto it = mTables.find(t.lut3d_id);
    return it != mTables.end() && it->second.count(bytesOf(t)) != 0;
  }

 private:
  std::map<uint32_t, std::set<std::string>> mTables;  // by table index (the table's lut3d_id)
};

// The display service: counts the calls, and the screen refreshes among them (command 20, 1).
class RecordingDisplayService : public qService::BnQService {
 public:
  android::status_t dispatch(uint32_t command, const android::Parcel* in,
                             android::Parcel*) override {
    ++calls;
    if (command == 20 && in != nullptr && in->readInt32() == 1) ++refreshes;
    return android::OK;
  }
  std::atomic<int> calls{0}, refreshes{0};
};

// Both panels of a synthetic eight-table device, initialised with their tables ready.
class TwoPanelRig : public CoreTest {
 protected:
  static constexpr const char* kPrimaryName = "PanelCorvane_primary";
  static constexpr const char* kSecondaryName = "PanelCorvane_secondary";
  // Brightness levels the tests set: below the interpolation range, inside it, at its ends.
  const std::vector<uint32_t> kLevels = {1000, 3500, 5120, 7000, 8191};

  void SetUp() override {
    CoreTest::SetUp();
    postblend::PanelCorvaneBE::resetAssetSwitches();
    writeDevice();
    android::defaultServiceManager()->addService(android::String16("display.qservice"), display);
    primary = start(kPrimaryName);
    secondary = start(kSecondaryName);
    ASSERT_TRUE(primary->tablesReady() && secondary->tablesReady()) << log.dump();
    for (unsigned panel = 0; panel < 2; ++panel) {
      witness[panel].capture(panel, kLevels);
      cleanCache[panel] = cacheNow(panel);
    }
  }

  // The level SetProperty stores for a fraction is fraction * 10239 + 1; these land on kLevels.
  void setLevel(postblend::PanelCorvane* panel, int i) {
    double fraction = (static_cast<double>(level(i)) - 0.5) / 10239.0;
    panel->SetProperty(payloadFor(&fraction, 769));
  }

  uint32_t level(int i) const { return kLevels[static_cast<size_t>(i) % kLevels.size()]; }
  // Sends `panel` a frame of sRGB content: 1 when it got a table it may have, 0 when none, -1
  // when it got another.
  int frame(postblend::PanelCorvane* panel, int intent) {
    auto got = sendFrame(panel, 1, intent);
    return !got ? 0 : witness[panel == secondary].valid(got->gamut_info) ? 1 : -1;
  }
  std::string cacheNow(unsigned panel) {
    return root.read(postblend::Lut3DCacheManager::cachePath(panel));
  }

  android::sp<RecordingDisplayService> display = android::sp<RecordingDisplayService>::make();
  postblend::PanelCorvane* primary = nullptr;
  postblend::PanelCorvane* secondary = nullptr;
  postblend::PanelCorvane::MixLut3DAidl aidl;
  TableWitness witness[2];
  std::string cleanCache[2];
};

}  // namespace pctest
