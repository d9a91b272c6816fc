// The process's HIDL service registry and the HIDL base interface.
#include <android/hidl/base/1.0/IBase.h>
#include <hidl/ServiceManagement.h>

#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "HostRegistries.h"

namespace android {
namespace hidl {
namespace base {
namespace V1_0 {

const char* IBase::descriptor = "android.hidl.base@1.0::IBase";

IBase::~IBase() = default;

::android::hardware::Return<void> IBase::interfaceChain(interfaceChain_cb _hidl_cb) {
  if (_hidl_cb) _hidl_cb({descriptor});
  return ::android::hardware::Void();
}

::android::hardware::Return<void> IBase::interfaceDescriptor(interfaceDescriptor_cb _hidl_cb) {
  if (_hidl_cb) _hidl_cb(descriptor);
  return ::android::hardware::Void();
}

::android::hardware::Return<void> IBase::ping() { return ::android::hardware::Void(); }

::android::hardware::Return<::android::sp<IBase>> IBase::castFrom(const ::android::sp<IBase>& parent,
                                                                  bool /*emitError*/) {
  return parent;
}

}  // namespace V1_0
}  // namespace base
}  // namespace hidl
}  // namespace android

namespace {

using ::android::RefBase;
using ::android::hidl::base::V1_0::IBase;

class HidlRegistry {
 public:
  void add(const std::string& key, IBase* service) {
    const RefBase* base = service;
    // Outside the lock: onFirstRef() runs the object's own code.
    ::android::RefBaseHostAccess::acquireForRegistry(base, this);
    Entry old;
    {
      std::lock_guard<std::mutex> lock(mLock);
      Entry& entry = mServices[key];
      old = entry;
      entry = Entry{service, base};
    }
    if (old.service != nullptr) old.service->decStrong(this);
  }

  ::android::sp<IBase> get(const std::string& key) const {
    std::lock_guard<std::mutex> lock(mLock);
    auto it = mServices.find(key);
    return it != mServices.end() ? ::android::sp<IBase>(it->second.service) : nullptr;
  }

  void clear() {
    std::map<std::string, Entry> old;
    {
      std::lock_guard<std::mutex> lock(mLock);
      old.swap(mServices);
    }
    for (auto& kv : old) kv.second.service->decStrong(this);
  }

  void forget(const RefBase* object) {
    std::lock_guard<std::mutex> lock(mLock);
    for (auto it = mServices.begin(); it != mServices.end();)
      it = it->second.base == object ? mServices.erase(it) : std::next(it);
  }

 private:
  // A strong reference held by hand (see the binder registry).
  struct Entry {
    IBase* service = nullptr;
    const RefBase* base = nullptr;
  };
  mutable std::mutex mLock;
  std::map<std::string, Entry> mServices;  // "descriptor/instance"
};

HidlRegistry& registry() {
  static HidlRegistry* r = new HidlRegistry();  // never destroyed, like the binder registry
  return *r;
}

std::string keyOf(const std::string& descriptor, const std::string& instance) {
  return descriptor + "/" + instance;
}

}  // namespace

namespace android {
namespace hardware {
namespace details {

status_t registerAsServiceInternal(IBase* service, const std::string& name) {
  auto& gate = pchost::detail::gate(pchost::ServiceRegistry::Hidl);
  if (!gate.admit()) return UNKNOWN_ERROR;
  if (service == nullptr) return BAD_VALUE;
  std::string descriptor;
  service->interfaceDescriptor([&](const hidl_string& d) { descriptor = d; });
  registry().add(keyOf(descriptor, name), service);
  gate.registered();
  return OK;
}

sp<IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance,
                                bool /*retry*/, bool /*getStub*/) {
  return registry().get(keyOf(descriptor, instance));
}

}  // namespace details
}  // namespace hardware
}  // namespace android

namespace pchost {
namespace detail {

void clearHidlRegistry() { registry().clear(); }
void forgetInHidlRegistry(const android::RefBase* object) { registry().forget(object); }

}  // namespace detail
}  // namespace pchost
