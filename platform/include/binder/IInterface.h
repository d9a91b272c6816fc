// android::IInterface and BnInterface<I>: a binder interface and its local implementation base.
// interface_cast<I>(binder) finds the I behind a binder; on the host there are no remote
// proxies, so a binder that does not implement I gives null.
#pragma once

#include <binder/Binder.h>
#include <utils/RefBase.h>
#include <utils/String16.h>

namespace android {

class IInterface : public virtual RefBase {
 public:
  IInterface();
  static sp<IBinder> asBinder(const IInterface* iface);
  static sp<IBinder> asBinder(const sp<IInterface>& iface);

 protected:
  ~IInterface() override;
  virtual IBinder* onAsBinder() = 0;
};

template <typename INTERFACE>
inline sp<INTERFACE> interface_cast(const sp<IBinder>& obj) {
  return INTERFACE::asInterface(obj);
}

template <typename INTERFACE>
class BnInterface : public INTERFACE, public BBinder {
 public:
  sp<IInterface> queryLocalInterface(const String16& descriptor) override {
    if (descriptor == INTERFACE::descriptor) return sp<IInterface>(static_cast<INTERFACE*>(this));
    return nullptr;
  }
  const String16& getInterfaceDescriptor() const override { return INTERFACE::descriptor; }

 protected:
  typedef INTERFACE BaseInterface;
  IBinder* onAsBinder() override { return this; }
};

}  // namespace android

// In the class body of I##INTERFACE.
#define DECLARE_META_INTERFACE(INTERFACE)                                                   \
 public:                                                                                    \
  static const ::android::String16 descriptor;                                              \
  static ::android::sp<I##INTERFACE> asInterface(const ::android::sp<::android::IBinder>& obj); \
  virtual const ::android::String16& getInterfaceDescriptor() const;                        \
  I##INTERFACE();                                                                           \
  ~I##INTERFACE() override;

// In one source file, in the namespace of I##INTERFACE.
#define IMPLEMENT_META_INTERFACE(INTERFACE, NAME)                                            \
  const ::android::String16 I##INTERFACE::descriptor(NAME);                                  \
  ::android::sp<I##INTERFACE> I##INTERFACE::asInterface(                                     \
      const ::android::sp<::android::IBinder>& obj) {                                        \
    if (obj == nullptr) return nullptr;                                                      \
    return ::android::sp<I##INTERFACE>::cast(obj->queryLocalInterface(I##INTERFACE::descriptor)); \
  }                                                                                          \
  const ::android::String16& I##INTERFACE::getInterfaceDescriptor() const {                 \
    return I##INTERFACE::descriptor;                                                         \
  }                                                                                          \
  I##INTERFACE::I##INTERFACE() {}                                                            \
  I##INTERFACE::~I##INTERFACE() {}
