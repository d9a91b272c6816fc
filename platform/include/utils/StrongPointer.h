// android::sp<T>: a strong reference to an object that counts its own references
// (incStrong/decStrong), such as a RefBase or a LightRefBase.
#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace android {

template <typename T>
class sp {
 public:
  sp() noexcept : m_ptr(nullptr) {}
  sp(std::nullptr_t) noexcept : m_ptr(nullptr) {}  // NOLINT: null converts, as on a device
  sp(T* other) : m_ptr(other) {                     // NOLINT
    if (m_ptr) m_ptr->incStrong(this);
  }
  sp(const sp<T>& other) : m_ptr(other.m_ptr) {
    if (m_ptr) m_ptr->incStrong(this);
  }
  sp(sp<T>&& other) noexcept : m_ptr(other.m_ptr) { other.m_ptr = nullptr; }
  template <typename U, typename = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  sp(U* other) : m_ptr(other) {  // NOLINT
    if (m_ptr) m_ptr->incStrong(this);
  }
  template <typename U, typename = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  sp(const sp<U>& other) : m_ptr(other.m_ptr) {  // NOLINT
    if (m_ptr) m_ptr->incStrong(this);
  }
  template <typename U, typename = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  sp(sp<U>&& other) noexcept : m_ptr(other.m_ptr) {  // NOLINT
    other.m_ptr = nullptr;
  }
  ~sp() {
    if (m_ptr) m_ptr->decStrong(this);
  }

  // Creates the object and its first strong reference in one step.
  template <typename... Args>
  static sp<T> make(Args&&... args) {
    return sp<T>(new T(std::forward<Args>(args)...));
  }
  // An unchecked downcast, for callers that know the dynamic type (interface lookups).
  template <typename U>
  static sp<T> cast(const sp<U>& other) {
    return sp<T>(static_cast<T*>(other.get()));
  }
  static sp<T> fromExisting(T* other) { return sp<T>(other); }

  sp& operator=(const sp<T>& other) {
    T* p = other.m_ptr;
    if (p) p->incStrong(this);
    T* old = m_ptr;
    m_ptr = p;
    if (old) old->decStrong(this);
    return *this;
  }
  sp& operator=(sp<T>&& other) noexcept {
    if (this != &other) {
      T* old = m_ptr;
      m_ptr = other.m_ptr;
      other.m_ptr = nullptr;
      if (old) old->decStrong(this);
    }
    return *this;
  }
  template <typename U>
  sp& operator=(const sp<U>& other) {
    return *this = sp<T>(other);
  }
  template <typename U>
  sp& operator=(sp<U>&& other) {
    return *this = sp<T>(std::move(other));
  }
  sp& operator=(T* other) { return *this = sp<T>(other); }
  sp& operator=(std::nullptr_t) {
    clear();
    return *this;
  }

  void clear() {
    T* old = m_ptr;
    m_ptr = nullptr;
    if (old) old->decStrong(this);
  }

  T& operator*() const { return *m_ptr; }
  T* operator->() const { return m_ptr; }
  T* get() const { return m_ptr; }
  explicit operator bool() const { return m_ptr != nullptr; }

 private:
  template <typename Y>
  friend class sp;
  T* m_ptr;
};

template <typename T, typename U>
bool operator==(const sp<T>& a, const sp<U>& b) { return a.get() == b.get(); }
template <typename T, typename U>
bool operator!=(const sp<T>& a, const sp<U>& b) { return a.get() != b.get(); }
template <typename T, typename U>
bool operator<(const sp<T>& a, const sp<U>& b) { return std::less<const void*>()(a.get(), b.get()); }
template <typename T, typename U>
bool operator==(const sp<T>& a, U* b) { return a.get() == b; }
template <typename T, typename U>
bool operator!=(const sp<T>& a, U* b) { return a.get() != b; }
template <typename T, typename U>
bool operator==(T* a, const sp<U>& b) { return a == b.get(); }
template <typename T, typename U>
bool operator!=(T* a, const sp<U>& b) { return a != b.get(); }
template <typename T>
bool operator==(const sp<T>& a, std::nullptr_t) { return a.get() == nullptr; }
template <typename T>
bool operator!=(const sp<T>& a, std::nullptr_t) { return a.get() != nullptr; }
template <typename T>
bool operator==(std::nullptr_t, const sp<T>& b) { return b.get() == nullptr; }
template <typename T>
bool operator!=(std::nullptr_t, const sp<T>& b) { return b.get() != nullptr; }

}  // namespace android
