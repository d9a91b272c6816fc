// The host looper: a condition variable stands in for the device's eventfd and epoll.
#include <utils/Looper.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>
#include <utility>

#include "pchost/host.h"

namespace android {

namespace {
constexpr nsecs_t kForever = std::numeric_limits<nsecs_t>::max();

// Every live looper, for waitForIdleLoopers. Lock order: this registry, then a looper's lock.
struct LiveLoopers {
  std::mutex lock;
  std::vector<Looper*> loopers;
};
LiveLoopers& liveLoopers() {
  static LiveLoopers* live = new LiveLoopers;  // never destroyed: loopers may outlive statics
  return *live;
}

// The loopers this thread has polled; when the thread ends, the ones still alive are orphaned:
// their messages will never run, so they do not count as work under way.
struct PolledByThisThread {
  std::vector<std::pair<Looper*, uint64_t>> loopers;  // with its serial
  ~PolledByThisThread() {
    LiveLoopers& live = liveLoopers();
    std::lock_guard<std::mutex> lock(live.lock);
    for (const auto& [l, serial] : loopers)
      if (std::find(live.loopers.begin(), live.loopers.end(), l) != live.loopers.end() &&
          l->serial() == serial)
        l->setOrphaned(true);
  }
};
thread_local PolledByThisThread tPolled;

uint64_t nextLooperSerial() {
  static std::atomic<uint64_t> serials{0};
  return ++serials;
}
}  // namespace

MessageHandler::~MessageHandler() = default;

Looper::Looper(bool allowNonCallbacks)
    : mAllowNonCallbacks(allowNonCallbacks), mSerial(nextLooperSerial()) {
  std::lock_guard<std::mutex> lock(liveLoopers().lock);
  liveLoopers().loopers.push_back(this);
}

Looper::~Looper() {
  LiveLoopers& live = liveLoopers();
  std::lock_guard<std::mutex> lock(live.lock);
  live.loopers.erase(std::remove(live.loopers.begin(), live.loopers.end(), this), live.loopers.end());
}

bool Looper::isBusy() const {
  std::lock_guard<std::mutex> lock(mLock);
  if (mOrphaned) return false;
  return mSendingMessage ||
         (!mEnvelopes.empty() && mEnvelopes.front().uptime <= systemTime(SYSTEM_TIME_MONOTONIC));
}

int Looper::pollOnce(int timeoutMillis, int* /*outFd*/, int* /*outEvents*/, void** /*outData*/) {
  const std::pair<Looper*, uint64_t> self(this, mSerial);
  if (std::find(tPolled.loopers.begin(), tPolled.loopers.end(), self) == tPolled.loopers.end()) {
    tPolled.loopers.push_back(self);
    mOrphaned = false;
  }
  const nsecs_t start = systemTime(SYSTEM_TIME_MONOTONIC);
  const nsecs_t deadline = timeoutMillis < 0 ? kForever : start + ms2ns(timeoutMillis);

  std::unique_lock<std::mutex> lock(mLock);
  mPolling = true;
  int result = POLL_WAKE;
  for (;;) {
    const nsecs_t now = systemTime(SYSTEM_TIME_MONOTONIC);
    const bool due = !mEnvelopes.empty() && mEnvelopes.front().uptime <= now;
    if (mWakePending || due) {
      mWakePending = false;
      break;
    }
    if (now >= deadline) {
      result = POLL_TIMEOUT;
      break;
    }
    nsecs_t until = deadline;
    if (!mEnvelopes.empty() && mEnvelopes.front().uptime < until) until = mEnvelopes.front().uptime;
    if (until == kForever) {
      mCondition.wait(lock);
    } else {
      // steady_clock is CLOCK_MONOTONIC, the clock of systemTime and of message times.
      mCondition.wait_until(lock, std::chrono::steady_clock::time_point(std::chrono::nanoseconds(until)));
    }
  }
  mPolling = false;

  // The clock is read again for every message, so a message sent by a handler for now also
  // runs in this call.
  while (!mEnvelopes.empty() && mEnvelopes.front().uptime <= systemTime(SYSTEM_TIME_MONOTONIC)) {
    MessageEnvelope envelope = std::move(mEnvelopes.front());
    mEnvelopes.pop_front();
    mSendingMessage = true;
    lock.unlock();
    envelope.handler->handleMessage(envelope.message);
    envelope.handler.clear();  // may delete the handler: not under the lock
    lock.lock();
    mSendingMessage = false;
    result = POLL_CALLBACK;
  }
  return result;
}

void Looper::wake() {
  std::lock_guard<std::mutex> lock(mLock);
  mWakePending = true;
  mCondition.notify_all();
}

void Looper::sendMessage(const sp<MessageHandler>& handler, const Message& message) {
  nsecs_t now = systemTime(SYSTEM_TIME_MONOTONIC);
  enqueue(now, now, handler, message);
}

void Looper::sendMessageDelayed(nsecs_t uptimeDelay, const sp<MessageHandler>& handler,
                                const Message& message) {
  nsecs_t now = systemTime(SYSTEM_TIME_MONOTONIC);
  nsecs_t uptime = uptimeDelay > kForever - now ? kForever : now + uptimeDelay;
  enqueue(uptime, now, handler, message);
}

void Looper::sendMessageAtTime(nsecs_t uptime, const sp<MessageHandler>& handler,
                               const Message& message) {
  enqueue(uptime, systemTime(SYSTEM_TIME_MONOTONIC), handler, message);
}

void Looper::enqueue(nsecs_t uptime, nsecs_t sentAt, const sp<MessageHandler>& handler,
                     const Message& message) {
  if (handler == nullptr) return;
  std::lock_guard<std::mutex> lock(mLock);
  auto it = mEnvelopes.begin();
  while (it != mEnvelopes.end() && it->uptime <= uptime) ++it;
  const bool atHead = it == mEnvelopes.begin();
  mEnvelopes.insert(it, MessageEnvelope{uptime, sentAt, handler, message});
  // A new head changes when the poller must wake up. While a handler runs, the poller looks
  // at the queue again anyway and must not return a spurious wake afterwards.
  if (atHead && !mSendingMessage) {
    mWakePending = true;
    mCondition.notify_all();
  }
}

void Looper::removeMessages(const sp<MessageHandler>& handler) { removeIf(handler, true, 0); }

void Looper::removeMessages(const sp<MessageHandler>& handler, int what) {
  removeIf(handler, false, what);
}

void Looper::removeIf(const sp<MessageHandler>& handler, bool anyWhat, int what) {
  std::vector<sp<MessageHandler>> released;  // dropped after the lock
  std::lock_guard<std::mutex> lock(mLock);
  for (auto it = mEnvelopes.begin(); it != mEnvelopes.end();) {
    if (it->handler == handler && (anyWhat || it->message.what == what)) {
      released.push_back(std::move(it->handler));
      it = mEnvelopes.erase(it);
    } else {
      ++it;
    }
  }
}

bool Looper::isPolling() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mPolling;
}

std::vector<Looper::PendingMessage> Looper::pendingMessages() const {
  std::lock_guard<std::mutex> lock(mLock);
  std::vector<PendingMessage> out;
  out.reserve(mEnvelopes.size());
  for (const auto& e : mEnvelopes) out.push_back({e.message.what, e.sentAt, e.uptime});
  return out;
}

nsecs_t Looper::nextMessageUptime() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mEnvelopes.empty() ? -1 : mEnvelopes.front().uptime;
}

}  // namespace android

namespace pchost {

bool waitForIdleLoopers(double timeoutSeconds) {
  const auto until = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(timeoutSeconds));
  for (;;) {
    bool busy = false;
    {
      auto& live = android::liveLoopers();
      std::lock_guard<std::mutex> lock(live.lock);
      for (android::Looper* l : live.loopers) busy = busy || l->isBusy();
    }
    if (!busy) return true;
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

}  // namespace pchost
