// What macOS's <fcntl.h> has beyond this system's, as far as it is used.
#pragma once

#include_next <fcntl.h>

#define F_GETPATH 50
