#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utils/Thread.h>

#include <algorithm>
#include <string>
#include <system_error>

namespace android {

namespace {
constexpr size_t kMaxThreadName = 15;  // the kernel keeps 16 bytes with the terminator
}  // namespace

Thread::Thread(bool canCallJava) : mCanCallJava(canCallJava) {}

Thread::~Thread() = default;

status_t Thread::run(const char* name, int32_t /*priority*/, size_t /*stack*/) {
  std::string threadName = name != nullptr ? name : "";
  {
    std::lock_guard<std::mutex> lock(mLock);
    if (mRunning) return INVALID_OPERATION;
    mStatus = OK;
    mExitPending = false;
    mRunning = true;
    mHasThread = false;
  }
  // The thread's own reference keeps the object alive until the loop ends, even when every
  // other reference has gone.
  sp<Thread> self(this);
  try {
    std::thread(&Thread::threadEntry, self, std::move(threadName)).detach();
  } catch (const std::system_error&) {
    std::lock_guard<std::mutex> lock(mLock);
    mRunning = false;
    mThreadExited.notify_all();
    return UNKNOWN_ERROR;
  }
  return OK;
}

void Thread::threadEntry(sp<Thread> self, std::string name) {
  if (!name.empty()) {
    name.resize(std::min(name.size(), kMaxThreadName));
    pthread_setname_np(pthread_self(), name.c_str());
  }
  Thread* t = self.get();
  {
    std::lock_guard<std::mutex> lock(t->mLock);
    t->mThreadId = std::this_thread::get_id();
    t->mTid = static_cast<pid_t>(syscall(SYS_gettid));
    t->mHasThread = true;
  }
  bool first = true;
  for (;;) {
    bool again;
    if (first) {
      first = false;
      status_t status = t->readyToRun();
      {
        std::lock_guard<std::mutex> lock(t->mLock);
        t->mStatus = status;
      }
      again = status == OK && !t->exitPending() && t->threadLoop();
    } else {
      again = t->threadLoop();
    }
    std::lock_guard<std::mutex> lock(t->mLock);
    if (!again || t->mExitPending) {
      t->mExitPending = true;
      t->mRunning = false;
      t->mHasThread = false;
      t->mTid = -1;
      t->mThreadExited.notify_all();
      break;
    }
  }
  self.clear();  // may delete the object: nothing of it is touched after this
}

void Thread::requestExit() {
  std::lock_guard<std::mutex> lock(mLock);
  mExitPending = true;
}

status_t Thread::readyToRun() { return OK; }

bool Thread::calledFromOwnThread() const {
  return mHasThread && mThreadId == std::this_thread::get_id();
}

status_t Thread::requestExitAndWait() {
  std::unique_lock<std::mutex> lock(mLock);
  if (calledFromOwnThread()) return WOULD_BLOCK;
  mExitPending = true;
  mThreadExited.wait(lock, [this] { return !mRunning; });
  // Ready for another run().
  mExitPending = false;
  return mStatus;
}

status_t Thread::join() {
  std::unique_lock<std::mutex> lock(mLock);
  if (calledFromOwnThread()) return WOULD_BLOCK;
  mThreadExited.wait(lock, [this] { return !mRunning; });
  return mStatus;
}

bool Thread::isRunning() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mRunning;
}

pid_t Thread::getTid() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mTid;
}

bool Thread::exitPending() const {
  std::lock_guard<std::mutex> lock(mLock);
  return mExitPending;
}

}  // namespace android
