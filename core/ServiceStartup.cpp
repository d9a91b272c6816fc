// Message 2: publish the control services (HIDL and AIDL) and find the display service, with
// retries while the system's service managers are still starting.
#define LOG_TAG "PanelCorvane"

#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <utils/String16.h>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"

namespace postblend {

namespace {
constexpr int kAttempts = 5;
}  // namespace

void PanelCorvane::onHelpServiceInit() {
  initHidlService();
  initAidlService();
  if (mQService != nullptr) return;
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    android::sp<android::IServiceManager> sm = android::defaultServiceManager();
    android::sp<android::IBinder> binder =
        sm != nullptr ? sm->getService(android::String16("display.qservice")) : nullptr;
    mQService = android::interface_cast<qService::IQService>(binder);
    if (mQService != nullptr) {
      PC_LOGD("Qservice done!\n");
      return;
    }
    if (attempt < kAttempts) devio::sleepSeconds(1);
    PC_LOGE("Failed to acquire display.qservice\n");
  }
}

void PanelCorvane::initHidlService() {
  if (mPanelIndex != 0 || sIsHidlRegitsered) return;
  for (int attempt = 1;; ++attempt) {
    {
      std::lock_guard<std::mutex> lock(sServicesLock);
      if (sIsHidlRegitsered) return;  // another panel's worker got there first
      if (registerAsService("default") == android::OK) {
        PC_LOGD("register hidl done!\n");
        mHidlService = true;
        sIsHidlRegitsered = true;
        return;
      }
    }
    PC_LOGE("Failed to register hidl!\n");
    if (attempt == kAttempts) return;
    devio::sleepSeconds(1);
  }
}

std::shared_ptr<PanelCorvane::MixLut3DAidl> PanelCorvane::mAidl;
std::mutex PanelCorvane::sServicesLock;

void PanelCorvane::initAidlService() {
  if (mPanelIndex != 0) return;
  PC_LOGD("AIDL:start\n");
  std::lock_guard<std::mutex> lock(sServicesLock);
  if (mAidl) return;
  mAidl = ::ndk::SharedRefBase::make<MixLut3DAidl>();
  const std::string instance = std::string(MixLut3DAidl::descriptor) + "/default";
  binder_status_t status = STATUS_OK;
  {
    ::ndk::SpAIBinder binder = mAidl->asBinder();
    status = AServiceManager_addService(binder.get(), instance.c_str());
  }
  PC_LOGD("AIDL:%s %s\n", instance.c_str(), status == STATUS_OK ? "OK!" : "ERROR!");
}

}  // namespace postblend
