// The names of macOS's <sys/stat.h> for what POSIX names otherwise or not at all, as far as they are used.
#pragma once

#include_next <sys/stat.h>

#include <stdint.h>

#define st_mtimespec st_mtim
#define st_flags st_gid // another member of the same type

#define UF_IMMUTABLE 0x00000002
#define UF_APPEND 0x00000004
#define SF_IMMUTABLE 0x00020000
#define SF_APPEND 0x00040000
#define SF_RESTRICTED 0x00080000
#define SF_NOUNLINK 0x00100000

#ifdef __cplusplus
extern "C"
#endif
    int chflags(const char* path, uint32_t flags);
