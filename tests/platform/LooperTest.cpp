// What the plugin's worker stands on: the looper (order of messages, wake-ups, the polling
// thread) and android::Thread (the loop, its name, its reference to itself).
#include <gtest/gtest.h>
#include <pthread.h>
#include <utils/Looper.h>
#include <utils/Thread.h>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using android::Looper;
using android::Message;
using android::sp;

class Recorder : public android::MessageHandler {
 public:
  void handleMessage(const Message& message) override {
    std::lock_guard<std::mutex> lock(mLock);
    whats.push_back(message.what);
    threads.push_back(std::this_thread::get_id());
  }
  size_t count() {
    std::lock_guard<std::mutex> lock(mLock);
    return whats.size();
  }
  std::vector<int> whats;
  std::vector<std::thread::id> threads;

 private:
  std::mutex mLock;
};

TEST(Looper, RunsDueMessagesByTimeThenInSendingOrder) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  const nsecs_t now = systemTime(SYSTEM_TIME_MONOTONIC);
  const int sends[][2] = {{10, 3}, {30, 1}, {10, 4}, {20, 2}, {10, 5}};  // {ns ago, what}
  for (const auto& s : sends) looper->sendMessageAtTime(now - s[0], rec, Message(s[1]));
  EXPECT_EQ(Looper::POLL_CALLBACK, looper->pollOnce(0));
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5}), rec->whats);
  EXPECT_EQ(Looper::POLL_TIMEOUT, looper->pollOnce(0));
}

TEST(Looper, WakeIsKeptUntilThePollAndConsumedOnce) {
  auto looper = sp<Looper>::make(true);
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

TEST(Looper, ManySendersOnePollerThatRunsEveryHandlerInEachSendersOrder) {
  auto looper = sp<Looper>::make(true);
  auto rec = sp<Recorder>::make();
  constexpr int kSenders = 4, kEach = 200;
  std::thread poller([&] {
    while (rec->count() < static_cast<size_t>(kSenders * kEach)) looper->pollOnce(100);
  });
  std::vector<std::thread> senders;
  for (int s = 0; s < kSenders; ++s)
    senders.emplace_back([&, s] {
      for (int i = 0; i < kEach; ++i) looper->sendMessage(rec, Message(s * kEach + i));
    });
  for (auto& t : senders) t.join();
  const std::thread::id pollerId = poller.get_id();
  poller.join();
  ASSERT_EQ(static_cast<size_t>(kSenders * kEach), rec->whats.size());
  std::vector<int> last(kSenders, -1);
  for (size_t i = 0; i < rec->whats.size(); ++i) {
    const int w = rec->whats[i];
    EXPECT_GT(w, last[w / kEach]);
    last[w / kEach] = w;
    EXPECT_EQ(pollerId, rec->threads[i]);
  }
}

// Loops `limit` times, held at a gate after naming itself; counts its passes outside itself.
class Worker : public android::Thread {
 public:
  Worker(int limit, std::atomic<int>* loops, std::promise<void>* destroyed)
      : mLimit(limit), mLoops(loops), mDestroyed(destroyed) {}
  ~Worker() override { mDestroyed->set_value(); }
  bool threadLoop() override {
    if (*mLoops == 0) {
      char buf[16] = {};
      pthread_getname_np(pthread_self(), buf, sizeof(buf));
      named.set_value(buf);
    }
    opened.wait();
    return ++*mLoops < mLimit;
  }
  std::promise<std::string> named;
  std::promise<void> gate;
  std::shared_future<void> opened = gate.get_future().share();

 private:
  int mLimit;
  std::atomic<int>* mLoops;
  std::promise<void>* mDestroyed;
};

// The worker's object lives as long as its loop runs, whoever else lets go of it.
TEST(Thread, LoopsWhileThreadLoopSaysSoAndKeepsItsObjectUntilTheEnd) {
  std::atomic<int> loops{0};
  std::promise<void> destroyed;
  Worker* raw = nullptr;
  {
    auto t = sp<Worker>::make(5, &loops, &destroyed);
    raw = t.get();
    ASSERT_EQ(android::OK, t->run("PanelCorvaneWorkerThread"));
    EXPECT_EQ(android::INVALID_OPERATION, t->run("again")) << "already running";
    EXPECT_EQ("PanelCorvaneWor", t->named.get_future().get()) << "cut to 15 characters";
  }
  EXPECT_EQ(1, raw->getStrongCount()) << "only the thread's own reference is left";
  raw->gate.set_value();
  EXPECT_EQ(std::future_status::ready, destroyed.get_future().wait_for(std::chrono::seconds(30)));
  EXPECT_EQ(5, loops.load());
}

}  // namespace
