// The generated side of vendor.display.PanelCorvane@1.0::IPanelCorvane: descriptor, casts and
// the service registry calls.
#include <hidl/ServiceManagement.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

namespace vendor {
namespace display {
namespace PanelCorvane {
namespace V1_0 {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hidl::base::V1_0::IBase;

const char* IPanelCorvane::descriptor = "vendor.display.PanelCorvane@1.0::IPanelCorvane";

Return<void> IPanelCorvane::interfaceChain(interfaceChain_cb _hidl_cb) {
  if (_hidl_cb) _hidl_cb({IPanelCorvane::descriptor, IBase::descriptor});
  return ::android::hardware::Void();
}

Return<void> IPanelCorvane::interfaceDescriptor(interfaceDescriptor_cb _hidl_cb) {
  if (_hidl_cb) _hidl_cb(IPanelCorvane::descriptor);
  return ::android::hardware::Void();
}

Return<void> IPanelCorvane::ping() { return ::android::hardware::Void(); }

Return<sp<IPanelCorvane>> IPanelCorvane::castFrom(const sp<IPanelCorvane>& parent,
                                                  bool /*emitError*/) {
  return parent;
}

Return<sp<IPanelCorvane>> IPanelCorvane::castFrom(const sp<IBase>& parent, bool /*emitError*/) {
  if (parent == nullptr) return sp<IPanelCorvane>();
  // Only an object whose interface chain names this interface is one.
  bool matches = false;
  parent->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
    for (const auto& d : chain) matches = matches || d == hidl_string(IPanelCorvane::descriptor);
  });
  return matches ? sp<IPanelCorvane>::cast(parent) : sp<IPanelCorvane>();
}

sp<IPanelCorvane> IPanelCorvane::tryGetService(const std::string& serviceName, bool getStub) {
  return getService(serviceName, getStub);
}

sp<IPanelCorvane> IPanelCorvane::getService(const std::string& serviceName, bool getStub) {
  sp<IBase> base = ::android::hardware::details::getRawServiceInternal(
      IPanelCorvane::descriptor, serviceName, true, getStub);
  return castFrom(base);
}

::android::status_t IPanelCorvane::registerAsService(const std::string& serviceName) {
  return ::android::hardware::details::registerAsServiceInternal(this, serviceName);
}

}  // namespace V1_0
}  // namespace PanelCorvane
}  // namespace display
}  // namespace vendor
