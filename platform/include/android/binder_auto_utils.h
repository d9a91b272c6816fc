// Binder NDK C++ helpers: owning wrappers of AIBinder, AIBinder_Weak and AStatus.
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

#include <cstddef>
#include <string>

namespace ndk {

// A strong reference to an AIBinder. Constructed from a raw pointer it adopts that reference.
class SpAIBinder {
 public:
  SpAIBinder() = default;
  SpAIBinder(std::nullptr_t) : SpAIBinder() {}  // NOLINT
  explicit SpAIBinder(AIBinder* binder) : mBinder(binder) {}
  SpAIBinder(const SpAIBinder& other) : mBinder(other.mBinder) {
    if (mBinder != nullptr) AIBinder_incStrong(mBinder);
  }
  SpAIBinder(SpAIBinder&& other) noexcept : mBinder(other.mBinder) { other.mBinder = nullptr; }
  ~SpAIBinder() { set(nullptr); }

  SpAIBinder& operator=(const SpAIBinder& other) {
    if (this == &other) return *this;
    if (other.mBinder != nullptr) AIBinder_incStrong(other.mBinder);
    set(other.mBinder);
    return *this;
  }
  SpAIBinder& operator=(SpAIBinder&& other) noexcept {
    if (this != &other) {
      set(other.mBinder);
      other.mBinder = nullptr;
    }
    return *this;
  }

  // Drops the held reference and adopts `binder`'s.
  void set(AIBinder* binder) {
    AIBinder* old = mBinder;
    mBinder = binder;
    if (old != nullptr) AIBinder_decStrong(old);
  }
  AIBinder* get() const { return mBinder; }
  AIBinder** getR() { return &mBinder; }

  bool operator==(const SpAIBinder& o) const { return mBinder == o.mBinder; }
  bool operator!=(const SpAIBinder& o) const { return mBinder != o.mBinder; }
  bool operator<(const SpAIBinder& o) const { return mBinder < o.mBinder; }

 private:
  AIBinder* mBinder = nullptr;
};

namespace impl {

// Owns one resource released by Destroy.
template <typename T, void (*Destroy)(T), T DEFAULT>
class ScopedAResource {
 public:
  explicit ScopedAResource(T a = DEFAULT) : mT(a) {}
  ~ScopedAResource() { set(DEFAULT); }
  ScopedAResource(ScopedAResource&& other) noexcept : mT(other.release()) {}
  ScopedAResource& operator=(ScopedAResource&& other) noexcept {
    if (this != &other) set(other.release());
    return *this;
  }
  ScopedAResource(const ScopedAResource&) = delete;
  ScopedAResource& operator=(const ScopedAResource&) = delete;

  void set(T a) {
    T old = mT;
    mT = a;
    if (old != DEFAULT) Destroy(old);
  }
  T get() const { return mT; }
  T* getR() { return &mT; }
  T release() {
    T a = mT;
    mT = DEFAULT;
    return a;
  }

 private:
  T mT;
};

}  // namespace impl

class ScopedAStatus : public impl::ScopedAResource<AStatus*, AStatus_delete, nullptr> {
 public:
  explicit ScopedAStatus(AStatus* a = nullptr) : ScopedAResource(a) {}
  ScopedAStatus(ScopedAStatus&&) = default;
  ScopedAStatus& operator=(ScopedAStatus&&) = default;

  bool isOk() const { return get() != nullptr && AStatus_isOk(get()); }
  binder_exception_t getExceptionCode() const { return AStatus_getExceptionCode(get()); }
  int32_t getServiceSpecificError() const { return AStatus_getServiceSpecificError(get()); }
  binder_status_t getStatus() const { return AStatus_getStatus(get()); }
  const char* getMessage() const { return AStatus_getMessage(get()); }
  std::string getDescription() const {
    return "Status(" + std::to_string(getExceptionCode()) + ", " + std::to_string(getStatus()) +
           "): '" + getMessage() + "'";
  }

  static ScopedAStatus ok() { return ScopedAStatus(AStatus_newOk()); }
  static ScopedAStatus fromExceptionCode(binder_exception_t exception) {
    return ScopedAStatus(AStatus_fromExceptionCode(exception));
  }
  static ScopedAStatus fromExceptionCodeWithMessage(binder_exception_t exception,
                                                    const char* message) {
    return ScopedAStatus(AStatus_fromExceptionCodeWithMessage(exception, message));
  }
  static ScopedAStatus fromServiceSpecificError(int32_t serviceSpecific) {
    return ScopedAStatus(AStatus_fromServiceSpecificError(serviceSpecific));
  }
  static ScopedAStatus fromStatus(binder_status_t status) {
    return ScopedAStatus(AStatus_fromStatus(status));
  }
};

class ScopedAIBinder_Weak
    : public impl::ScopedAResource<AIBinder_Weak*, AIBinder_Weak_delete, nullptr> {
 public:
  explicit ScopedAIBinder_Weak(AIBinder_Weak* a = nullptr) : ScopedAResource(a) {}
  ScopedAIBinder_Weak(ScopedAIBinder_Weak&&) = default;
  ScopedAIBinder_Weak& operator=(ScopedAIBinder_Weak&&) = default;
  SpAIBinder promote() const { return SpAIBinder(AIBinder_Weak_promote(get())); }
};

}  // namespace ndk
