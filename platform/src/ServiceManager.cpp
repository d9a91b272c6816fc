// The process's binder service registry.
#include <binder/IServiceManager.h>

#include <iterator>
#include <map>
#include <mutex>

#include "HostRegistries.h"

namespace android {

IServiceManager::~IServiceManager() = default;

namespace {

class HostServiceManager : public IServiceManager {
 public:
  sp<IBinder> getService(const String16& name) const override { return checkService(name); }

  sp<IBinder> checkService(const String16& name) const override {
    std::lock_guard<std::mutex> lock(mLock);
    auto it = mServices.find(name);
    return it != mServices.end() ? sp<IBinder>(it->second.binder) : nullptr;
  }

  status_t addService(const String16& name, const sp<IBinder>& service, bool /*allowIsolated*/,
                      int /*dumpsysFlags*/) override {
    auto& gate = pchost::detail::gate(pchost::ServiceRegistry::Binder);
    if (!gate.admit()) return UNKNOWN_ERROR;
    if (service == nullptr) return UNEXPECTED_NULL;
    IBinder* released = nullptr;
    {
      std::lock_guard<std::mutex> lock(mLock);
      service->incStrong(this);
      Entry& entry = mServices[name];
      released = entry.binder;
      entry = Entry{service.get(), service.get()};
    }
    if (released != nullptr) released->decStrong(this);
    gate.registered();
    return OK;
  }

  std::vector<String16> listServices(int /*dumpsysFlags*/) override {
    std::lock_guard<std::mutex> lock(mLock);
    std::vector<String16> names;
    for (const auto& kv : mServices) names.push_back(kv.first);
    return names;
  }

  void clear() {
    std::map<String16, Entry> old;
    {
      std::lock_guard<std::mutex> lock(mLock);
      old.swap(mServices);
    }
    for (auto& kv : old) kv.second.binder->decStrong(this);
  }

  void forget(const RefBase* object) {
    std::lock_guard<std::mutex> lock(mLock);
    for (auto it = mServices.begin(); it != mServices.end();)
      it = it->second.base == object ? mServices.erase(it) : std::next(it);
  }

 protected:
  IBinder* onAsBinder() override { return nullptr; }

 private:
  // A strong reference held by hand, so that an object deleted directly can be forgotten
  // without touching it; `base` is noted while the object is alive.
  struct Entry {
    IBinder* binder = nullptr;
    const RefBase* base = nullptr;
  };
  mutable std::mutex mLock;
  std::map<String16, Entry> mServices;
};

HostServiceManager& hostServiceManager() {
  // Never destroyed: it must outlive every thread and static that may still look up services.
  static HostServiceManager* sm = [] {
    auto* m = new HostServiceManager();
    m->incStrong(m);
    return m;
  }();
  return *sm;
}

}  // namespace

sp<IServiceManager> defaultServiceManager() { return sp<IServiceManager>(&hostServiceManager()); }

}  // namespace android

namespace pchost {
namespace detail {

void clearBinderRegistry() { android::hostServiceManager().clear(); }
void forgetInBinderRegistry(const android::RefBase* object) {
  android::hostServiceManager().forget(object);
}

}  // namespace detail
}  // namespace pchost
