#include <pchost/services.h>

#include "HostRegistries.h"

namespace pchost {
namespace detail {

bool RegistrationGate::admit() {
  std::lock_guard<std::mutex> lock(mLock);
  ++mStats.attempts;
  if (mFailNext <= 0) return true;
  --mFailNext;
  return false;
}

void RegistrationGate::registered() {
  std::lock_guard<std::mutex> lock(mLock);
  ++mStats.registered;
}

void RegistrationGate::failNext(int count) {
  std::lock_guard<std::mutex> lock(mLock);
  mFailNext = count > 0 ? count : 0;
}

void RegistrationGate::reset() {
  std::lock_guard<std::mutex> lock(mLock);
  mFailNext = 0;
  mStats = RegistrationStats();
}

RegistrationStats RegistrationGate::stats() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mStats;
}

RegistrationGate& gate(ServiceRegistry registry) {
  // Never destroyed: detached threads may still register while the process exits.
  static RegistrationGate* gates = new RegistrationGate[3];
  return gates[static_cast<int>(registry)];
}

void forgetDestroyedObject(const android::RefBase* object) {
  forgetInHidlRegistry(object);
  forgetInBinderRegistry(object);
}

}  // namespace detail

void failNextRegistrations(ServiceRegistry registry, int count) {
  detail::gate(registry).failNext(count);
}

RegistrationStats registrationStats(ServiceRegistry registry) {
  return detail::gate(registry).stats();
}

void clearServices() {
  detail::clearHidlRegistry();
  detail::clearBinderRegistry();
  detail::clearNdkRegistry();
  for (ServiceRegistry r : {ServiceRegistry::Hidl, ServiceRegistry::Binder, ServiceRegistry::Ndk})
    detail::gate(r).reset();
}

}  // namespace pchost
