// Log helpers: every line is "1-<function>: text" under the file's LOG_TAG.
#pragma once

#include <log/log.h>

#include "base/PanelCorvaneBase.h"

#define PC_LOGD(fmt, ...) \
  __android_log_print(ANDROID_LOG_DEBUG, LOG_TAG, "1-%s: " fmt, __func__, ##__VA_ARGS__)
#define PC_LOGE(fmt, ...) \
  __android_log_print(ANDROID_LOG_ERROR, LOG_TAG, "1-%s: " fmt, __func__, ##__VA_ARGS__)
// For lines that name a function other than the one they are written from.
#define PC_LOGD_AS(fn, fmt, ...) \
  __android_log_print(ANDROID_LOG_DEBUG, LOG_TAG, "1-%s: " fmt, fn, ##__VA_ARGS__)
#define PC_LOGE_AS(fn, fmt, ...) \
  __android_log_print(ANDROID_LOG_ERROR, LOG_TAG, "1-%s: " fmt, fn, ##__VA_ARGS__)

namespace postblend {

// Log-mask bits of PanelCorvaneBase::sDebug.
enum : uint32_t {
  kDbgVerbose = 0x02,
  kDbgEntry = 0x04,
  kDbgTrace = 0x08,
  kDbgDump = 0x10,
  kDbgCallStack = 0x20,
};

inline bool dbgOn(uint32_t bit) {
  return (PanelCorvaneBase::sDebug.load(std::memory_order_relaxed) & bit) != 0;
}

}  // namespace postblend
