// Shared set-up of the plugin-core tests: a device root with a property file, a log capture,
// a recording display service and bounded waits for the worker.
#pragma once

#include <IQService.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <gtest/gtest.h>
#include <pchost/host.h>
#include <pchost/services.h>
#include <utils/String16.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "core/PanelCorvane.h"
#include "tests/support/TestSupport.h"

namespace pctest {

// Waits for a condition the worker makes true; the bound only guards against a hang.
inline bool waitFor(const std::function<bool()>& cond) {
  auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!cond()) {
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Waits until the workers have run what was posted to them: a job that made the tables ready
// has also let go of them, so the next frame finds them.
inline bool settle() { return pchost::waitForIdleLoopers(20); }

class RecordingDisplayService : public qService::BnQService {
 public:
  android::status_t dispatch(uint32_t command, const android::Parcel* in,
                             android::Parcel* /*out*/) override {
    std::lock_guard<std::mutex> lock(mutex);
    int32_t arg = -1;
    if (in != nullptr) arg = in->readInt32();
    calls.push_back({command, arg});
    return android::OK;
  }
  size_t count() {
    std::lock_guard<std::mutex> lock(mutex);
    return calls.size();
  }
  struct Call {
    uint32_t command;
    int32_t arg;
  };
  std::mutex mutex;
  std::vector<Call> calls;
};

inline void resetCaches() {
  using postblend::Lut3DCacheManager;
  for (unsigned p = 0; p < 2; ++p) {
    Lut3DCacheManager::deInit(p);
    Lut3DCacheManager::sNumOfLut3D[p] = 0;
  }
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
  android::sp<RecordingDisplayService> addDisplayService() {
    auto svc = android::sp<RecordingDisplayService>::make();
    android::defaultServiceManager()->addService(android::String16("display.qservice"), svc);
    return svc;
  }

  TempRoot root;
  LogCapture log;
  std::vector<postblend::PanelCorvane*> panels;
};

}  // namespace pctest
