#define LOG_TAG "PanelCorvane"

#include "core/MessageQueue.h"

#include "base/Log.h"
#include "core/PanelCorvane.h"

namespace postblend {
namespace impl {

void MessageQueue::Handler::handleMessage(const android::Message& message) {
  if (mQueue.mOwner != nullptr) mQueue.mOwner->onMessageReceived(message.what);
  if (dbgOn(kDbgVerbose)) PC_LOGD("handleMessage %d\n", message.what);
}

void MessageQueue::Handler::sendMessage(int what) {
  if (dbgOn(kDbgVerbose)) PC_LOGD("sendMessage %d\n", what);
  mQueue.mLooper->sendMessage(android::sp<android::MessageHandler>(this), android::Message(what));
}

void MessageQueue::Handler::sendMessageDelayed(int delayMs, int what) {
  if (dbgOn(kDbgVerbose)) PC_LOGD("sendMessageDelayed %d\n", what);
  mQueue.mLooper->sendMessageDelayed(static_cast<nsecs_t>(delayMs) * 1000000,
                                     android::sp<android::MessageHandler>(this),
                                     android::Message(what));
}

void MessageQueue::init(PanelCorvane* owner) {
  mOwner = owner;
  mLooper = android::sp<android::Looper>(new android::Looper(true));
  mHandler = android::sp<Handler>(new Handler(*this));
}

void MessageQueue::waitMessage() {
  int ret = mLooper->pollOnce(-1);
  switch (ret) {
    case android::Looper::POLL_WAKE:
    case android::Looper::POLL_CALLBACK:
    case android::Looper::POLL_TIMEOUT:
      break;
    case android::Looper::POLL_ERROR:
      PC_LOGE("Looper::POLL_ERROR\n");
      break;
    default:
      PC_LOGE("Looper::pollOnce() returned unknown status %d\n", ret);
      break;
  }
}

// Part of the interface; messages go through sendMessage.
void MessageQueue::postMessage(android::sp<android::MessageHandler>&& handler) {
  mLooper->sendMessage(handler, android::Message());
}

void MessageQueue::sendMessage(int what) {
  if (mHandler != nullptr) mHandler->sendMessage(what);
}

// Part of the interface; nothing posts a delayed message.
void MessageQueue::sendMessageDelayed(int delayMs, int what) {
  if (mHandler != nullptr) mHandler->sendMessageDelayed(delayMs, what);
}

}  // namespace impl
}  // namespace postblend
