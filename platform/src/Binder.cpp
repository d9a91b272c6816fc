#include <binder/Binder.h>
#include <binder/IInterface.h>
#include <binder/Parcel.h>

namespace android {

IBinder::IBinder() = default;
IBinder::~IBinder() = default;

sp<IInterface> IBinder::queryLocalInterface(const String16& /*descriptor*/) { return nullptr; }
BBinder* IBinder::localBinder() { return nullptr; }
BpBinder* IBinder::remoteBinder() { return nullptr; }

BBinder::BBinder() = default;
BBinder::~BBinder() = default;

const String16& BBinder::getInterfaceDescriptor() const {
  static const String16* empty = new String16();
  return *empty;
}

status_t BBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
  data.setDataPosition(0);
  if (code == PING_TRANSACTION) return pingBinder();
  status_t err = onTransact(code, data, reply, flags);
  if (reply != nullptr) reply->setDataPosition(0);
  return err;
}

status_t BBinder::onTransact(uint32_t code, const Parcel& /*data*/, Parcel* reply,
                             uint32_t /*flags*/) {
  if (code == INTERFACE_TRANSACTION && reply != nullptr)
    return reply->writeString16(getInterfaceDescriptor());
  return UNKNOWN_TRANSACTION;
}

IInterface::IInterface() = default;
IInterface::~IInterface() = default;

sp<IBinder> IInterface::asBinder(const IInterface* iface) {
  return iface != nullptr ? sp<IBinder>(const_cast<IInterface*>(iface)->onAsBinder()) : nullptr;
}

sp<IBinder> IInterface::asBinder(const sp<IInterface>& iface) { return asBinder(iface.get()); }

}  // namespace android
