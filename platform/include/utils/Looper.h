// android::Looper: a message loop polled by its thread. Messages run on the thread that calls
// pollOnce, in order of due time and, among equal times, in the order sent.
#pragma once

#include <utils/RefBase.h>
#include <utils/Timers.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace android {

struct Message {
  Message() : what(0) {}
  Message(int w) : what(w) {}  // NOLINT: implicit, as on a device
  int what;
};

class MessageHandler : public virtual RefBase {
 protected:
  ~MessageHandler() override;

 public:
  virtual void handleMessage(const Message& message) = 0;
};

class Looper : public RefBase {
 public:
  enum {
    POLL_WAKE = -1,
    POLL_CALLBACK = -2,
    POLL_TIMEOUT = -3,
    POLL_ERROR = -4,
  };

  explicit Looper(bool allowNonCallbacks);
  bool getAllowNonCallbacks() const { return mAllowNonCallbacks; }

  // Waits up to timeoutMillis (-1: for ever, 0: not at all) for a due message or a wake().
  // Runs every due message's handler on the calling thread and then returns POLL_CALLBACK;
  // POLL_WAKE after a wake() with nothing due; POLL_TIMEOUT when the time ran out. There are no
  // file descriptors on the host, so outFd/outEvents/outData are never set.
  int pollOnce(int timeoutMillis, int* outFd, int* outEvents, void** outData);
  int pollOnce(int timeoutMillis) { return pollOnce(timeoutMillis, nullptr, nullptr, nullptr); }

  void wake();

  void sendMessage(const sp<MessageHandler>& handler, const Message& message);
  void sendMessageDelayed(nsecs_t uptimeDelay, const sp<MessageHandler>& handler,
                          const Message& message);
  void sendMessageAtTime(nsecs_t uptime, const sp<MessageHandler>& handler,
                         const Message& message);
  void removeMessages(const sp<MessageHandler>& handler);
  void removeMessages(const sp<MessageHandler>& handler, int what);

  bool isPolling() const;

  // Host only, for tests: the messages not yet handled, in the order they will run, each with
  // the monotonic time (systemTime) it was sent at and the time it is due.
  struct PendingMessage {
    int what;
    nsecs_t sentAt;
    nsecs_t uptime;
  };
  std::vector<PendingMessage> pendingMessages() const;
  // Host only: due time of the next message, or -1 when none is pending.
  nsecs_t nextMessageUptime() const;
  // Host only: a handler runs or a message is due, and a thread that polled this looper is still
  // alive (or none has polled it yet).
  bool isBusy() const;
  // Host only: the last thread that polled this looper has ended (false again when one polls).
  void setOrphaned(bool orphaned) { mOrphaned = orphaned; }
  // Host only: unique per looper in the process, so that a thread ending late does not take a
  // new looper at the address of one it polled for that one.
  uint64_t serial() const { return mSerial; }

 protected:
  ~Looper() override;

 private:
  struct MessageEnvelope {
    nsecs_t uptime;
    nsecs_t sentAt;
    sp<MessageHandler> handler;
    Message message;
  };

  void enqueue(nsecs_t uptime, nsecs_t sentAt, const sp<MessageHandler>& handler,
               const Message& message);
  void removeIf(const sp<MessageHandler>& handler, bool anyWhat, int what);

  const bool mAllowNonCallbacks;
  mutable std::mutex mLock;
  std::condition_variable mCondition;
  std::deque<MessageEnvelope> mEnvelopes;  // sorted by uptime, FIFO among equal times
  bool mWakePending = false;
  bool mSendingMessage = false;
  bool mPolling = false;
  std::atomic<bool> mOrphaned{false};
  const uint64_t mSerial;
};

}  // namespace android
