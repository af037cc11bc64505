#include <atomic>

void call(std::atomic<int>& value) { value.wait(0); }
