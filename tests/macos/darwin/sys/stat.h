// The names of macOS's <sys/stat.h> for what POSIX names otherwise, as far as they are used.
#pragma once

#include_next <sys/stat.h>

#define st_mtimespec st_mtim
