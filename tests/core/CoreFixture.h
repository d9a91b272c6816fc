// Shared set-up of the plugin-core tests: a device root with a property file or a synthetic
// device, a log capture, a bounded wait for the workers, payloads and the tables of cases kept
// under tests/data/.
#pragma once

#include <gtest/gtest.h>
#include <pchost/host.h>
#include <pchost/services.h>

#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"
#include "tests/support/TestSupport.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pctest {

// Waits until the workers have run what was posted to them (a loading job has ended and let go
// of the tables); the bound only guards against a hang.
inline bool settle() { return pchost::waitForIdleLoopers(20); }

// The rows of tests/data/`name`: one a line, fields split at '|' and trimmed; empty lines and
// lines starting with '#' (which say what the rows catch) are skipped.
inline std::vector<std::vector<std::string>> dataRows(const std::string& name) {
  std::ifstream in(std::string(PC_SOURCE_DIR) + "/tests/data/" + name);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> fields;
    std::istringstream split(line);
    for (std::string f; std::getline(split, f, '|');) {
      const size_t b = f.find_first_not_of(' '), e = f.find_last_not_of(' ');
      fields.push_back(b == std::string::npos ? "" : f.substr(b, e - b + 1));
    }
    rows.push_back(fields);
  }
  EXPECT_FALSE(rows.empty()) << "no rows in tests/data/" << name;
  return rows;
}

// A payload over `record`, as long as the record unless told otherwise.
template <typename T>
postblend::ScPayload payloadFor(T* record, uint32_t prop = 0, uint32_t len = sizeof(T)) {
  postblend::ScPayload p;
  p.prop = prop;
  p.len = len;
  p.payload = reinterpret_cast<uintptr_t>(record);
  return p;
}

inline void resetCaches() {
  using postblend::Lut3DCacheManager;
  for (unsigned p = 0; p < 2; ++p) {
    Lut3DCacheManager::deInit(p);
    Lut3DCacheManager::sNumOfLut3D[p] = 0;
  }
}

// Sends `panel` one render-intent op; the gamut asset's record when it got a table, else null.
inline std::shared_ptr<postblend::GamutConfig> sendFrame(postblend::PanelCorvane* panel, int gamut,
                                                         int intent) {
  postblend::ModeRenderInputParams in;
  in.color_mode.gamut = static_cast<uint32_t>(gamut);
  in.color_mode.intent = static_cast<uint32_t>(intent);
  auto g = std::make_shared<postblend::GamutConfig>();
  g->gamut_info.lut3d_id = 0xFFFFFFFFu;
  postblend::HwConfigOutputParams out;
  out.payload.emplace_back("PostBlendGamut", g);
  out.payload.emplace_back("PostBlendGC", std::make_shared<postblend::HwConfigPayload>());
  postblend::ScPayload outP = payloadFor(&out);
  panel->ProcessOps(postblend::kScModeRenderIntent, payloadFor(&in), &outP);
  return g->gamut_info.lut3d_id == 0xFFFFFFFFu ? nullptr : g;
}

class CoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    resetSharedState();
    resetCaches();
    pchost::clearServices();
    resetAidl();
  }
  // A worker may still be starting the services of an object the test made.
  static void resetAidl() {
    std::lock_guard<std::mutex> lock(postblend::PanelCorvane::sServicesLock);
    postblend::PanelCorvane::mAidl.reset();
  }
  void TearDown() override {
    for (auto* p : panels) {
      if (p->initDone()) p->DeInit();
    }
    pchost::clearServices();
    resetAidl();
    for (auto* p : panels) delete p;
    panels.clear();
    resetSharedState();
    resetCaches();
  }

  postblend::PanelCorvane* make() {
    panels.push_back(new postblend::PanelCorvane());
    return panels.back();
  }
  void writeProps(const std::string& extra = "") {
    root.write(postblend::Prop::kPath, "LogLevel=1\nprimary=0\nsecondary=100\n" + extra);
  }
  // The primary panel's object, running on a device without calibration: no tables.
  postblend::PanelCorvane* running() {
    writeProps();
    postblend::PanelCorvane* p = make();
    p->Init("primary");
    return p;
  }
  // The tools' synthetic device (both panels, eight tables) under the root.
  void writeDevice(const pctool::SyntheticDeviceOptions& options = {}) {
    postblend::PanelCorvaneFE::sIn100nits = -1;
    std::string error;
    ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), options, &error)) << error;
    root.write("/data/vendor/display/.keep", "");  // the cache folder exists on a device
  }
  // A new object for the device's panel `name`, once its table loading job has ended.
  postblend::PanelCorvane* start(const std::string& name = "PanelCorvane_primary") {
    log.clear();
    postblend::PanelCorvane* p = make();
    p->Init(name);
    EXPECT_TRUE(settle());
    return p;
  }
  TempRoot root;
  LogCapture log;
  std::vector<postblend::PanelCorvane*> panels;
};

}  // namespace pctest
