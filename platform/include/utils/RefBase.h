// android::RefBase: the reference-counted root of platform objects (usually a virtual base).
// The object deletes itself when its last strong reference goes.
#pragma once

#include <utils/LightRefBase.h>
#include <utils/StrongPointer.h>

#include <atomic>
#include <cstdint>

namespace android {

class RefBase {
 public:
  // The count an object has before its first strong reference.
  static constexpr int32_t INITIAL_STRONG_VALUE = 1 << 28;

  void incStrong(const void* id) const;
  void decStrong(const void* id) const;
  // INITIAL_STRONG_VALUE until the first strong reference, as on a device.
  int32_t getStrongCount() const;

 protected:
  RefBase();
  virtual ~RefBase();
  virtual void onFirstRef();
  virtual void onLastStrongRef(const void* id);

 private:
  friend struct RefBaseHostAccess;
  RefBase(const RefBase&) = delete;
  RefBase& operator=(const RefBase&) = delete;

  mutable std::atomic<int32_t> mStrong;
  // Host only: set for an object whose first strong reference came from a service registry.
  // Such an object is owned by a plain pointer elsewhere (the colour manager owns the plugin
  // object), so its count dropping to 0 must not delete it.
  mutable std::atomic<bool> mHostPinned;
};

}  // namespace android
