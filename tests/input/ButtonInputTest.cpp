// Button combinations and direction sources with no event pump: the document reads and writes their
// text forms without an event pump, and the combinations act on key events handed to their host.
#include "input/ButtonInput.h"
#include "input/DirInput.h"
#include "input/InputDelegator.h"
#include "input/KeyState.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using input::ButtonInput;

namespace
{
SDLKey K(int code)
{
    return static_cast<SDLKey>(code);
}

ButtonInput Read(const std::string& text)
{
    ButtonInput button;
    button.Deserialize(text);
    return button;
}

// A keyboard held by the test, a host that delivers key events to the relays, and a counter of presses.
class ComboTest : public testing::Test
{
protected:
    void SetUp() override
    {
        input::KeyState::SetSource([this](SDLKey key) { return m_down.count(key) > 0; });
        ButtonInput::SetHost(m_host.get());
    }
    void TearDown() override
    {
        ButtonInput::SetHost(nullptr);
        input::KeyState::SetSource(nullptr);
    }

    // As the event pump does: the key table changes before the listeners hear of it.
    void Key(int code, bool pressed, bool handled = false)
    {
        if (pressed)
            m_down.insert(K(code));
        else
            m_down.erase(K(code));
        input::KeyEvent event(K(code), 0, pressed, math::Vec2(0, 0));
        event.SetHandled(handled);
        m_host->OnKeyEvent(event);
    }
    void Count(ButtonInput& button)
    {
        button.AddOnPressCallback(QLEX_NEW new util::Callback([this] { ++m_presses; }, m_owner.get()));
    }

    std::set<SDLKey> m_down;
    util::SharedPtr<input::InputDelegator> m_host = QLEX_NEW new input::InputDelegator(50);
    int m_presses = 0;
    util::SharedPtr<util::Pointee> m_owner = QLEX_NEW new util::Pointee();
};

const int LEFT_CTRL = 306, A = 97, B = 98, M = 109;
} // namespace

TEST(ButtonInput, TextFormsReadBackInTheirOwnOrder)
{
    EXPECT_EQ(Read("a toggle on").Serialize(), "on toggle a");
    EXPECT_EQ(Read("toggle mouse_middle").Serialize(), "toggle mouse_middle");
    EXPECT_EQ(Read("on toggle joy_0_b1").Serialize(), "on toggle joy_0_b1");
    EXPECT_EQ(Read("LEFT_CTRL A").Serialize(), "left_ctrl a");
    // The on state of a plain button is not written.
    EXPECT_EQ(Read("on b").Serialize(), "b");
    EXPECT_EQ(ButtonInput().Serialize(), "");
    for (const char* text : {"left_ctrl a", "toggle mouse_middle", "on toggle joy_0_b1", "f1 joy_1_h0_left"})
        EXPECT_EQ(Read(Read(text).Serialize()).Serialize(), text);
}

TEST(ButtonInput, EqualityAndHashIgnoreOrderAndState)
{
    const ButtonInput ab = Read("a b"), ba = Read("b a");
    EXPECT_TRUE(ab == ba);
    EXPECT_EQ(ButtonInput::Hash(ab), ButtonInput::Hash(ba));
    const ButtonInput toggled = Read("toggle a b");
    EXPECT_TRUE(ab != toggled);
    EXPECT_EQ(ButtonInput::Hash(ab), ButtonInput::Hash(toggled));
    EXPECT_TRUE(Read("toggle a b") == Read("on toggle b a"));
    EXPECT_TRUE(ab != Read("a"));
    util::HashMap<ButtonInput, int, ButtonInput::Hasher> map;
    map[ab] = 1;
    map[ba] += 1;
    map[toggled] = 5;
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map[Read("b a")], 2);
}

TEST(ButtonInput, BadTextsLogTheNameAndKeepTheKeysTheyCouldRead)
{
    logtest::LogCapture log(logging::Error);
    ButtonInput button = Read("left_ctrl nokey a");
    EXPECT_TRUE(log.Has("Unknown name of key \"nokey\"")) << testing::PrintToString(log.lines);
    EXPECT_EQ(button.Serialize(), "left_ctrl a");

    // The empty text names an empty key; a doubled blank gives an empty token between its keys.
    EXPECT_FALSE(Read("").IsBound());
    EXPECT_TRUE(log.Has("Unknown name of key \"\""));
    EXPECT_EQ(Read("a  b").Serialize(), "a b");
    EXPECT_FALSE(Read("toggle on ??? zz").IsBound());
    EXPECT_FALSE(Read("toggle on ??? zz").IsOn());
    // A key twice counts once.
    EXPECT_EQ(Read("a a A").Serialize(), "a");
}

TEST_F(ComboTest, TheRelayListensExactlyWhileTheButtonHasKeys)
{
    ButtonInput button;
    EXPECT_EQ(m_host->GetListenerCount(), 0u);
    button.AddKey(K(A));
    EXPECT_EQ(m_host->GetListenerCount(), 1u);
    {
        ButtonInput copy(button);
        EXPECT_EQ(m_host->GetListenerCount(), 2u);
        copy = ButtonInput();
        EXPECT_EQ(m_host->GetListenerCount(), 1u);
        copy.Assign(K(B));
    }
    EXPECT_EQ(m_host->GetListenerCount(), 1u);
    button.AssignKeys(ButtonInput());
    EXPECT_EQ(m_host->GetListenerCount(), 0u);
    button.Deserialize("a b");
    EXPECT_EQ(m_host->GetListenerCount(), 1u);

    // A host that comes later takes the buttons bound before it; one that goes leaves none behind.
    ButtonInput::SetHost(nullptr);
    EXPECT_EQ(m_host->GetListenerCount(), 0u);
    ButtonInput::SetHost(m_host.get());
    EXPECT_EQ(m_host->GetListenerCount(), 1u);
}

TEST_F(ComboTest, TheKeyThatCompletesTheCombinationFiresItOnce)
{
    ButtonInput combo = Read("left_ctrl a");
    Count(combo);
    Key(LEFT_CTRL, true);
    EXPECT_FALSE(combo.IsOn());
    Key(A, true);
    EXPECT_TRUE(combo.IsOn());
    Key(A, true); // key repeat
    Key(A, true);
    EXPECT_EQ(m_presses, 1);
    Key(A, false);
    EXPECT_FALSE(combo.IsOn());
    Key(LEFT_CTRL, false);

    Key(A, true);
    EXPECT_FALSE(combo.IsOn());
    Key(LEFT_CTRL, true);
    EXPECT_TRUE(combo.IsOn());
    EXPECT_EQ(m_presses, 2);
    // A release counts only while the combination stood complete: here it is already broken.
    Key(A, false);
    EXPECT_FALSE(combo.IsOn());
    Key(LEFT_CTRL, false);
    EXPECT_FALSE(combo.IsOn());
    // Another key leaves it alone.
    Key(B, true);
    EXPECT_EQ(m_presses, 2);
}

TEST_F(ComboTest, HandledPressesAreIgnoredButHandledReleasesCount)
{
    ButtonInput button = Read("m");
    Count(button);
    Key(M, true, true);
    EXPECT_FALSE(button.IsOn());
    Key(M, false);
    Key(M, true);
    EXPECT_TRUE(button.IsOn());
    Key(M, false, true);
    EXPECT_FALSE(button.IsOn());
    EXPECT_EQ(m_presses, 1);
}

TEST_F(ComboTest, AToggleFlipsWithEveryPressAndRepeat)
{
    ButtonInput toggle = Read("toggle m");
    Count(toggle);
    Key(M, true);
    EXPECT_TRUE(toggle.IsOn());
    Key(M, false);
    EXPECT_TRUE(toggle.IsOn());
    Key(M, true);
    EXPECT_FALSE(toggle.IsOn());
    Key(M, true); // key repeat
    EXPECT_TRUE(toggle.IsOn());
    EXPECT_EQ(m_presses, 2);
    EXPECT_EQ(toggle.Serialize(), "on toggle m");
    // Without keys it is never on.
    toggle.AssignKeys(ButtonInput());
    EXPECT_FALSE(toggle.IsOn());
}

TEST_F(ComboTest, ACallbackMayTakeItsButtonAway)
{
    auto* button = new ButtonInput(Read("m"));
    ButtonInput* target = button;
    button->AddOnPressCallback(QLEX_NEW new util::Callback(
        [&target]
        {
            // The closure dies with the button: what it captured is read before the delete.
            ButtonInput** slot = &target;
            delete *slot;
            *slot = nullptr;
        },
        m_owner.get()));
    Key(M, true);
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(m_host->GetListenerCount(), 0u);
    Key(M, false);
}

TEST_F(ComboTest, KeyDirectionsAreNormalisedAndReadBack)
{
    const input::DirInputPtr dir = input::DirInput::Deserialize("keys up right down left");
    ASSERT_TRUE(dir);
    EXPECT_EQ(dir->Serialize(), "keys up right down left");
    EXPECT_EQ(dir->GetDir(), math::Vec2(0, 0));
    Key(273, true); // up
    Key(275, true); // right
    EXPECT_NEAR(dir->GetDir().Length(), 1.0f, 1e-6f);
    EXPECT_GT(dir->GetDir().x, 0.7f);
    Key(274, true); // down cancels up
    EXPECT_EQ(dir->GetDir(), math::Vec2(1, 0));

    logtest::LogCapture log(logging::Error);
    // A name that is no key leaves key 0 in its place: that direction is dead, the others still steer.
    const input::DirInputPtr partial = input::DirInput::Deserialize("keys up right down nokey");
    ASSERT_TRUE(partial);
    EXPECT_TRUE(log.Has("Unknown name of key \"nokey\"")) << testing::PrintToString(log.lines);
    EXPECT_EQ(partial->GetDir(), math::Vec2(1, 0));
    Key(275, false);
    Key(276, true); // left
    EXPECT_EQ(partial->GetDir(), math::Vec2(0, 0));
    EXPECT_EQ(partial->Serialize(), "keys up right down ");
    const input::DirInputPtr again = input::DirInput::Deserialize(partial->Serialize());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->Serialize(), "keys up right down ");
    EXPECT_FALSE(input::DirInput::Deserialize("keys up right"));
    EXPECT_TRUE(log.Has("Failed to find DirInput \"keys up right\""));
    EXPECT_FALSE(input::DirInput::Deserialize("joy 0 axis 0 1"));
    EXPECT_TRUE(log.Has("No joystick connected, cannot find DirInput \"joy 0 axis 0 1\""));
    EXPECT_FALSE(input::DirInput::Deserialize("wheel 3"));
    EXPECT_TRUE(log.Has("Failed to find DirInput \"wheel 3\""));
}
