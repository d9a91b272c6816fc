// Interface of package vendor.display.PanelCorvane@1.0, in the shape the HIDL generator gives
// it: numbered commands that change the colour plugin's state, and queries.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <functional>
#include <string>

namespace vendor {
namespace display {
namespace PanelCorvane {
namespace V1_0 {

struct IPanelCorvane : public ::android::hidl::base::V1_0::IBase {
  // "vendor.display.PanelCorvane@1.0::IPanelCorvane"
  static const char* descriptor;

  bool isRemote() const override { return false; }

  virtual ::android::hardware::Return<int32_t> configureSet(
      int32_t command, const ::android::hardware::hidl_vec<int32_t>& args) = 0;

  using configureGet_cb = std::function<void(int32_t value,
                                             const ::android::hardware::hidl_vec<int32_t>& result)>;
  virtual ::android::hardware::Return<void> configureGet(
      int32_t type, const ::android::hardware::hidl_vec<int32_t>& args, configureGet_cb _hidl_cb) = 0;

  ::android::hardware::Return<void> interfaceChain(interfaceChain_cb _hidl_cb) override;
  ::android::hardware::Return<void> interfaceDescriptor(interfaceDescriptor_cb _hidl_cb) override;
  ::android::hardware::Return<void> ping() override;

  static ::android::hardware::Return<::android::sp<IPanelCorvane>> castFrom(
      const ::android::sp<IPanelCorvane>& parent, bool emitError = false);
  static ::android::hardware::Return<::android::sp<IPanelCorvane>> castFrom(
      const ::android::sp<::android::hidl::base::V1_0::IBase>& parent, bool emitError = false);

  // Null at once when no such instance is registered.
  static ::android::sp<IPanelCorvane> tryGetService(const std::string& serviceName = "default",
                                                    bool getStub = false);
  static ::android::sp<IPanelCorvane> getService(const std::string& serviceName = "default",
                                                 bool getStub = false);
  __attribute__((warn_unused_result)) ::android::status_t registerAsService(
      const std::string& serviceName = "default");
};

}  // namespace V1_0
}  // namespace PanelCorvane
}  // namespace display
}  // namespace vendor
