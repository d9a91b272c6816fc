// The display service ("display.qservice") as its clients see it: numbered commands with
// parcels. A host program provides one by deriving from BnQService and registering it with
// defaultServiceManager()->addService(String16("display.qservice"), ...).
#pragma once

#include <binder/IInterface.h>
#include <binder/Parcel.h>
#include <utils/Errors.h>

#include <cstdint>

namespace qService {

class IQService : public android::IInterface {
 public:
  DECLARE_META_INTERFACE(QService)

  enum {
    SCREEN_REFRESH = 20,  // redraw the screen
  };

  virtual android::status_t dispatch(uint32_t command, const android::Parcel* inParcel,
                                     android::Parcel* outParcel) = 0;
};

class BnQService : public android::BnInterface<IQService> {
 public:
  // The transaction code is the command.
  android::status_t onTransact(uint32_t code, const android::Parcel& data,
                               android::Parcel* reply, uint32_t flags = 0) override;
};

}  // namespace qService
