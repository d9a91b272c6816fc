// Host stand-in for atrace: enabled tags are settable and sections are recorded for tests.
#pragma once

#include <stdint.h>

#ifndef ATRACE_TAG_ALWAYS
#define ATRACE_TAG_ALWAYS (1 << 0)
#endif
#ifndef ATRACE_TAG_GRAPHICS
#define ATRACE_TAG_GRAPHICS (1 << 1)
#endif

#ifdef __cplusplus
extern "C" {
#endif

uint64_t atrace_get_enabled_tags(void);
void atrace_begin_body(const char* name);
void atrace_end_body(void);

#ifdef __cplusplus
}
#endif

// The public calls, as a device's cutils declares them; the *_body functions are its internals.
static inline uint64_t atrace_is_tag_enabled(uint64_t tag) { return atrace_get_enabled_tags() & tag; }
static inline void atrace_begin(uint64_t tag, const char* name) {
  if (atrace_is_tag_enabled(tag)) atrace_begin_body(name);
}
static inline void atrace_end(uint64_t tag) {
  if (atrace_is_tag_enabled(tag)) atrace_end_body();
}
