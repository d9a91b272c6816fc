#include <utils/RefBase.h>

#include "HostRegistries.h"

namespace android {

RefBase::RefBase() : mStrong(INITIAL_STRONG_VALUE), mHostPinned(false) {}

RefBase::~RefBase() {
  int32_t strong = mStrong.load(std::memory_order_relaxed);
  // Deleted directly while references remain: the colour manager deleting a plugin object that
  // a service registry still holds. The registries must not touch it again.
  if (strong != INITIAL_STRONG_VALUE && strong != 0) pchost::detail::forgetDestroyedObject(this);
}

void RefBase::incStrong(const void* /*id*/) const {
  const int32_t c = mStrong.fetch_add(1, std::memory_order_relaxed);
  if (c != INITIAL_STRONG_VALUE) return;
  mStrong.fetch_sub(INITIAL_STRONG_VALUE, std::memory_order_relaxed);
  const_cast<RefBase*>(this)->onFirstRef();
}

void RefBase::decStrong(const void* id) const {
  const int32_t c = mStrong.fetch_sub(1, std::memory_order_acq_rel);
  if (c != 1) return;
  const_cast<RefBase*>(this)->onLastStrongRef(id);
  if (!mHostPinned.load(std::memory_order_relaxed)) delete this;
}

int32_t RefBase::getStrongCount() const { return mStrong.load(std::memory_order_relaxed); }

void RefBase::onFirstRef() {}

void RefBase::onLastStrongRef(const void* /*id*/) {}

bool RefBaseHostAccess::acquireForRegistry(const RefBase* object, const void* id) {
  bool first = object->mStrong.load(std::memory_order_relaxed) == RefBase::INITIAL_STRONG_VALUE;
  if (first) object->mHostPinned.store(true, std::memory_order_relaxed);
  object->incStrong(id);
  return first;
}

}  // namespace android
