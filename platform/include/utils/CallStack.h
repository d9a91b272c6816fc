// android::CallStack: captures the calling thread's stack and writes it to the log, one line
// per frame ("#00 pc 000000000001c4f4  /path/lib.so (function+52)").
#pragma once

#include <android/log.h>
#include <stdint.h>
#include <sys/types.h>
#include <utils/String8.h>

#include <string>
#include <vector>

namespace android {

class CallStack {
 public:
  // Frames kept at most; deeper frames are dropped.
  static constexpr int kMaxDepth = 32;

  CallStack();
  // Captures the stack, leaving out the innermost ignoreDepth frames (1: this constructor), and
  // logs it under logtag at DEBUG.
  CallStack(const char* logtag, int32_t ignoreDepth = 1);
  ~CallStack();

  void clear() { mFrameLines.clear(); }
  // Captures the current thread's stack, leaving out the innermost ignoreDepth frames (1: this
  // call). The host can only capture the calling thread: tid is ignored.
  void update(int32_t ignoreDepth = 1, pid_t tid = -1);
  void log(const char* logtag, android_LogPriority priority = ANDROID_LOG_DEBUG,
           const char* prefix = nullptr) const;
  String8 toString(const char* prefix = nullptr) const;
  size_t size() const { return mFrameLines.size(); }

  // Logs `stack`, or the caller's stack when null.
  static void logStack(const char* logtag, const CallStack* stack = nullptr,
                       android_LogPriority priority = ANDROID_LOG_DEBUG);

 private:
  std::vector<std::string> mFrameLines;
};

}  // namespace android
