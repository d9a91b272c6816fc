#include <cutils/trace.h>
#include <pchost/host.h>

#include <atomic>
#include <mutex>

namespace {
std::atomic<uint64_t> gTags{0};
std::mutex gTraceMutex;
std::vector<pchost::TraceEvent> gEvents;
constexpr size_t kMaxEvents = 100000;  // a long session must not grow without bound

void record(bool begin, const char* name) {
  std::lock_guard<std::mutex> lock(gTraceMutex);
  if (gEvents.size() < kMaxEvents) gEvents.push_back({begin, name ? name : ""});
}
}  // namespace

extern "C" uint64_t atrace_get_enabled_tags(void) { return gTags.load(std::memory_order_relaxed); }
extern "C" void atrace_begin_body(const char* name) { record(true, name); }
extern "C" void atrace_end_body(void) { record(false, ""); }

namespace pchost {
void setTraceTags(uint64_t tags) { gTags.store(tags, std::memory_order_relaxed); }
std::vector<TraceEvent> takeTraceEvents() {
  std::lock_guard<std::mutex> lock(gTraceMutex);
  std::vector<TraceEvent> out;
  out.swap(gEvents);
  return out;
}
}  // namespace pchost
