// The looper: order of messages, wake-ups, time-outs, due times and the polling thread.
#include <gtest/gtest.h>
#include <utils/Looper.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using android::Looper;
using android::Message;
using android::sp;

class Recorder : public android::MessageHandler {
 public:
  // What the handler does on a message of this number: send `then` to the same looper.
  Recorder(Looper* looper = nullptr, int on = -1, int then = -1)
      : mLooper(looper), mOn(on), mThen(then) {}
  void handleMessage(const Message& message) override {
    std::lock_guard<std::mutex> lock(mLock);
    mWhats.push_back(message.what);
    mThreads.push_back(std::this_thread::get_id());
    if (mLooper != nullptr && message.what == mOn) mLooper->sendMessage(this, Message(mThen));
  }
  std::vector<int> whats() {
    std::lock_guard<std::mutex> lock(mLock);
    return mWhats;
  }
  std::vector<std::thread::id> threads() {
    std::lock_guard<std::mutex> lock(mLock);
    return mThreads;
  }

 private:
  Looper* mLooper;
  int mOn;
  int mThen;
  std::mutex mLock;
  std::vector<int> mWhats;
  std::vector<std::thread::id> mThreads;
};

TEST(Looper, RunsDueMessagesByTimeThenInSendingOrder) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  const nsecs_t now = systemTime(SYSTEM_TIME_MONOTONIC);
  looper->sendMessageAtTime(now - 10, rec, Message(3));
  looper->sendMessageAtTime(now - 30, rec, Message(1));
  looper->sendMessageAtTime(now - 10, rec, Message(4));
  looper->sendMessageAtTime(now - 20, rec, Message(2));
  looper->sendMessageAtTime(now - 10, rec, Message(5));
  EXPECT_EQ(Looper::POLL_CALLBACK, looper->pollOnce(0));
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5}), rec->whats());
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(0));
}

TEST(Looper, MessageSentByAHandlerRunsInTheSamePollWithoutALaterWake) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make(looper.get(), 1, 2);
  looper->sendMessage(rec, Message(1));
  EXPECT_EQ(Looper::POLL_CALLBACK, looper->pollOnce(0));
  EXPECT_EQ((std::vector<int>{1, 2}), rec->whats());
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(0));
}

TEST(Looper, WakeAndTimeout) {
  auto looper = sp<Looper>::make(true);
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(0));
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(1));
  looper->wake();
  EXPECT_EQ(Looper::POLL_WAKE, looper->pollOnce(-1)) << "a wake before the poll is kept";
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(0)) << "and consumed once";

  std::atomic<int> result{0};
  std::thread poller([&] { result = looper->pollOnce(-1); });
  looper->wake();
  poller.join();
  EXPECT_EQ(Looper::POLL_WAKE, result.load());
}

TEST(Looper, DelayedMessageIsDueAfterItsDelay) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  looper->sendMessageDelayed(ms2ns(30), rec, Message(7));
  auto pending = looper->pendingMessages();
  ASSERT_EQ(1u, pending.size());
  EXPECT_EQ(7, pending[0].what);
  EXPECT_EQ(30000000, pending[0].uptime - pending[0].sentAt);
  EXPECT_EQ(pending[0].uptime, looper->nextMessageUptime());

  looper->pollOnce(0);
  if (systemTime(SYSTEM_TIME_MONOTONIC) < pending[0].uptime) {
    EXPECT_TRUE(rec->whats().empty()) << "not due yet";
  }
  looper->sendMessageDelayed(seconds_to_nanoseconds(3600), rec, Message(8));
  looper->removeMessages(rec, 7);
  ASSERT_EQ(1u, looper->pendingMessages().size());
  EXPECT_EQ(8, looper->pendingMessages()[0].what);
  looper->removeMessages(rec);
  EXPECT_EQ(-1, looper->nextMessageUptime());
}

TEST(Looper, HandlersRunOnThePollingThread) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  std::atomic<int> result{0};
  std::thread::id pollerId;
  std::thread poller([&] { result = looper->pollOnce(-1); });
  pollerId = poller.get_id();
  looper->sendMessage(rec, Message(9));
  poller.join();
  EXPECT_EQ(Looper::POLL_CALLBACK, result.load());
  ASSERT_EQ(1u, rec->threads().size());
  EXPECT_EQ(pollerId, rec->threads()[0]);
}

TEST(Looper, ManySendersOnePoller) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  constexpr int kSenders = 4, kEach = 200;
  std::vector<std::thread> senders;
  for (int s = 0; s < kSenders; ++s)
    senders.emplace_back([&, s] {
      for (int i = 0; i < kEach; ++i) looper->sendMessage(rec, Message(s * kEach + i));
    });
  std::thread poller([&] {
    while (rec->whats().size() < static_cast<size_t>(kSenders * kEach)) looper->pollOnce(100);
  });
  for (auto& t : senders) t.join();
  poller.join();
  auto whats = rec->whats();
  ASSERT_EQ(static_cast<size_t>(kSenders * kEach), whats.size());
  // Each sender's messages keep their order.
  std::vector<int> last(kSenders, -1);
  for (int w : whats) {
    EXPECT_GT(w, last[w / kEach]);
    last[w / kEach] = w;
  }
}

}  // namespace
