// What macOS's <stdio.h> has beyond POSIX, as far as it is used.
#pragma once

#include_next <stdio.h>

#include <os/availability.h>

#define RENAME_EXCL 0x00000004

#ifdef __cplusplus
extern "C"
#endif
    int renamex_np(const char* from, const char* to, unsigned int flags) API_AVAILABLE(macos(10.12));
