// android::IServiceManager: the binder service registry. On the host it is one in-process,
// thread-safe registry shared by everything loaded in the process. Lookups never wait: a
// service that is not there is null at once.
#pragma once

#include <binder/IBinder.h>
#include <binder/IInterface.h>
#include <utils/Errors.h>
#include <utils/String16.h>

#include <vector>

namespace android {

class IServiceManager : public IInterface {
 public:
  enum {
    DUMP_FLAG_PRIORITY_CRITICAL = 1 << 0,
    DUMP_FLAG_PRIORITY_HIGH = 1 << 1,
    DUMP_FLAG_PRIORITY_NORMAL = 1 << 2,
    DUMP_FLAG_PRIORITY_DEFAULT = 1 << 3,
    DUMP_FLAG_PRIORITY_ALL = DUMP_FLAG_PRIORITY_CRITICAL | DUMP_FLAG_PRIORITY_HIGH |
                             DUMP_FLAG_PRIORITY_NORMAL | DUMP_FLAG_PRIORITY_DEFAULT,
  };

  virtual sp<IBinder> getService(const String16& name) const = 0;
  virtual sp<IBinder> checkService(const String16& name) const = 0;
  // Registers or replaces the service of that name.
  virtual status_t addService(const String16& name, const sp<IBinder>& service,
                              bool allowIsolated = false,
                              int dumpsysFlags = DUMP_FLAG_PRIORITY_DEFAULT) = 0;
  virtual std::vector<String16> listServices(int dumpsysFlags = DUMP_FLAG_PRIORITY_ALL) = 0;

 protected:
  ~IServiceManager() override;
};

sp<IServiceManager> defaultServiceManager();

template <typename INTERFACE>
status_t getService(const String16& name, sp<INTERFACE>* outService) {
  const sp<IServiceManager> sm = defaultServiceManager();
  if (sm == nullptr) return NAME_NOT_FOUND;
  *outService = interface_cast<INTERFACE>(sm->getService(name));
  return *outService != nullptr ? OK : NAME_NOT_FOUND;
}

}  // namespace android
