// Host stand-in for atrace: enabled tags are settable and sections are recorded for tests.
#pragma once

#include <stdint.h>

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
