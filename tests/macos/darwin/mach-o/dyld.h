// Where macOS tells a process its own program.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

extern int _NSGetExecutablePath(char* buf, uint32_t* bufsize);

#ifdef __cplusplus
}
#endif
