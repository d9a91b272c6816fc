// The host looper: a condition variable stands in for the device's eventfd and epoll.
#include <utils/Looper.h>

#include <chrono>
#include <limits>

namespace android {

namespace {
constexpr nsecs_t kForever = std::numeric_limits<nsecs_t>::max();
}  // namespace

MessageHandler::~MessageHandler() = default;

Looper::Looper(bool allowNonCallbacks) : mAllowNonCallbacks(allowNonCallbacks) {}

Looper::~Looper() = default;

int Looper::pollOnce(int timeoutMillis, int* /*outFd*/, int* /*outEvents*/, void** /*outData*/) {
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
