// macOS has no kinds of sockets with flags among them.
#pragma once

#include_next <sys/socket.h>

#undef SOCK_CLOEXEC
#undef SOCK_NONBLOCK
#pragma GCC poison SOCK_NONBLOCK
