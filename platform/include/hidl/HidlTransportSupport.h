// HIDL thread-pool set-up. The host's services are called in-process, so there is no pool.
#pragma once

#include <cstddef>

namespace android {
namespace hardware {

inline void configureRpcThreadpool(size_t /*maxThreads*/, bool /*callerWillJoin*/) {}
inline void joinRpcThreadpool() {}

}  // namespace hardware
}  // namespace android
