// The process's binder NDK service registry.
#include <android/binder_manager.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "HostRegistries.h"

namespace {

class NdkRegistry {
 public:
  void add(const std::string& instance, AIBinder* binder) {
    AIBinder_incStrong(binder);
    AIBinder* old = nullptr;
    {
      std::lock_guard<std::mutex> lock(mLock);
      AIBinder*& slot = mServices[instance];
      old = slot;
      slot = binder;
    }
    AIBinder_decStrong(old);
  }

  AIBinder* get(const std::string& instance) {
    std::lock_guard<std::mutex> lock(mLock);
    auto it = mServices.find(instance);
    if (it == mServices.end()) return nullptr;
    AIBinder_incStrong(it->second);
    return it->second;
  }

  void clear() {
    std::map<std::string, AIBinder*> old;
    {
      std::lock_guard<std::mutex> lock(mLock);
      old.swap(mServices);
    }
    for (auto& kv : old) AIBinder_decStrong(kv.second);
  }

 private:
  std::mutex mLock;
  std::map<std::string, AIBinder*> mServices;
};

NdkRegistry& registry() {
  static NdkRegistry* r = new NdkRegistry();  // never destroyed, like the other registries
  return *r;
}

}  // namespace

extern "C" {

binder_exception_t AServiceManager_addService(AIBinder* binder, const char* instance) {
  auto& gate = pchost::detail::gate(pchost::ServiceRegistry::Ndk);
  if (!gate.admit()) return EX_TRANSACTION_FAILED;
  if (binder == nullptr || instance == nullptr) return EX_ILLEGAL_ARGUMENT;
  registry().add(instance, binder);
  gate.registered();
  return EX_NONE;
}

AIBinder* AServiceManager_checkService(const char* instance) {
  return instance != nullptr ? registry().get(instance) : nullptr;
}

AIBinder* AServiceManager_getService(const char* instance) {
  return AServiceManager_checkService(instance);
}

}  // extern "C"

namespace pchost {
namespace detail {

void clearNdkRegistry() { registry().clear(); }

}  // namespace detail
}  // namespace pchost
