// android::Thread: the loop, exit requests, joins and the thread's reference to itself.
#include <gtest/gtest.h>
#include <pthread.h>
#include <utils/Thread.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>

namespace {

using android::sp;
using android::status_t;

// Loops until `limit` passes (limit < 0: until told to exit), optionally held at a gate.
class Worker : public android::Thread {
 public:
  explicit Worker(int limit = -1, status_t ready = android::OK) : mLimit(limit), mReady(ready) {}
  ~Worker() override {
    if (mDestroyed) mDestroyed->set_value();
  }

  status_t readyToRun() override { return mReady; }
  bool threadLoop() override {
    char name[16] = {};
    pthread_getname_np(pthread_self(), name, sizeof(name));
    {
      std::unique_lock<std::mutex> lock(mLock);
      mName = name;
      if (mSelfJoin) {
        mSelfJoinResult = join();
        mSelfExitResult = requestExitAndWait();
        return false;
      }
      mGateCv.wait(lock, [this] { return mGateOpen; });
    }
    ++mLoops;
    return mLimit < 0 || mLoops < mLimit;
  }

  void open() {
    std::lock_guard<std::mutex> lock(mLock);
    mGateOpen = true;
    mGateCv.notify_all();
  }
  void close() {
    std::lock_guard<std::mutex> lock(mLock);
    mGateOpen = false;
  }

  std::atomic<int> mLoops{0};
  std::promise<void>* mDestroyed = nullptr;
  bool mSelfJoin = false;
  status_t mSelfJoinResult = 0;
  status_t mSelfExitResult = 0;
  std::string mName;

 private:
  int mLimit;
  status_t mReady;
  std::mutex mLock;
  std::condition_variable mGateCv;
  bool mGateOpen = true;
};

TEST(Thread, LoopsWhileThreadLoopSaysSoAndNamesTheThread) {
  auto t = sp<Worker>::make(5);
  ASSERT_EQ(android::OK, t->run("PanelCorvaneWorkerThread"));
  EXPECT_EQ(android::OK, t->join());
  EXPECT_EQ(5, t->mLoops.load());
  EXPECT_FALSE(t->isRunning());
  EXPECT_EQ("PanelCorvaneWor", t->mName) << "cut to 15 characters";
}

TEST(Thread, RequestExitAndWaitStopsAnEndlessLoop) {
  auto t = sp<Worker>::make();
  t->close();
  ASSERT_EQ(android::OK, t->run("endless"));
  EXPECT_EQ(android::INVALID_OPERATION, t->run("again")) << "already running";
  EXPECT_TRUE(t->isRunning());
  std::thread opener([&] { t->open(); });
  EXPECT_EQ(android::OK, t->requestExitAndWait());
  opener.join();
  EXPECT_FALSE(t->isRunning());
}

TEST(Thread, FailedReadyToRunEndsTheThreadWithItsStatus) {
  auto t = sp<Worker>::make(-1, android::BAD_VALUE);
  ASSERT_EQ(android::OK, t->run("ready"));
  EXPECT_EQ(android::BAD_VALUE, t->join());
  EXPECT_EQ(0, t->mLoops.load());
}

TEST(Thread, JoinFromTheThreadItselfWouldBlock) {
  auto t = sp<Worker>::make();
  t->mSelfJoin = true;
  ASSERT_EQ(android::OK, t->run("self"));
  t->join();
  EXPECT_EQ(android::WOULD_BLOCK, t->mSelfJoinResult);
  EXPECT_EQ(android::WOULD_BLOCK, t->mSelfExitResult);
}

TEST(Thread, RunningThreadKeepsItsObjectAlive) {
  std::promise<void> destroyed;
  auto gone = destroyed.get_future();
  Worker* raw = nullptr;
  {
    auto t = sp<Worker>::make(1);
    raw = t.get();
    raw->mDestroyed = &destroyed;
    t->close();
    ASSERT_EQ(android::OK, t->run("keep"));
  }
  // Only the thread's own reference is left while it waits at the gate.
  EXPECT_EQ(1, raw->getStrongCount());
  raw->open();
  // The thread drops its reference when the loop ends, deleting the object.
  EXPECT_EQ(std::future_status::ready, gone.wait_for(std::chrono::seconds(30)));
}

TEST(Thread, CanRunAgainAfterJoin) {
  auto t = sp<Worker>::make(2);
  ASSERT_EQ(android::OK, t->run("first"));
  t->join();
  t->mLoops = 0;
  ASSERT_EQ(android::OK, t->run("second"));
  t->join();
  EXPECT_EQ(2, t->mLoops.load());
}

}  // namespace
