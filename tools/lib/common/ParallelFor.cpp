#include "tools/lib/common/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace pctool {

unsigned defaultThreads() { return std::max(1u, std::thread::hardware_concurrency()); }

void parallelFor(size_t n, unsigned threads, const std::function<void(size_t)>& job) {
  if (threads == 0) threads = defaultThreads();
  threads = static_cast<unsigned>(std::min<size_t>(threads, n));
  std::atomic<size_t> next{0};
  auto worker = [&] {
    for (size_t i = next++; i < n; i = next++) job(i);
  };
  if (threads <= 1) {
    worker();
    return;
  }
  std::vector<std::thread> pool;
  for (unsigned t = 1; t < threads; ++t) pool.emplace_back(worker);
  worker();  // the calling thread is one of them
  for (auto& t : pool) t.join();
}

}  // namespace pctool
