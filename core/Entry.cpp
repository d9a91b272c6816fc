#define LOG_TAG "PanelCorvane"

#include <utils/CallStack.h>

#include "base/Log.h"
#include "core/PanelCorvane.h"

using postblend::PanelCorvane;
using postblend::ScPostBlendInterface;

extern "C" __attribute__((visibility("default"))) ScPostBlendInterface* GetScPostBlendInterface(
    int major, int minor) {
  if (postblend::dbgOn(postblend::kDbgCallStack)) android::CallStack stack(LOG_TAG);
  if (major == 2 && minor == 0) return new PanelCorvane();
  __android_log_print(ANDROID_LOG_ERROR, LOG_TAG, "Invalid major_version %d minor_version %d",
                      major, minor);
  return nullptr;
}
