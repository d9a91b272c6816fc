// A running two-panel device for the tests that let the colour manager's threads, the workers
// and the binder threads loose on the plugin at once: both panels with their tables, the
// tables a frame may legitimately receive, and frames that check what they got.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "backend/PanelCorvaneBE.h"
#include "cache/DeltaApply.h"
#include "cache/Lut3DCacheManager.h"
#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pctest {

// Round and cycle counts come from the environment so that CI runs small storms and a
// developer can run large ones; `def` is the CI size.
inline int envCount(const char* name, int def) {
  const char* v = std::getenv(name);
  if (v == nullptr || *v == '\0') return def;
  const long n = std::strtol(v, nullptr, 10);
  return n > 0 ? static_cast<int>(n) : def;
}

// A fingerprint of a whole table (64-bit FNV-1a), not a security hash.
inline uint64_t tableDigest(const postblend::lut3d_info& t) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&t);
  uint64_t h = 1469598103934665603ull;
  for (size_t i = 0; i < sizeof(t); ++i) h = (h ^ bytes[i]) * 1099511628211ull;
  return h;
}

// Every table a frame of one panel may receive: the tables as loaded or generated, and each
// full-brightness table as interpolated for the brightness levels a test sets.
class TableWitness {
 public:
  // Reads the panel's tables and deltas as they are now.
  void capture(unsigned panel, const std::vector<uint32_t>& levels) {
    using postblend::Lut3DCacheManager;
    std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(panel));
    postblend::lut3d_info* luts = nullptr;
    const int n = Lut3DCacheManager::getLutArrayPointer(panel, &luts);
    ASSERT_GT(n, 0);
    const int32_t* deltas = Lut3DCacheManager::slut3dDeltaPanel[panel];
    ASSERT_NE(deltas, nullptr);
    auto scratch = std::make_unique<postblend::lut3d_info>();
    for (int i = 0; i < n; ++i) {
      mDigests[static_cast<uint32_t>(i)].clear();
      if (i % 2 == 0) {
        mDigests[i].insert(tableDigest(luts[i]));
        continue;
      }
      const int32_t* block = deltas + 3 * postblend::kLut3dEntries * (i / 2);
      std::vector<uint32_t> weights = {4096};  // the full-brightness table itself
      for (uint32_t level : levels) {
        if (level >= 3500) weights.push_back((level * 4096u - 14336000u) / 4691u);
      }
      for (uint32_t w : weights) {
        std::memcpy(scratch.get(), &luts[i], sizeof(*scratch));
        postblend::applyDeltaQ12(luts[i - 1], *scratch, block, w);
        mDigests[i].insert(tableDigest(*scratch));
      }
    }
  }
  bool valid(const postblend::lut3d_info& t) const {
    auto it = mDigests.find(t.lut3d_id);
    return it != mDigests.end() && it->second.count(tableDigest(t)) != 0;
  }
  int tables() const { return static_cast<int>(mDigests.size()); }

 private:
  std::map<uint32_t, std::set<uint64_t>> mDigests;  // by table index (the table's lut3d_id)
};

// One colour manager's frame source for one panel, reusing its records from frame to frame.
class FrameSender {
 public:
  static constexpr uint32_t kUntouched = 0xFFFFFFFFu;

  FrameSender() {
    mGamut = std::make_shared<postblend::GamutConfig>();
    mOut.payload.emplace_back("PostBlendGamut", mGamut);
    mOut.payload.emplace_back("PostBlendGC", std::make_shared<postblend::HwConfigPayload>());
  }
  // Sends one render-intent op; true when the gamut asset got no table or a valid one.
  bool send(postblend::PanelCorvane* panel, int intent, const TableWitness& witness) {
    postblend::ModeRenderInputParams in;
    in.color_mode.gamut = 1;
    in.color_mode.intent = static_cast<uint32_t>(intent);
    mGamut->gamut_info.lut3d_id = kUntouched;
    postblend::ScPayload inP, outP;
    inP.len = sizeof(in);
    inP.payload = reinterpret_cast<uintptr_t>(&in);
    outP.len = sizeof(mOut);
    outP.payload = reinterpret_cast<uintptr_t>(&mOut);
    panel->ProcessOps(postblend::kScModeRenderIntent, inP, &outP);
    const postblend::lut3d_info& got = mGamut->gamut_info;
    if (got.lut3d_id == kUntouched) return true;
    ++tablesSeen;
    return witness.valid(got);
  }
  int tablesSeen = 0;

 private:
  std::shared_ptr<postblend::GamutConfig> mGamut;
  postblend::HwConfigOutputParams mOut;
};

inline void setBrightnessFraction(postblend::PanelCorvane* panel, double fraction) {
  postblend::ScPayload p;
  p.prop = 769;
  p.len = sizeof(fraction);
  p.payload = reinterpret_cast<uintptr_t>(&fraction);
  panel->SetProperty(p);
}

inline std::string readBytes(const std::string& hostPath) {
  std::ifstream in(hostPath, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Both panels of a synthetic eight-table device, initialised with their tables ready.
class TwoPanelRig : public CoreTest {
 protected:
  static constexpr const char* kPrimaryName = "PanelCorvane_primary";
  static constexpr const char* kSecondaryName = "PanelCorvane_secondary";
  // Brightness levels the tests set: below the interpolation range, inside it, at its ends.
  const std::vector<uint32_t> kLevels = {1000, 3500, 5120, 7000, 8191};

  void SetUp() override {
    CoreTest::SetUp();
    postblend::PanelCorvaneFE::sIn100nits = -1;
    postblend::PanelCorvaneBE::resetAssetSwitches();
    std::string error;
    ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), {}, &error)) << error;
    root.write("/data/vendor/display/.keep", "");
    display = addDisplayService();
    primary = make();
    secondary = make();
    primary->Init(kPrimaryName);
    secondary->Init(kSecondaryName);
    ASSERT_TRUE(waitFor([&] { return primary->tablesReady() && secondary->tablesReady(); }))
        << log.dump();
    ASSERT_TRUE(
        waitFor([&] { return postblend::PanelCorvaneBase::sIsHidlRegitsered.load(); }));
    ASSERT_TRUE(pctest::settle());
    witness[0].capture(0, kLevels);
    witness[1].capture(1, kLevels);
    cleanCache[0] = readBytes(root.host("/data/vendor/display/cofc.fw"));
    cleanCache[1] = readBytes(root.host("/data/vendor/display/cofc2.fw"));
    ASSERT_FALSE(cleanCache[0].empty());
    ASSERT_FALSE(cleanCache[1].empty());
  }

  // The level SetProperty stores for a fraction is fraction * 10239 + 1; these land on kLevels.
  double fractionFor(uint32_t level) const { return (static_cast<double>(level) - 0.5) / 10239.0; }
  uint32_t level(int i) const { return kLevels[static_cast<size_t>(i) % kLevels.size()]; }

  int aidlSet(int disp, int cmd) {
    int32_t r = 0;
    aidl.set(disp, cmd, &r);
    return r;
  }
  std::string cacheNow(unsigned panel) {
    return readBytes(
        root.host(panel == 0 ? "/data/vendor/display/cofc.fw" : "/data/vendor/display/cofc2.fw"));
  }

  android::sp<RecordingDisplayService> display;
  postblend::PanelCorvane* primary = nullptr;
  postblend::PanelCorvane* secondary = nullptr;
  postblend::PanelCorvane::MixLut3DAidl aidl;
  TableWitness witness[2];
  std::string cleanCache[2];
};

}  // namespace pctest
