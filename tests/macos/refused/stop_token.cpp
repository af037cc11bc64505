#include <thread>

void call() { std::jthread thread([] {}); }
