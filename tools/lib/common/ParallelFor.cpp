#include "tools/lib/common/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace pctool {

unsigned defaultThreads() { return std::max(1u, std::thread::hardware_concurrency()); }

void parallelFor(size_t n, unsigned threads, const std::function<void(size_t)>& job) {
  if (threads == 0) threads = defaultThreads();
  threads = static_cast<unsigned>(std::min<size_t>(threads, n));
  std::atomic<size_t> next{0};
  // An exception in a pool thread would end the process: the first one stops the pool and is
  // thrown again in the caller, as a loop on one thread would throw it.
  std::mutex failLock;
  std::exception_ptr failure;  // guarded by failLock
  auto worker = [&] {
    try {
      for (size_t i = next++; i < n; i = next++) job(i);
    } catch (...) {
      next = n;
      std::lock_guard<std::mutex> hold(failLock);
      if (!failure) failure = std::current_exception();
    }
  };
  if (threads <= 1) {
    for (size_t i = 0; i < n; ++i) job(i);
    return;
  }
  std::vector<std::thread> pool;
  for (unsigned t = 1; t < threads; ++t) pool.emplace_back(worker);
  worker();  // the calling thread is one of them
  for (auto& t : pool) t.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace pctool
