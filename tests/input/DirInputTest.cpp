// The arithmetic of direction sources, which needs no joystick: what an axis reads at its ends and in the
// middle, with and without a calibration offset, and how long vectors come into the unit disc.
#include "input/DirInput.h"
#include "input/Joystick.h"

#include <gtest/gtest.h>

using input::Joystick;

namespace
{
const int RAW_MIN = -32768, RAW_MAX = 32767;
// One step of SDL's raw range in the -1 to 1 scale.
const float STEP = 2.0f / 65535.0f;
} // namespace

TEST(JoystickAxis, EndsReadOneAndTheMiddleReadsNearlyZero)
{
    EXPECT_FLOAT_EQ(Joystick::AxisValue(RAW_MIN, 0), -1.0f);
    EXPECT_FLOAT_EQ(Joystick::AxisValue(RAW_MAX, 0), 1.0f);
    // 65535 steps have no middle value: 0 is half a step above it, -1 half a step below.
    EXPECT_NEAR(Joystick::AxisValue(0, 0), STEP / 2, 1e-7f);
    EXPECT_NEAR(Joystick::AxisValue(-1, 0), -STEP / 2, 1e-7f);
    EXPECT_NEAR(Joystick::AxisValue(16384, 0), 0.5f, STEP);
}

TEST(JoystickAxis, AStickHeldAsideAtCalibrationReadsZeroThereAndReachesOneSooner)
{
    const int held = -16384;
    const float offset = Joystick::AxisValue(held, 0); // what Calibrate keeps for this axis
    EXPECT_NEAR(offset, -0.5f, STEP);
    EXPECT_FLOAT_EQ(Joystick::AxisValue(held, offset), 0.0f);
    // Half-way to the other side is already full; the far side clamps instead of reaching 1.5.
    EXPECT_NEAR(Joystick::AxisValue(0, offset), 0.5f, STEP);
    EXPECT_FLOAT_EQ(Joystick::AxisValue(16384, offset), 1.0f);
    EXPECT_FLOAT_EQ(Joystick::AxisValue(RAW_MAX, offset), 1.0f);
    EXPECT_NEAR(Joystick::AxisValue(RAW_MIN, offset), -0.5f, STEP);
}

TEST(DirInput, LongVectorsComeIntoTheUnitDiscAndShortOnesStay)
{
    const math::Vec2 corner = input::IntoUnitDisc(math::Vec2(1, 1));
    EXPECT_NEAR(corner.Length(), 1.0f, 1e-6f);
    EXPECT_NEAR(corner.x, corner.y, 1e-6f);
    const math::Vec2 skew = input::IntoUnitDisc(math::Vec2(-1, 0.5f));
    EXPECT_NEAR(skew.Length(), 1.0f, 1e-6f);
    EXPECT_NEAR(skew.y / skew.x, -0.5f, 1e-6f);
    EXPECT_EQ(input::IntoUnitDisc(math::Vec2(0.6f, -0.6f)), math::Vec2(0.6f, -0.6f));
    EXPECT_EQ(input::IntoUnitDisc(math::Vec2(0, -1)), math::Vec2(0, -1));
    EXPECT_EQ(input::IntoUnitDisc(math::Vec2(0, 0)), math::Vec2(0, 0));
}
