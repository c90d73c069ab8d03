#include "core/FramePacing.h"

#include <gtest/gtest.h>

#include <limits>

using core::FrameSleepMilliseconds;

TEST(FramePacing, SleepsTheRestOfTheFramePeriodRounded)
{
    float maxFPS = 50.0f; // 20 ms a frame
    EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 0.0), 20u);
    EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 0.0126), 7u);
    EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 0.0124), 8u);
    EXPECT_EQ(maxFPS, 50.0f);
}

TEST(FramePacing, NoSleepWhenThePassTookAWholePeriodOrMore)
{
    float maxFPS = 60.0f;
    EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 1.0 / 60.0), 0u);
    EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 0.5), 0u);
}

TEST(FramePacing, CeilingBelowOneIsRaisedToOneInPlace)
{
    for (float bad : {0.0f, -3.0f, 0.25f, std::numeric_limits<float>::quiet_NaN()})
    {
        float maxFPS = bad;
        EXPECT_EQ(FrameSleepMilliseconds(maxFPS, 0.0), 1000u) << bad;
        EXPECT_EQ(maxFPS, 1.0f) << bad;
    }
}
