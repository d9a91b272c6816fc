// Binder NDK C++ interface bases: SharedRefBase (objects shared through std::shared_ptr),
// ICInterface (an interface with a binder) and BnCInterface<I> (a local implementation).
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>

#include <memory>
#include <mutex>
#include <utility>

namespace ndk {

class SharedRefBase {
 public:
  SharedRefBase() = default;
  virtual ~SharedRefBase() = default;

  // The shared reference of this object; the first call creates it.
  template <typename T = SharedRefBase>
  std::shared_ptr<T> ref() {
    std::shared_ptr<SharedRefBase> thiz;
    std::call_once(mFlagThis, [&] {
      thiz = std::shared_ptr<SharedRefBase>(this);
      mThis = thiz;
    });
    if (!thiz) thiz = mThis.lock();
    return std::static_pointer_cast<T>(thiz);
  }

  template <class T, class... Args>
  static std::shared_ptr<T> make(Args&&... args) {
    T* t = new T(std::forward<Args>(args)...);
    return t->template ref<T>();
  }

 private:
  SharedRefBase(const SharedRefBase&) = delete;
  SharedRefBase& operator=(const SharedRefBase&) = delete;
  std::once_flag mFlagThis;
  std::weak_ptr<SharedRefBase> mThis;
};

class ICInterface : public SharedRefBase {
 public:
  ICInterface() = default;
  ~ICInterface() override = default;

  virtual SpAIBinder asBinder() = 0;
  virtual bool isRemote() = 0;
  virtual binder_status_t dump(int /*fd*/, const char** /*args*/, uint32_t /*numArgs*/) {
    return STATUS_OK;
  }
  virtual binder_status_t handleShellCommand(int /*in*/, int /*out*/, int /*err*/,
                                             const char** /*argv*/, uint32_t /*argc*/) {
    return STATUS_OK;
  }

  // The local interface object behind a binder, or null.
  static std::shared_ptr<ICInterface> asInterface(AIBinder* binder) {
    if (binder == nullptr || AIBinder_isRemote(binder)) return nullptr;
    void* userData = AIBinder_getUserData(binder);
    return userData != nullptr ? static_cast<ICInterfaceData*>(userData)->interface : nullptr;
  }

  // The class of the binders of an interface; its binders keep their interface object alive.
  static AIBinder_Class* defineClass(const char* interfaceDescriptor,
                                     AIBinder_Class_onTransact onTransact) {
    return AIBinder_Class_define(interfaceDescriptor, ICInterfaceData::onCreate,
                                 ICInterfaceData::onDestroy, onTransact);
  }

 private:
  struct ICInterfaceData {
    std::shared_ptr<ICInterface> interface;
    static void* onCreate(void* args) {
      return new ICInterfaceData{static_cast<ICInterface*>(args)->ref<ICInterface>()};
    }
    static void onDestroy(void* userData) { delete static_cast<ICInterfaceData*>(userData); }
  };
};

template <typename INTERFACE>
class BnCInterface : public INTERFACE {
 public:
  BnCInterface() = default;
  ~BnCInterface() override = default;

  // The binder of this object, created by createBinder() when none is alive.
  SpAIBinder asBinder() final {
    std::lock_guard<std::mutex> lock(mMutex);
    SpAIBinder binder;
    if (mWeakBinder.get() != nullptr) binder = mWeakBinder.promote();
    if (binder.get() == nullptr) {
      binder = createBinder();
      mWeakBinder.set(AIBinder_Weak_new(binder.get()));
    }
    return binder;
  }
  bool isRemote() final { return false; }

 protected:
  virtual SpAIBinder createBinder() = 0;

 private:
  std::mutex mMutex;
  ScopedAIBinder_Weak mWeakBinder;
};

}  // namespace ndk
