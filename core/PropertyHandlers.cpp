// Property handlers and the software-assets op: the small answers the colour manager asks for.
#define LOG_TAG "PanelCorvane"

#include <utils/CallStack.h>

#include "base/Log.h"
#include "core/PanelCorvane.h"

namespace postblend {

namespace {
void entryLogging(const char* fn) {
  if (dbgOn(kDbgEntry)) PC_LOGD_AS(fn, "start\n");
  if (dbgOn(kDbgCallStack)) android::CallStack stack(LOG_TAG);
}
}  // namespace

int PanelCorvane::GetModeList(ScPayload* payload) {
  entryLogging(__func__);
  if (payload == nullptr || payload->len != sizeof(ColorModeList) || payload->payload == 0) {
    PC_LOGE("payload error!\n");
    return 0;
  }
  auto* target = reinterpret_cast<ColorModeList*>(static_cast<uintptr_t>(payload->payload));
  if (target != &mModeList) target->list = mModeList.list;
  return 0;
}

int PanelCorvane::GetNeedsUpdate(ScPayload* payload) {
  entryLogging(__func__);
  if (payload == nullptr || payload->len != sizeof(bool) || payload->payload == 0) {
    PC_LOGE("payload error!\n");
    return 0;
  }
  if (sBrightness != mLastTableBrightness && !sNeedUpdate) {
    sNeedUpdate = true;
    if (dbgOn(kDbgVerbose)) PC_LOGD("brightness changed!\n");
  }
  bool flag = sNeedUpdate;
  *reinterpret_cast<bool*>(static_cast<uintptr_t>(payload->payload)) = flag;
  if ((flag && dbgOn(kDbgVerbose)) || (!flag && dbgOn(kDbgEntry))) {
    PC_LOGD("%d\n", static_cast<int>(flag));
  }
  return 0;
}

int PanelCorvane::GetSupportTonemap(ScPayload* payload) {
  entryLogging(__func__);
  if (payload == nullptr || payload->len != sizeof(bool) || payload->payload == 0) {
    PC_LOGE("payload ERROR!\n");
    return 0;
  }
  *reinterpret_cast<bool*>(static_cast<uintptr_t>(payload->payload)) = false;
  return 0;
}

int PanelCorvane::ProcessModeSwAssets(const ScPayload& /*input*/, ScPayload* /*output*/) {
  entryLogging(__func__);
  return 0;
}

}  // namespace postblend
