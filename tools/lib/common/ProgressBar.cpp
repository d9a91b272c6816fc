#include "tools/lib/common/ProgressBar.h"

#include <unistd.h>

#include <cstdio>

namespace pctool {

ProgressBar::ProgressBar(const std::string& label, size_t total)
    : ProgressBar(label, total, isatty(STDERR_FILENO) == 1) {}

ProgressBar::ProgressBar(const std::string& label, size_t total, bool on)
    : mLabel(label), mTotal(total), mOn(on) {}

ProgressBar::~ProgressBar() { finish(); }

void ProgressBar::tick() {
  if (!mOn) return;
  std::lock_guard<std::mutex> lock(mLock);
  ++mDone;
  draw();
}

void ProgressBar::draw() {
  const int percent = mTotal == 0 ? 100 : static_cast<int>(mDone * 100 / mTotal);
  if (percent == mShown) return;  // a redraw per percent, not per panel
  mShown = percent;
  constexpr int kWidth = 40;
  const int filled = percent * kWidth / 100;
  fprintf(stderr, "\r%s [%.*s%*s] %3d%% %zu/%zu", mLabel.c_str(), filled, "########################################",
          kWidth - filled, "", percent, mDone, mTotal);
  fflush(stderr);
}

void ProgressBar::finish() {
  std::lock_guard<std::mutex> lock(mLock);
  if (!mOn || mFinished) return;
  mFinished = true;
  if (mShown >= 0) fputs("\r\033[K", stderr);
}

}  // namespace pctool
