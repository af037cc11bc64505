#include "webhost/page_zoom.h"

#include <gtest/gtest.h>

namespace lumora {
namespace {

TEST(PageZoom, oneStepInAndOneOutLeadBack) { EXPECT_DOUBLE_EQ(zoomedOut(zoomedIn(1)), 1); }

TEST(PageZoom, stepsAreATenthOfTheLevel) {
    EXPECT_DOUBLE_EQ(zoomedIn(1), 1.1);
    EXPECT_DOUBLE_EQ(zoomedOut(1.1), 1);
}

TEST(PageZoom, endsAtThreeTimesAndAtHalfTheSize) {
    double level = 1;
    for (int step = 0; step < 50; ++step)
        level = zoomedIn(level);
    EXPECT_DOUBLE_EQ(level, 3);
    for (int step = 0; step < 50; ++step)
        level = zoomedOut(level);
    EXPECT_DOUBLE_EQ(level, 0.5);
}

} // namespace
} // namespace lumora
