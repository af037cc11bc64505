// What macOS's <stdlib.h> has beyond POSIX, as far as it is used.
#pragma once

#include_next <stdlib.h>

#ifdef __cplusplus
extern "C"
#endif
    const char* getprogname(void);
