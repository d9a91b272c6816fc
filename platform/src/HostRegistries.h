// Shared by the host's service registries: forced failures and counts, and the hooks the
// reference counting calls.
#pragma once

#include <pchost/services.h>
#include <utils/RefBase.h>

#include <mutex>

namespace android {

struct RefBaseHostAccess {
  // Takes a strong reference for a registry; when it is the object's first, pins the object
  // (see RefBase). True when it was the first.
  static bool acquireForRegistry(const RefBase* object, const void* id);
};

}  // namespace android

namespace pchost {
namespace detail {

// Called by ~RefBase for an object deleted directly while strong references remain.
void forgetDestroyedObject(const android::RefBase* object);

class RegistrationGate {
 public:
  // Counts an attempt; false when a forced failure is pending (consuming it).
  bool admit();
  void registered();
  void failNext(int count);
  void reset();
  RegistrationStats stats() const;

 private:
  mutable std::mutex mLock;
  int mFailNext = 0;
  RegistrationStats mStats;
};

RegistrationGate& gate(ServiceRegistry registry);

// Each registry empties itself, releasing references outside its lock (a release may delete an
// object whose destructor calls back into a registry).
void clearHidlRegistry();
void clearBinderRegistry();
void clearNdkRegistry();
// Drops entries of a destroyed object without touching it.
void forgetInHidlRegistry(const android::RefBase* object);
void forgetInBinderRegistry(const android::RefBase* object);

}  // namespace detail
}  // namespace pchost
