// Binder NDK service manager. On the host it is one in-process, thread-safe registry; lookups
// never wait.
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

#ifdef __cplusplus
extern "C" {
#endif

// Registers (or replaces) `instance`; the registry keeps its own strong reference.
binder_exception_t AServiceManager_addService(AIBinder* binder, const char* instance);
// The registered binder with a strong reference the caller owns, or null at once.
AIBinder* AServiceManager_checkService(const char* instance);
AIBinder* AServiceManager_getService(const char* instance);

#ifdef __cplusplus
}
#endif
