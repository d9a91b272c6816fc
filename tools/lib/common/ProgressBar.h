// A progress bar on stderr for the long lot commands, drawn only when stderr is a terminal so
// logs and pipes get no carriage-return litter. tick() may be called from any thread.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>

namespace pctool {

class ProgressBar {
 public:
  ProgressBar(const std::string& label, size_t total);  // on when stderr is a terminal
  ProgressBar(const std::string& label, size_t total, bool on);
  ~ProgressBar();
  void tick();
  void finish();  // clears the line; also done by the destructor

 private:
  void draw();
  std::mutex mLock;
  std::string mLabel;
  size_t mTotal, mDone = 0;
  int mShown = -1;  // percent last drawn
  bool mOn, mFinished = false;
};

}  // namespace pctool
