// Trace helpers over the platform's atrace calls.
#pragma once

#include <cutils/trace.h>

#include "base/Log.h"

namespace postblend {

inline bool traceTagEnabled() { return atrace_is_tag_enabled(ATRACE_TAG_ALWAYS) != 0; }

// A section opened and at once closed, when log-mask bit 0x08 asks for it.
inline void traceMark(const char* name) {
  if (dbgOn(kDbgTrace) && traceTagEnabled()) {
    atrace_begin(ATRACE_TAG_ALWAYS, name);
    atrace_end(ATRACE_TAG_ALWAYS);
  }
}

// A section spanning a scope, whenever the trace tag is enabled.
class ScopedTrace {
 public:
  explicit ScopedTrace(const char* name) : on_(traceTagEnabled()) {
    if (on_) atrace_begin(ATRACE_TAG_ALWAYS, name);
  }
  ~ScopedTrace() { end(); }
  void end() {
    if (on_) atrace_end(ATRACE_TAG_ALWAYS);
    on_ = false;
  }
  ScopedTrace(const ScopedTrace&) = delete;
  ScopedTrace& operator=(const ScopedTrace&) = delete;

 private:
  bool on_;
};

}  // namespace postblend
