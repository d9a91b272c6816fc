// The worker thread's loop and the jobs it dispatches.
#define LOG_TAG "PanelCorvane"

#include <binder/Parcel.h>

#include "base/Log.h"
#include "core/PanelCorvane.h"

namespace postblend {

bool PanelCorvane::MessageQueueThread::threadLoop() {
  if (mOwner == nullptr) return false;
  return mOwner->threadLoop();
}

bool PanelCorvane::threadLoop() {
  while (mWorkerRunning) {
    if (!mQueue) {
      mWorkerRunning = false;
      break;
    }
    mQueue->waitMessage();
  }
  PC_LOGD("EXIT!\n");
  return false;  // one pass: the platform thread ends here
}

// Senders run on binder threads too: the parts lock keeps Init from replacing the queue under
// them.
void PanelCorvane::refresh() {
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  if (mQueue) mQueue->sendMessage(kMsgRefresh);
}

void PanelCorvane::initHelpService() {
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  if (mQueue) mQueue->sendMessage(kMsgHelpServiceInit);
}

void PanelCorvane::load3dLut() {
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  if (mQueue) mQueue->sendMessage(kMsgLoad3dLut);
}

void PanelCorvane::onMessageReceived(int what) {
  switch (what) {
    case kMsgRefresh:
      onRefresh();
      break;
    case kMsgHelpServiceInit:
      onHelpServiceInit();
      break;
    case kMsgLoad3dLut:
      onLoad3dLut();
      break;
    default:
      PC_LOGE("unsupport msg!\n");
      break;
  }
}

int PanelCorvane::onRefresh() {
  if (dbgOn(kDbgVerbose)) PC_LOGD("Trigger screen refresh\n");
  android::Parcel in;
  android::Parcel reply;
  in.writeInt32(1);
  in.setDataPosition(0);
  int status = 0;
  if (mQService != nullptr) {
    status = mQService->dispatch(kScreenRefreshCommand, &in, &reply);
    if (status != 0) PC_LOGE("Failed to dispatch screen refresh\n");
  }
  return status;
}

}  // namespace postblend
