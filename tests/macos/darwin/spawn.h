// What macOS's <spawn.h> has beyond POSIX, as far as it is used.
#pragma once

#include_next <spawn.h>

#include <os/availability.h>

#define POSIX_SPAWN_SETSID 0x0400
#define POSIX_SPAWN_CLOEXEC_DEFAULT 0x4000

#ifdef __cplusplus
extern "C" {
#endif
int posix_spawn_file_actions_addchdir_np(posix_spawn_file_actions_t* actions, const char* path)
    API_AVAILABLE(macos(10.15));
#ifdef __cplusplus
}
#endif
