// The root of every HIDL interface: android.hidl.base@1.0::IBase.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>

#include <functional>

namespace android {
namespace hidl {
namespace base {
namespace V1_0 {

struct IBase : virtual public ::android::RefBase {
  static const char* descriptor;

  ~IBase() override;

  virtual bool isRemote() const { return false; }

  using interfaceChain_cb =
      std::function<void(const ::android::hardware::hidl_vec<::android::hardware::hidl_string>&)>;
  // The descriptors of this interface and its parents, most derived first.
  virtual ::android::hardware::Return<void> interfaceChain(interfaceChain_cb _hidl_cb);

  using interfaceDescriptor_cb = std::function<void(const ::android::hardware::hidl_string&)>;
  virtual ::android::hardware::Return<void> interfaceDescriptor(interfaceDescriptor_cb _hidl_cb);

  virtual ::android::hardware::Return<void> ping();

  static ::android::hardware::Return<::android::sp<IBase>> castFrom(
      const ::android::sp<IBase>& parent, bool emitError = false);
};

}  // namespace V1_0
}  // namespace base
}  // namespace hidl
}  // namespace android
