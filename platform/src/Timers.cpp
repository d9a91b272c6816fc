#include <utils/SystemClock.h>
#include <utils/Timers.h>

#include <climits>
#include <ctime>

extern "C" nsecs_t systemTime(int clock) {
  clockid_t id = CLOCK_MONOTONIC;
  switch (clock) {
    case SYSTEM_TIME_REALTIME: id = CLOCK_REALTIME; break;
    case SYSTEM_TIME_PROCESS: id = CLOCK_PROCESS_CPUTIME_ID; break;
    case SYSTEM_TIME_THREAD: id = CLOCK_THREAD_CPUTIME_ID; break;
    case SYSTEM_TIME_BOOTTIME: id = CLOCK_BOOTTIME; break;
    default: break;
  }
  timespec t{};
  clock_gettime(id, &t);
  return static_cast<nsecs_t>(t.tv_sec) * 1000000000LL + t.tv_nsec;
}

int toMillisecondTimeoutDelay(nsecs_t referenceTime, nsecs_t timeoutTime) {
  if (timeoutTime <= referenceTime) return 0;
  nsecs_t ms = (timeoutTime - referenceTime + 999999) / 1000000;
  return ms > INT_MAX ? INT_MAX : static_cast<int>(ms);
}

namespace android {

int64_t uptimeNanos() { return systemTime(SYSTEM_TIME_MONOTONIC); }
int64_t uptimeMillis() { return nanoseconds_to_milliseconds(uptimeNanos()); }
int64_t elapsedRealtimeNano() { return systemTime(SYSTEM_TIME_BOOTTIME); }
int64_t elapsedRealtime() { return nanoseconds_to_milliseconds(elapsedRealtimeNano()); }

}  // namespace android
