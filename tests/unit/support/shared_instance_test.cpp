#include "support/shared_instance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace lumora {
namespace {

struct Counted {
    inline static std::atomic<int> made = 0;
    inline static std::atomic<int> alive = 0;
    Counted() {
        ++made;
        ++alive;
    }
    ~Counted() { --alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

class SharedInstances : public ::testing::Test {
  protected:
    SharedInstances() { Counted::made = 0; }
    ~SharedInstances() override { shared.resetForTesting(); }

    SharedInstance<Counted> shared;
};

TEST_F(SharedInstances, areMadeOnFirstUseOnly) {
    auto& instance = shared.get([] { return std::make_unique<Counted>(); });
    auto& again = shared.get([] { return std::make_unique<Counted>(); });

    EXPECT_EQ(&instance, &again);
    EXPECT_EQ(Counted::made, 1);
}

TEST_F(SharedInstances, areMadeOnceHoweverManyThreadsAsk) {
    std::atomic<bool> go = false;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([this, &go] {
            while (!go)
                std::this_thread::yield();
            shared.get([] { return std::make_unique<Counted>(); });
        });

    go = true;
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(Counted::made, 1);
}

TEST_F(SharedInstances, resetEndsTheInstance) {
    shared.get([] { return std::make_unique<Counted>(); });
    const int alive = Counted::alive;

    shared.resetForTesting();

    EXPECT_EQ(Counted::alive, alive - 1);
}

TEST_F(SharedInstances, theLockIsRecursive) {
    int level = 0;
    auto& outer = shared.get([this, &level] {
        ++level;
        shared.get([&level] {
            ++level;
            return std::make_unique<Counted>();
        });
        shared.resetForTesting();
        return std::make_unique<Counted>();
    });

    EXPECT_EQ(level, 2);
    EXPECT_EQ(&outer, &shared.get([] { return std::make_unique<Counted>(); }));
}

} // namespace
} // namespace lumora
