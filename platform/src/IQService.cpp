#include <IQService.h>

namespace qService {

IMPLEMENT_META_INTERFACE(QService, "android.display.IQService")

android::status_t BnQService::onTransact(uint32_t code, const android::Parcel& data,
                                         android::Parcel* reply, uint32_t flags) {
  if (code == INTERFACE_TRANSACTION || code == PING_TRANSACTION)
    return BBinder::onTransact(code, data, reply, flags);
  return dispatch(code, &data, reply);
}

}  // namespace qService
