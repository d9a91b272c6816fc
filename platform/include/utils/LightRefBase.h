// android::LightRefBase<T>: a bare thread-safe strong count for small non-virtual objects.
#pragma once

#include <atomic>
#include <cstdint>

namespace android {

template <class T>
class LightRefBase {
 public:
  LightRefBase() : mCount(0) {}
  void incStrong(const void* /*id*/) const { mCount.fetch_add(1, std::memory_order_relaxed); }
  void decStrong(const void* /*id*/) const {
    if (mCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete static_cast<const T*>(this);
  }
  int32_t getStrongCount() const { return mCount.load(std::memory_order_relaxed); }

 protected:
  ~LightRefBase() = default;

 private:
  LightRefBase(const LightRefBase&) = delete;
  LightRefBase& operator=(const LightRefBase&) = delete;
  mutable std::atomic<int32_t> mCount;
};

}  // namespace android
