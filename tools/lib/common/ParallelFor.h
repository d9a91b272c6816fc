// A small pool for the lot commands: job(i) for i = 0..n-1 on `threads` threads, each taking
// the next index as it finishes one, so a slow panel does not hold up a fixed share.
#pragma once

#include <cstddef>
#include <functional>

namespace pctool {

// 0 threads: one per hardware thread. Returns when every job has run; the first exception a job
// throws stops the others taking new indexes and is thrown again here.
void parallelFor(size_t n, unsigned threads, const std::function<void(size_t)>& job);

// The thread count for a request of 0 (hardware_concurrency, at least 1).
unsigned defaultThreads();

}  // namespace pctool
