// What macOS's <pthread.h> has beyond POSIX, as far as it is used.
#pragma once

#include_next <pthread.h>

#include <os/availability.h>
#include <stdint.h>

// There a thread is named by a pointer, here by a number.
#ifdef __cplusplus
extern "C"
#endif
    int pthread_threadid_np(const void* thread, uint64_t* identifier) API_AVAILABLE(macos(10.6));
