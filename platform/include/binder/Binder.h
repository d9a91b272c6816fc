// android::BBinder: the local side of a binder object; transact() reaches onTransact().
#pragma once

#include <binder/IBinder.h>

namespace android {

class BBinder : public IBinder {
 public:
  BBinder();

  const String16& getInterfaceDescriptor() const override;
  bool isBinderAlive() const override { return true; }
  status_t pingBinder() override { return OK; }
  status_t transact(uint32_t code, const Parcel& data, Parcel* reply,
                    uint32_t flags = 0) final;
  BBinder* localBinder() override { return this; }

 protected:
  ~BBinder() override;
  virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply,
                              uint32_t flags = 0);
};

}  // namespace android
