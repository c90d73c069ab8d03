#include "input/Key.h"
#include "logging/Exception.h"

#include <gtest/gtest.h>

using input::Key;

namespace
{
SDLKey K(int code)
{
    return static_cast<SDLKey>(code);
}
} // namespace

TEST(Key, NamesAndCodesOfEveryDevice)
{
    EXPECT_EQ(Key::GetKeyName(K(8)), "backspace");
    EXPECT_EQ(Key::GetKeyName(K(97)), "a");
    EXPECT_EQ(Key::GetKeyName(K(49)), "1");
    EXPECT_EQ(Key::GetKeyName(K(160)), "world_0");
    EXPECT_EQ(Key::GetKeyName(K(256)), "[0]");
    EXPECT_EQ(Key::GetKeyName(K(271)), "enter");
    EXPECT_EQ(Key::GetKeyName(K(296)), "f15");
    EXPECT_EQ(Key::GetKeyName(K(322)), "undo");
    EXPECT_EQ(Key::GetKeyName(K(324)), "mouse_left");
    EXPECT_EQ(Key::GetKeyName(K(326)), "mouse_right");
    EXPECT_EQ(Key::GetKeyName(K(328)), "mouse_wheel_down");
    EXPECT_EQ(Key::GetKeyName(K(329)), "mouse_6");
    EXPECT_EQ(Key::GetKeyName(K(578)), "mouse_255");
    EXPECT_EQ(Key::GetKeyName(K(579)), "joy_0_b0");
    EXPECT_EQ(Key::GetKeyName(Key::GetJoystickKey(0, 3)), "joy_0_b3");
    EXPECT_EQ(Key::GetKeyName(Key::GetJoystickHatKey(1, 0, SDL_HAT_LEFT)), "joy_1_h0_left");
    EXPECT_EQ(Key::GetKeyName(K(12866)), "joy_31_h31_left");

    EXPECT_EQ(Key::GetKeyFromName("LEFT_CTRL"), K(306));
    EXPECT_EQ(Key::GetKeyFromName("joy_1_h0_left"), Key::GetJoystickHatKey(1, 0, SDL_HAT_LEFT));
}

TEST(Key, UnknownCodesAndNamesAreBadData)
{
    // A key symbol is always the unshifted one: capitals have no name.
    EXPECT_THROW(Key::GetKeyName(K(65)), BadDataException);
    EXPECT_THROW(Key::GetKeyName(K(37)), BadDataException);
    EXPECT_THROW(Key::GetKeyName(K(323)), BadDataException);
    EXPECT_THROW(Key::GetKeyName(K(Key::KEYBUFFERSIZE)), BadDataException);
    try
    {
        Key::GetKeyFromName("No_Such_Key");
        FAIL();
    }
    catch (const BadDataException& e)
    {
        EXPECT_STREQ(e.what(), "Unknown name of key \"no_such_key\"");
    }
}

TEST(Key, JoystickArithmetic)
{
    EXPECT_EQ(Key::GetJoystickHatKey(0, 0, SDL_HAT_UP), K(835));
    EXPECT_EQ(Key::GetJoystickHatKey(0, 1, SDL_HAT_RIGHT), K(840));
    EXPECT_EQ(Key::GetJoystickHatKey(2, 0, 3), K(0)); // not a single direction
    const SDLKey hat = Key::GetJoystickHatKey(3, 5, SDL_HAT_DOWN);
    EXPECT_TRUE(Key::IsJoystickHatKey(hat));
    EXPECT_EQ(Key::GetJoystickFromKey(hat), 3);
    EXPECT_EQ(Key::GetJoystickHatFromKey(hat), 5);
    const SDLKey button = Key::GetJoystickKey(3, 255);
    EXPECT_FALSE(Key::IsJoystickHatKey(button));
    EXPECT_EQ(Key::GetJoystickHatFromKey(button), -1);
    EXPECT_EQ(Key::GetJoystickButtonFromKey(button), 255);
    EXPECT_TRUE(Key::IsMouseButton(K(324)));
    EXPECT_FALSE(Key::IsMouseButton(K(579)));
}
