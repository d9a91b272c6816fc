#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <utils/CallStack.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace android {

namespace {

std::string describeFrame(int index, void* pc) {
  const auto address = reinterpret_cast<uintptr_t>(pc);
  Dl_info info{};
  uintptr_t rel = address;
  std::string where = "<unknown>";
  std::string symbol;
  if (dladdr(pc, &info) != 0) {
    if (info.dli_fname != nullptr) where = info.dli_fname;
    rel = address - reinterpret_cast<uintptr_t>(info.dli_fbase);
    if (info.dli_sname != nullptr) {
      int status = 0;
      char* demangled = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status);
      symbol = status == 0 && demangled != nullptr ? demangled : info.dli_sname;
      free(demangled);
      char offset[32];
      snprintf(offset, sizeof(offset), "+%" PRIuPTR,
               address - reinterpret_cast<uintptr_t>(info.dli_saddr));
      symbol += offset;
    }
  }
  char head[48];
  snprintf(head, sizeof(head), "#%02d pc %016" PRIxPTR "  ", index, rel);
  std::string line = head + where;
  if (!symbol.empty()) line += " (" + symbol + ")";
  return line;
}

}  // namespace

CallStack::CallStack() = default;

__attribute__((noinline)) CallStack::CallStack(const char* logtag, int32_t ignoreDepth) {
  update(ignoreDepth + 1);
  log(logtag);
}

CallStack::~CallStack() = default;

__attribute__((noinline)) void CallStack::update(int32_t ignoreDepth, pid_t /*tid*/) {
  mFrameLines.clear();
  // update() itself is the innermost frame and counts in ignoreDepth.
  constexpr int kMaxSkip = 64;
  const int skip = ignoreDepth < 0 ? 0 : ignoreDepth > kMaxSkip ? kMaxSkip : ignoreDepth;
  void* frames[kMaxSkip + kMaxDepth];
  const int n = backtrace(frames, skip + kMaxDepth);
  for (int i = skip; i < n; ++i)
    mFrameLines.push_back(describeFrame(i - skip, frames[i]));
}

void CallStack::log(const char* logtag, android_LogPriority priority, const char* prefix) const {
  for (const auto& line : mFrameLines)
    __android_log_print(priority, logtag, "%s%s", prefix ? prefix : "", line.c_str());
}

String8 CallStack::toString(const char* prefix) const {
  String8 out;
  for (const auto& line : mFrameLines) {
    out.append(prefix);
    out.append(line.c_str());
    out.append("\n");
  }
  return out;
}

__attribute__((noinline)) void CallStack::logStack(const char* logtag, const CallStack* stack,
                                                   android_LogPriority priority) {
  if (stack != nullptr) {
    stack->log(logtag, priority);
    return;
  }
  CallStack current;
  current.update(2);  // leave out logStack
  current.log(logtag, priority);
}

}  // namespace android
