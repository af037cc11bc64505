#include <gtest/gtest.h>

void neverRelease();

int main(int argc, char** argv) {
    neverRelease();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
