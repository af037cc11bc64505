#include <latch>

void call(std::latch& latch) { latch.arrive_and_wait(); }
