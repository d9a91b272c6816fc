// Uptime (monotonic) and elapsed real time.
#pragma once

#include <stdint.h>

namespace android {

int64_t uptimeMillis();
int64_t uptimeNanos();
int64_t elapsedRealtime();
int64_t elapsedRealtimeNano();

}  // namespace android
