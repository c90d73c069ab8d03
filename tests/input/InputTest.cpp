#include "InputTestSupport.h"

#include "input/Key.h"

#include <gtest/gtest.h>

using namespace input;
using namespace input::test;

namespace
{

// Two pixels per GUI unit, so that motion of exactly the click tolerance (3.5) is a whole number of pixels.
class HalfScale : public InputSettings
{
public:
    math::Vec2 PosFromPixel(int x, int y) const override { return math::Vec2(x / 2.0f, y / 2.0f); }
    float GetClickTolerance() const override { return 3.5f; }
    float GetClickTimeTolerance() const override { return 0.3f; }
};

class ClickStateMachine : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Input::SetSettings(&m_settings);
        m_input = Input::GetInstancePtr();
        m_recorder = QLEX_NEW new Recorder();
        m_input->AddListener(m_recorder);
    }
    void TearDown() override
    {
        m_input->RemoveListener(m_recorder);
        // Leave the singleton idle for the next test: all buttons up, the click time long past.
        for (Uint8 b : {SDL_BUTTON_LEFT, SDL_BUTTON_MIDDLE, SDL_BUTTON_RIGHT})
            m_input->HandleEvent(ButtonEvent(false, 0, 0, b));
        m_clock.now += 10.0;
        m_input->PumpEvents();
        EXPECT_EQ(m_input->GetClickState(), Input::Idle);
        Input::SetSettings(nullptr);
    }

    // Pixel coordinates: (20, 20) is (10, 10) in GUI units.
    void Press(int x = 20, int y = 20, Uint8 b = SDL_BUTTON_LEFT)
    {
        m_input->HandleEvent(ButtonEvent(true, x, y, b));
    }
    void Release(int x = 20, int y = 20, Uint8 b = SDL_BUTTON_LEFT)
    {
        m_input->HandleEvent(ButtonEvent(false, x, y, b));
    }
    void Move(int x, int y, int xrel, int yrel) { m_input->HandleEvent(MotionEvent(x, y, xrel, yrel)); }
    void Pump(double at)
    {
        m_clock.now = at;
        m_input->PumpEvents();
    }

    HalfScale m_settings;
    ManualClock m_clock;
    Input* m_input = nullptr;
    util::SharedPtr<Recorder> m_recorder;
};

using Lines = std::vector<std::string>;

} // namespace

TEST_F(ClickStateMachine, PressAndRelease_GivesOneClickAtThePressAndFallsIdleAfterTheClickTime)
{
    m_clock.now = 100.0;
    Press(20, 20);
    m_clock.now = 100.1;
    Release(22, 21); // the release point does not matter, within the tolerance
    EXPECT_EQ(m_recorder->Only({"click", "begin", "drag", "end"}), Lines({"click (10,10) x1"}));
    EXPECT_EQ(m_input->GetClickState(), Input::Pressed);

    Pump(100.29);
    EXPECT_EQ(m_input->GetClickState(), Input::Pressed);
    Pump(100.31);
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    EXPECT_EQ(m_recorder->Only({"click", "begin", "drag", "end"}), Lines({"click (10,10) x1"}));
}

TEST_F(ClickStateMachine, ClicksWithinTheTimeOfTheFirstPress_CountUpToThreeThenStartAnew)
{
    m_clock.now = 100.0;
    Press();
    Release();
    m_clock.now = 100.1;
    Press(24, 20); // 2 units away: still the same place
    Release(24, 20);
    m_clock.now = 100.2;
    Press();
    Release();
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    m_clock.now = 100.25;
    Press();
    Release();
    // Every click carries the position of the first press.
    EXPECT_EQ(m_recorder->Only({"click", "begin"}),
              Lines({"click (10,10) x1", "click (10,10) x2", "click (10,10) x3", "click (10,10) x1"}));
}

TEST_F(ClickStateMachine, SecondClickAfterTheTimeOfTheFirstPress_IsASingleClick)
{
    m_clock.now = 100.0;
    Press();
    Release();
    Pump(100.35);
    Press();
    Release();
    EXPECT_EQ(m_recorder->Only({"click"}), Lines({"click (10,10) x1", "click (10,10) x1"}));
}

TEST_F(ClickStateMachine, HoldWithoutMotion_BecomesADragAtTheFirstPumpAfterTheClickTime)
{
    m_clock.now = 100.0;
    Press(20, 20);
    Pump(100.2);
    EXPECT_TRUE(m_recorder->Only({"begin", "drag"}).empty());
    Pump(100.31);
    EXPECT_EQ(m_input->GetClickState(), Input::Dragging);
    // The begin sits at the press, with no motion; no drag event follows, as the mouse has not moved.
    EXPECT_EQ(m_recorder->Only({"begin", "drag", "click"}), Lines({"begin (10,10) (10,10) (0,0)"}));
    Release(20, 20);
    EXPECT_EQ(m_recorder->Only({"begin", "drag", "end", "click"}),
              Lines({"begin (10,10) (10,10) (0,0)", "end (10,10) (10,10)"}));
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
}

TEST_F(ClickStateMachine, HoldAfterSmallMotion_BeginsAtThePressAndDragsTheWholeWay)
{
    m_clock.now = 100.0;
    Press(20, 20);
    Move(24, 22, 4, 2); // (12, 11): within the tolerance
    Pump(100.4);
    EXPECT_EQ(m_recorder->Only({"begin", "drag"}),
              Lines({"begin (10,10) (10,10) (0,0)", "drag (10,10) (12,11) (2,1)"}));
}

TEST_F(ClickStateMachine, MotionOfExactlyTheTolerance_DoesNotDragAndMotionBeyondDoes)
{
    m_clock.now = 100.0;
    Press(20, 20);
    Move(27, 20, 7, 0); // (13.5, 10): 3.5 units, not more
    EXPECT_EQ(m_input->GetClickState(), Input::Pressed);
    EXPECT_TRUE(m_recorder->Only({"begin", "drag"}).empty());

    Move(28, 20, 1, 0); // (14, 10)
    EXPECT_EQ(m_input->GetClickState(), Input::Dragging);
    Move(30, 24, 2, 4); // later drags carry the event's own motion
    Release(30, 24);
    EXPECT_EQ(m_recorder->Only({"begin", "drag", "end", "click"}),
              Lines({"begin (10,10) (10,10) (0,0)", "drag (10,10) (14,10) (4,0)",
                     "drag (10,10) (15,12) (1,2)", "end (10,10) (15,12)"}));
}

TEST_F(ClickStateMachine, MotionAwayAfterAClick_EndsTheClickWithoutADrag)
{
    m_clock.now = 100.0;
    Press();
    Release();
    Move(60, 60, 40, 40);
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    EXPECT_EQ(m_recorder->Only({"click", "begin", "drag"}), Lines({"click (10,10) x1"}));
}

TEST_F(ClickStateMachine, HandledPress_StartsNothingAndItsReleaseMakesNoClick)
{
    m_recorder->onKey = [](const KeyEvent& e)
    {
        if (e.pressed)
            e.SetHandled();
    };
    m_clock.now = 100.0;
    Press();
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    Move(60, 60, 40, 40);
    Pump(101.0);
    Release(60, 60);
    EXPECT_TRUE(m_recorder->Only({"click", "begin", "drag", "end"}).empty());
}

TEST_F(ClickStateMachine, HandledReleaseDuringADrag_KeepsDraggingUntilAnUnhandledRelease)
{
    m_clock.now = 100.0;
    Press();
    Move(40, 20, 20, 0);
    ASSERT_EQ(m_input->GetClickState(), Input::Dragging);

    m_recorder->onKey = [](const KeyEvent& e)
    {
        if (!e.pressed)
            e.SetHandled();
    };
    Release(40, 20);
    EXPECT_EQ(m_input->GetClickState(), Input::Dragging);
    EXPECT_TRUE(m_recorder->Only({"end"}).empty());

    m_recorder->onKey = nullptr;
    Press(40, 20); // a press during a drag changes nothing
    Release(44, 20);
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    EXPECT_EQ(m_recorder->Only({"end", "click"}), Lines({"end (10,10) (22,10)"}));
}

TEST_F(ClickStateMachine, OtherButtonDuringAPendingClick_ChangesNothing)
{
    m_clock.now = 100.0;
    Press(20, 20, SDL_BUTTON_LEFT);
    Press(60, 60, SDL_BUTTON_RIGHT);
    Release(60, 60, SDL_BUTTON_RIGHT);
    Release(20, 20, SDL_BUTTON_LEFT);
    EXPECT_EQ(m_recorder->Only({"click"}), Lines({"click (10,10) x1"}));
}

TEST_F(ClickStateMachine, Wheel_NeverClicksOrDrags)
{
    m_clock.now = 100.0;
    Press(20, 20, SDL_BUTTON_WHEELUP);
    Release(20, 20, SDL_BUTTON_WHEELUP);
    Press(20, 20, SDL_BUTTON_WHEELDOWN);
    Pump(101.0);
    Release(20, 20, SDL_BUTTON_WHEELDOWN);
    EXPECT_EQ(m_input->GetClickState(), Input::Idle);
    EXPECT_EQ(m_recorder->Only({"press", "release", "click", "begin"}),
              Lines({"press 327", "release 327", "press 328", "release 328"}));
}

TEST_F(ClickStateMachine, EventsPushedToSDL_ArriveThroughThePump)
{
    m_clock.now = 100.0;
    SDL_Event press = ButtonEvent(true, 20, 20), motion = MotionEvent(60, 20, 40, 0),
              release = ButtonEvent(false, 60, 20);
    ASSERT_EQ(SDL_PushEvent(&press), 0);
    ASSERT_EQ(SDL_PushEvent(&motion), 0);
    ASSERT_EQ(SDL_PushEvent(&release), 0);
    m_input->PumpEvents();
    EXPECT_EQ(m_recorder->Only({"press", "release", "move", "begin", "drag", "end"}),
              Lines({"press 324", "move (30,10)", "begin (10,10) (10,10) (0,0)",
                     "drag (10,10) (30,10) (20,0)", "release 324", "end (10,10) (30,10)"}));
    EXPECT_EQ(m_input->GetMousePos(), math::Vec2(30.0f, 10.0f));
}

TEST_F(ClickStateMachine, KeyTable_IsWrittenBeforeListenersSeeTheKey)
{
    bool seenDown = false;
    m_recorder->onKey = [&](const KeyEvent& e) { seenDown = Input::GetInstancePtr()->IsKeyDown(e.key); };
    m_input->HandleEvent(KeyboardEvent(true, SDLK_b, 'b'));
    EXPECT_TRUE(seenDown);
    EXPECT_TRUE(m_recorder->IsKeyDown(SDLK_b));
    m_input->HandleEvent(KeyboardEvent(false, SDLK_b));
    EXPECT_FALSE(seenDown);
    EXPECT_FALSE(m_input->IsKeyDown(SDLK_b));
}

TEST_F(ClickStateMachine, KeyHandledByAnother_IsNotDownForThisListener)
{
    auto first = QLEX_NEW new Recorder(60);
    first->onKey = [](const KeyEvent& e) { e.SetHandled(); };
    m_input->AddListener(first);
    m_input->HandleEvent(KeyboardEvent(true, SDLK_c, 'c'));
    EXPECT_TRUE(m_input->IsKeyDown(SDLK_c));
    EXPECT_TRUE(first->IsKeyDown(SDLK_c)); // its base saw the press before it marked it
    EXPECT_FALSE(m_recorder->IsKeyDown(SDLK_c));
    m_input->HandleEvent(KeyboardEvent(false, SDLK_c));
    m_input->RemoveListener(first);
}

TEST(Modifiers, NeedBothSDLsStateAndTheKeyTable)
{
    Input* input = Input::GetInstancePtr();
    SDL_SetModState(KMOD_LSHIFT);
    EXPECT_FALSE(input->CheckModifier(Shift)); // the bit alone is not enough
    input->HandleEvent(KeyboardEvent(true, SDLK_LSHIFT));
    EXPECT_TRUE(input->CheckModifier(Shift));
    EXPECT_TRUE(input->CheckModifier(LeftShift));
    EXPECT_FALSE(input->CheckModifier(RightShift));
    EXPECT_FALSE(input->CheckModifier(None));
    input->HandleEvent(KeyboardEvent(false, SDLK_LSHIFT));

    // Command counts as Control.
    SDL_SetModState(KMOD_LMETA);
    input->HandleEvent(KeyboardEvent(true, SDLK_LMETA));
    EXPECT_TRUE(input->CheckModifier(Ctrl));
    EXPECT_TRUE(input->CheckModifier(LeftCtrl));
    EXPECT_TRUE(input->CheckModifier(Meta));
    EXPECT_FALSE(input->CheckModifier(Alt));
    input->HandleEvent(KeyboardEvent(false, SDLK_LMETA));

    // Caps Lock on makes the state non-zero: None is false.
    SDL_SetModState(KMOD_CAPS);
    EXPECT_FALSE(input->CheckModifier(None));
    EXPECT_FALSE(input->CheckModifier(Caps));
    // Right Alt (Alt Gr) is the modifier bit alone.
    SDL_SetModState(KMOD_RALT);
    EXPECT_TRUE(input->CheckModifier(RightAlt));
    SDL_SetModState(KMOD_NONE);
    EXPECT_TRUE(input->CheckModifier(None));
}

TEST(BuildKeyEvent, MakesUpTheCharacterWhereSDLGivesNone)
{
    Input* input = Input::GetInstancePtr();
    SDL_SetModState(KMOD_NONE);
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(true, SDLK_x, 'q'), true).character, 'q'); // SDL's own wins
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(false, SDLK_x), false).character, 'x');
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(false, SDLK_RETURN), false).character, '\n');
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(false, SDLK_KP7), false).character, '7');
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(false, SDLK_UP), false).character, 0);
    EXPECT_EQ(BuildKeyEvent(KeyboardEvent(false, SDLK_UNKNOWN), false).character, 0);

    SDL_SetModState(KMOD_RSHIFT);
    input->HandleEvent(KeyboardEvent(true, SDLK_RSHIFT));
    const KeyEvent shifted = BuildKeyEvent(KeyboardEvent(false, SDLK_x), false);
    EXPECT_EQ(shifted.character, 'X');
    EXPECT_TRUE(shifted.shift);
    input->HandleEvent(KeyboardEvent(false, SDLK_RSHIFT));
    SDL_SetModState(KMOD_NONE);
}

TEST(BuildKeyEvent, ModifiersAreThoseOfTheEventNotOfTheQueuesEnd)
{
    // A quick Ctrl+Q: by the time the q is handled, SDL's state has seen Ctrl go up already.
    Input* input = Input::GetInstancePtr();
    SDL_SetModState(KMOD_LCTRL);
    input->HandleEvent(KeyboardEvent(true, SDLK_LCTRL));
    const SDL_Event q = KeyboardEvent(true, SDLK_q);
    SDL_SetModState(KMOD_NONE);
    const KeyEvent event = BuildKeyEvent(q, true);
    EXPECT_TRUE(event.ctrl);
    EXPECT_FALSE(event.shift);
    EXPECT_FALSE(event.alt);
    // A modifier bit without its key down (a key held while the window had no focus) counts for nothing.
    input->HandleEvent(KeyboardEvent(false, SDLK_LCTRL));
    SDL_SetModState(KMOD_LCTRL);
    EXPECT_FALSE(BuildKeyEvent(KeyboardEvent(true, SDLK_q), true).ctrl);
    SDL_SetModState(KMOD_NONE);
}
