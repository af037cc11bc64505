// One line for each row of the list, in its order.
std::pmr::string a;
auto b = std::format("{}", 1);
std::jthread c;
std::stacktrace d;
std::osyncstream e(std::cout);
std::sort(std::execution::par, f.begin(), f.end());
#include <latch>
std::atomic_wait(&g, 0);
std::chrono::year_month_day h;
auto i = std::chrono::clock_cast<std::chrono::utc_clock>(j);
std::atomic<std::shared_ptr<int>> k;
std::move_only_function<void()> l;
std::println("text");
