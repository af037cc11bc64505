// On macOS an integer of 64 bits is no "long", and a file's mode is narrower than an "int".
#include <algorithm>
#include <cstdint>

long larger(std::int64_t one, long other) { return std::max(one, other); }
