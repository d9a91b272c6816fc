// android::Thread: a thread that calls threadLoop() while it returns true and no exit was
// requested. While running, the thread holds a strong reference to its object.
#pragma once

#include <sys/types.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/ThreadDefs.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace android {

class Thread : virtual public RefBase {
 public:
  // canCallJava has no meaning on the host.
  explicit Thread(bool canCallJava = true);
  ~Thread() override;

  // Starts the thread; INVALID_OPERATION when it is already running. The name is cut to the 15
  // characters a thread name can hold; priority and stack size are not applied on the host.
  virtual status_t run(const char* name, int32_t priority = PRIORITY_DEFAULT, size_t stack = 0);
  // Asks the loop to stop after the current threadLoop() call.
  virtual void requestExit();
  // Called once on the new thread before the first threadLoop(); anything but OK ends it.
  virtual status_t readyToRun();
  // requestExit() and wait for the end; WOULD_BLOCK from the thread itself.
  status_t requestExitAndWait();
  // Waits for the end; WOULD_BLOCK from the thread itself. Returns readyToRun()'s status.
  status_t join();
  bool isRunning() const;
  pid_t getTid() const;

 protected:
  bool exitPending() const;

 private:
  virtual bool threadLoop() = 0;
  static void threadEntry(sp<Thread> self, std::string name);
  bool calledFromOwnThread() const;  // mLock held

  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // No Java on the host: kept for the device constructor's meaning only.
  [[maybe_unused]] const bool mCanCallJava;
  mutable std::mutex mLock;
  std::condition_variable mThreadExited;
  status_t mStatus = OK;
  bool mExitPending = false;
  bool mRunning = false;
  bool mHasThread = false;
  std::thread::id mThreadId;
  pid_t mTid = -1;
};

}  // namespace android
