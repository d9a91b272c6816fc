// The HIDL service registry that generated interfaces use. On the host it is one in-process,
// thread-safe registry keyed by interface descriptor and instance name.
#pragma once

#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <string>

namespace android {
namespace hidl {
namespace base {
namespace V1_0 {
struct IBase;
}  // namespace V1_0
}  // namespace base
}  // namespace hidl

namespace hardware {
namespace details {

// Registers `service` under its interface descriptor and `name`, replacing an earlier one.
// Takes a plain pointer: a failed registration takes no reference, so it cannot delete an
// object that nothing else references yet.
status_t registerAsServiceInternal(::android::hidl::base::V1_0::IBase* service,
                                   const std::string& name);

// The service registered under that descriptor and instance, or null at once.
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor,
                                                             const std::string& instance,
                                                             bool retry, bool getStub);

}  // namespace details
}  // namespace hardware
}  // namespace android
