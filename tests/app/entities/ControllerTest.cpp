// What steers a shape or drives a hinge from the keyboard and joysticks: direction sources read from the
// scene's text push their bodies as the controller settings say, joystick buttons drive hinges through
// their combinations, and a joystick direction this machine lacks stays in the scene's text.
#include "EntityTestWorld.h"

#include "app/EntitySerializer.h"
#include "app/entities/HingeEntity.h"
#include "input/ButtonInput.h"
#include "input/InputDelegator.h"
#include "input/Key.h"
#include "input/KeyState.h"

#include <cmath>
#include <set>

namespace
{
const SDLKey UP = SDLK_UP, RIGHT = SDLK_RIGHT;

// The keyboard and joystick buttons as the test holds them, and a host through which their events reach
// the combinations, as the event pump and the GUI's root provide them in the program.
class ControllerTest : public entitytest::World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        Sim().m_gravitySwitch = false;
        Sim().m_airSwitch = false;
        input::KeyState::SetSource([this](SDLKey key) { return m_down.count(key) > 0; });
        input::ButtonInput::SetHost(m_host.get());
    }
    void TearDown() override
    {
        World::TearDown();
        input::ButtonInput::SetHost(nullptr);
        input::KeyState::SetSource(nullptr);
    }
    void Press(SDLKey key, bool pressed)
    {
        if (pressed)
            m_down.insert(key);
        else
            m_down.erase(key);
        m_host->OnKeyEvent(input::KeyEvent(key, 0, pressed, math::Vec2(0, 0)));
    }
    // A box read from a scene record with the given direction source.
    util::SharedPtr<app::BoxEntity> SteeredBox(const util::String& source)
    {
        util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
        app::EntitySerializer record;
        record.Set("forceController", source);
        record.Set("controllerAcc", 2.0f);
        box->Deserialize(record);
        return box;
    }
    // The change of the box's velocity over 50 steps.
    static math::Vec2 Push(const util::SharedPtr<app::BoxEntity>& box)
    {
        const math::Vec2 before = box->GetBody()->GetVelocity();
        Run(50);
        return box->GetBody()->GetVelocity() - before;
    }

    std::set<SDLKey> m_down;
    util::SharedPtr<input::InputDelegator> m_host = QLEX_NEW new input::InputDelegator(50);
};

// 2 m/s^2 over 50 steps of 0.01 s. A push is given after a step and acts in the next one, so one step of
// each stretch still has the keys of the stretch before: 0.02 m/s.
const float DV = 1.0f;
const float DV_TOLERANCE = 0.025f;

TEST_F(ControllerTest, ArrowKeysPushTheBoxAsItsSettingsSay)
{
    util::SharedPtr<app::BoxEntity> box = SteeredBox("keys up right down left");
    ASSERT_TRUE(box->m_forceController);
    EXPECT_EQ(Push(box), math::Vec2(0, 0)); // no key, no push

    Press(RIGHT, true);
    math::Vec2 dv = Push(box);
    EXPECT_NEAR(dv.x, DV, DV_TOLERANCE);
    EXPECT_NEAR(dv.y, 0.0f, DV_TOLERANCE);

    // A diagonal is no stronger than a straight push.
    Press(UP, true);
    dv = Push(box);
    EXPECT_NEAR(dv.Length(), DV, DV_TOLERANCE);
    EXPECT_NEAR(dv.x, dv.y, DV_TOLERANCE);

    // Swapped axes and inverted x: right becomes up, up becomes left.
    Press(UP, false);
    box->m_controllerReverseXY = true;
    box->m_controllerInvertX = true;
    dv = Push(box);
    EXPECT_NEAR(dv.x, 0.0f, DV_TOLERANCE);
    EXPECT_NEAR(dv.y, DV, DV_TOLERANCE);
    Press(RIGHT, false);
    Press(UP, true);
    dv = Push(box);
    EXPECT_NEAR(dv.x, -DV, DV_TOLERANCE);
    EXPECT_NEAR(dv.y, 0.0f, DV_TOLERANCE);
    // And inverted y: right becomes down.
    Press(UP, false);
    Press(RIGHT, true);
    box->m_controllerInvertY = true;
    dv = Push(box);
    EXPECT_NEAR(dv.x, 0.0f, DV_TOLERANCE);
    EXPECT_NEAR(dv.y, -DV, DV_TOLERANCE);

    app::EntitySerializer saved;
    box->SerializeTo(saved);
    EXPECT_EQ(saved.Get<util::String>("forceController"), "keys up right down left");
}

TEST_F(ControllerTest, AJoystickDirectionWithNoJoystickSteersNothingAndIsSavedAsItWasRead)
{
    for (const char* source : {"joy 1 hat 0", "joy 0 axis 2 3", "joy x axis 0 1"})
    {
        TheScene().ClearScene();
        util::SharedPtr<app::BoxEntity> box = SteeredBox(source);
        EXPECT_FALSE(box->m_forceController);
        EXPECT_EQ(Push(box), math::Vec2(0, 0));
        app::EntitySerializer saved;
        box->SerializeTo(saved);
        EXPECT_EQ(saved.Get<util::String>("forceController"), source);

        // A copy keeps the text; a source chosen later takes its place.
        util::SharedPtr<app::BoxEntity> copy = AddBox(math::Vec2(1, 1), math::Vec2(3, 0));
        copy->CopyFrom(box.get());
        EXPECT_EQ(copy->GetUnmadeForceController(), source);
        copy->SetForceController(input::DirInput::Deserialize("keys w d s a"));
        app::EntitySerializer chosen;
        copy->SerializeTo(chosen);
        EXPECT_EQ(chosen.Get<util::String>("forceController"), "keys w d s a");
        copy->SetForceController(nullptr);
        app::EntitySerializer none;
        copy->SerializeTo(none);
        EXPECT_FALSE(none.Has("forceController"));
    }
}

TEST_F(ControllerTest, AJoystickButtonDrivesAHingeThroughItsCombination)
{
    util::SharedPtr<app::BoxEntity> wheel = AddBox(math::Vec2(1, 0.2f), math::Vec2(2, 3));
    util::SharedPtr<app::HingeEntity> hinge = QLEX_NEW new app::HingeEntity(0.1f);
    const math::Vec2 points[2] = {math::Vec2(2, 3), math::Vec2(2, 3)};
    hinge->AttachAt(points);
    app::EntitySerializer record;
    record.Set("buttonForward", util::String("joy_0_b3"));
    record.Set("buttonBack", util::String("joy_1_h0_left"));
    hinge->Deserialize(record);
    TheScene().AddEntity(hinge);

    Run(20);
    EXPECT_NEAR(wheel->GetBody()->GetAngularVelocity(), 0.0f, 1e-4f);
    Press(input::Key::GetJoystickKey(0, 3), true);
    Run(50);
    const float forward = wheel->GetBody()->GetAngularVelocity();
    EXPECT_NEAR(std::fabs(forward), app::DefaultMotorSpeed, 0.05f);
    Press(input::Key::GetJoystickKey(0, 3), false);
    Press(input::Key::GetJoystickHatKey(1, 0, SDL_HAT_LEFT), true);
    Run(50);
    EXPECT_NEAR(wheel->GetBody()->GetAngularVelocity(), -forward, 0.05f);
}
} // namespace
