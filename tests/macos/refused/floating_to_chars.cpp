#include <charconv>

void call(char* begin, char* end) { std::to_chars(begin, end, 0.5); }
