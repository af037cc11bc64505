// This system's integers of 64 bits are macOS's "long long", a type of its own there beside "long": what is overloaded,
// deduced or formatted for the one need not be for the other.
#pragma once

#define __int64_t __this_systems_int64_t
#define __uint64_t __this_systems_uint64_t
#include_next <bits/types.h>
#undef __int64_t
#undef __uint64_t

typedef long long __int64_t;
typedef unsigned long long __uint64_t;
