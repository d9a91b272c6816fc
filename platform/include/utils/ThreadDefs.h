// Thread priorities (nice values) of the platform's thread API.
#pragma once

#include <stdint.h>

namespace android {

enum {
  PRIORITY_LOWEST = 19,
  PRIORITY_BACKGROUND = 10,
  PRIORITY_NORMAL = 0,
  PRIORITY_FOREGROUND = -2,
  PRIORITY_DISPLAY = -4,
  PRIORITY_URGENT_DISPLAY = -8,
  PRIORITY_AUDIO = -16,
  PRIORITY_URGENT_AUDIO = -19,
  PRIORITY_HIGHEST = -20,
  PRIORITY_DEFAULT = PRIORITY_NORMAL,
  PRIORITY_MORE_FAVORABLE = -1,
  PRIORITY_LESS_FAVORABLE = +1,
};

}  // namespace android
