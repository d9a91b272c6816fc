// The worker's message queue: a thin layer over the platform looper. Every message is handled
// by the owning plugin object's onMessageReceived, on the worker thread, in the order sent.
#pragma once

#include <utils/Looper.h>
#include <utils/StrongPointer.h>

namespace postblend {

class PanelCorvane;

namespace impl {

class MessageQueue {
 public:
  class Handler : public android::MessageHandler {
   public:
    explicit Handler(MessageQueue& queue) : mQueue(queue) {}
    void handleMessage(const android::Message& message) override;
    virtual void sendMessage(int what);
    virtual void sendMessageDelayed(int delayMs, int what);

   private:
    MessageQueue& mQueue;
  };

  virtual ~MessageQueue() = default;
  virtual void init(PanelCorvane* owner);
  virtual void waitMessage();
  virtual void postMessage(android::sp<android::MessageHandler>&& handler);
  virtual void sendMessage(int what);
  virtual void sendMessageDelayed(int delayMs, int what);

  // Host tests look at the looper to check due times.
  const android::sp<android::Looper>& looper() const { return mLooper; }

 private:
  PanelCorvane* mOwner = nullptr;
  android::sp<android::Looper> mLooper;
  android::sp<Handler> mHandler;
};

}  // namespace impl
}  // namespace postblend
