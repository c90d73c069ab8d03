// Controls driven through the event pump, as the mouse drives them: SDL events in, values and settings out.
#include "GuiTestSupport.h"

#include "gui/TextLookup.h"
#include "gui/components/Button.h"
#include "gui/components/Checkbox.h"
#include "gui/components/LabeledSlider.h"
#include "gui/components/RadioButton.h"
#include "gui/components/Slider.h"
#include "input/Key.h"
#include "script/Attributes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace gui;
using namespace gui::test;

namespace
{

const double INF = std::numeric_limits<double>::infinity();

util::SharedPtr<script::TAttrib<float>> FloatSetting(float value, float defaultValue)
{
    util::SharedPtr<script::TAttrib<float>> attrib =
        QLEX_NEW new script::Attrib<float>("setting", defaultValue);
    attrib->Set(value);
    return attrib;
}

util::SharedPtr<script::TAttrib<bool>> BoolSetting(bool value, bool defaultValue)
{
    util::SharedPtr<script::TAttrib<bool>> attrib =
        QLEX_NEW new script::Attrib<bool>("setting", defaultValue);
    attrib->Set(value);
    return attrib;
}

struct Counts : util::Pointee
{
    void Begin() { ++begins; }
    void Change() { ++changes; }
    void End() { ++ends; }
    void Click() { ++clicks; }
    int begins = 0, changes = 0, ends = 0, clicks = 0;
};

// Answers every key with its name in angle brackets, as a language table would.
class FakeLookup : public TextLookup
{
public:
    bool Has(const std::string& key) const override { return key != "Unknown"; }
    std::string Get(const std::string& key) const override { return "<" + key + ">"; }
};

class ControlsTest : public GuiFixture
{
protected:
    void TearDown() override
    {
        m_main->RemoveAllComponents();
        MoveMouseTo(399, 299);
        Settle();
    }
    // Lets the time of a pending click run out, so that the next press starts afresh.
    void Settle()
    {
        m_clock.now += 1.0;
        input::Input::GetInstancePtr()->PumpEvents();
        m_gui->Update(0.0f);
    }
    void Click(Uint8 button, int x, int y)
    {
        MoveMouseTo(x, y);
        MouseButton(button, true, x, y);
        MouseButton(button, false, x, y);
        Settle();
    }
    void Drag(int x0, int x1, int y)
    {
        MoveMouseTo(x0, y);
        MouseButton(SDL_BUTTON_LEFT, true, x0, y);
        for (int x = x0; x != x1; x += x1 > x0 ? 1 : -1)
            MoveMouseTo(x, y);
        MoveMouseTo(x1, y);
        MouseButton(SDL_BUTTON_LEFT, false, x1, y);
        Settle();
    }
    // A slider at the top left of the screen: its local coordinates are those of the screen.
    template <class S> util::SharedPtr<S> Place(util::SharedPtr<S> slider)
    {
        m_main->AddComponent(slider);
        return slider;
    }
};

TEST_F(ControlsTest, LinearSliderMapsValueToPositionAndBack)
{
    auto slider = Place<Slider>(QLEX_NEW new Slider(0.0, 100.0));
    EXPECT_EQ(slider->GetValue(), 50.0);
    // The bar runs from 5 to 155 on a slider 160 wide.
    EXPECT_FLOAT_EQ(slider->CalcMarkerPos(), 80.0f);
    slider->SetValue(10.0);
    EXPECT_FLOAT_EQ(slider->CalcMarkerPos(), 20.0f);
    for (float x : {20.0f, 42.5f, 140.0f})
    {
        slider->OnMousePos(math::Vec2(x, 8.0f));
        EXPECT_NEAR(slider->CalcMarkerPos(), x, 1e-4f);
    }
    EXPECT_NEAR(slider->GetValue(), 90.0, 1e-4);
    // Beyond the ends: the ends of the range.
    slider->OnMousePos(math::Vec2(-30.0f, 8.0f));
    EXPECT_EQ(slider->GetValue(), 0.0);
    slider->OnMousePos(math::Vec2(300.0f, 8.0f));
    EXPECT_EQ(slider->GetValue(), 100.0);
}

TEST_F(ControlsTest, LogarithmicSliderSpreadsPowersOfTenEvenly)
{
    auto slider = Place<Slider>(QLEX_NEW new Slider(1.0, 1000.0));
    slider->SetLogarithmic(true);
    slider->SetValue(10.0);
    EXPECT_NEAR(slider->CalcMarkerPos(), 55.0f, 1e-4f);
    slider->SetValue(100.0);
    EXPECT_NEAR(slider->CalcMarkerPos(), 105.0f, 1e-4f);
    slider->OnMousePos(math::Vec2(55.0f, 8.0f));
    EXPECT_NEAR(slider->GetValue(), 10.0, 1e-4);
    slider->OnMousePos(math::Vec2(80.0f, 8.0f));
    EXPECT_NEAR(slider->GetValue(), std::sqrt(1000.0), 1e-4);
    EXPECT_THROW(Slider(0.0, 1.0).SetLogarithmic(true), BadCoderException);
    EXPECT_THROW(Slider(1.0, 1.0), BadCoderException);
}

TEST_F(ControlsTest, EndsThatMeanInfinityGiveTheirValueAndShowAsInf)
{
    util::SharedPtr<Slider> slider = QLEX_NEW new Slider(0.0, 10.0);
    slider->SetValueAtHighEnd(INF);
    slider->SetValueAtLowEnd(-INF);
    auto labeled = Place<LabeledSlider>(QLEX_NEW new LabeledSlider("Strength", slider, "N"));
    const math::Vec2 middle = slider->LocalToGUI(math::Vec2(80.0f, 8.0f));
    const math::Vec2 end = slider->LocalToGUI(math::Vec2(155.0f, 8.0f));
    Drag(int(middle.x), int(end.x) + 30, int(middle.y));
    EXPECT_EQ(slider->GetValue(), INF);
    EXPECT_EQ(labeled->GetTextField()->GetText(), "+inf");
    // An infinite value stands at the end of the bar.
    EXPECT_FLOAT_EQ(slider->CalcMarkerPos(), 155.0f);
    slider->OnMousePos(slider->LocalToGUI(math::Vec2(5.0f, 8.0f)));
    EXPECT_EQ(slider->GetValue(), -INF);
    EXPECT_EQ(labeled->GetTextField()->GetText(), "-inf");
    slider->OnMousePos(slider->LocalToGUI(math::Vec2(154.0f, 8.0f)));
    EXPECT_LT(slider->GetValue(), 10.0);
}

TEST_F(ControlsTest, ValueOutsideTheRangeStaysUntilTheUserActs)
{
    auto setting = FloatSetting(250.0f, 1.0f);
    auto slider = Place<AttribSlider>(QLEX_NEW new AttribSlider(0.0f, 100.0f, setting));
    EXPECT_EQ(slider->GetValue(), 250.0);
    EXPECT_FLOAT_EQ(slider->CalcMarkerPos(), 155.0f);
    EXPECT_EQ(setting->Get(), 250.0f);
}

TEST_F(ControlsTest, DragChangesTheSettingWithOneBeginAndOneEnd)
{
    auto setting = FloatSetting(50.0f, 20.0f);
    auto slider = Place<AttribSlider>(QLEX_NEW new AttribSlider(0.0f, 100.0f, setting));
    util::SharedPtr<Counts> counts = QLEX_NEW new Counts();
    slider->AddBeginChangeCallback(util::MakeCallback(&Counts::Begin, counts.get()));
    slider->AddOnChangeCallback(util::MakeCallback(&Counts::Change, counts.get()));
    slider->AddEndChangeCallback(util::MakeCallback(&Counts::End, counts.get()));
    Drag(80, 20, 8);
    EXPECT_NEAR(setting->Get(), 10.0f, 1e-4f);
    EXPECT_EQ(counts->begins, 1);
    EXPECT_EQ(counts->ends, 1);
    EXPECT_GT(counts->changes, 1);
    EXPECT_FALSE(slider->IsDragging());
    // The setting changed from elsewhere moves the slider.
    setting->Set(75.0f);
    EXPECT_EQ(slider->GetValue(), 75.0);
    // A left click is a change of its own.
    Click(SDL_BUTTON_LEFT, 155, 8);
    EXPECT_EQ(setting->Get(), 100.0f);
    EXPECT_EQ(counts->begins, 2);
    EXPECT_EQ(counts->ends, 2);
}

TEST_F(ControlsTest, MiddleClickRestoresTheDefault)
{
    auto setting = FloatSetting(80.0f, 20.0f);
    auto slider = Place<AttribSlider>(QLEX_NEW new AttribSlider(0.0f, 100.0f, setting));
    util::SharedPtr<Counts> counts = QLEX_NEW new Counts();
    slider->AddEndChangeCallback(util::MakeCallback(&Counts::End, counts.get()));
    Click(SDL_BUTTON_MIDDLE, 120, 8);
    EXPECT_EQ(setting->Get(), 20.0f);
    EXPECT_EQ(counts->ends, 1);
    // At the default already: nothing to do, and no step.
    Click(SDL_BUTTON_MIDDLE, 120, 8);
    EXPECT_EQ(counts->ends, 1);
    // Outside the slider nothing happens.
    setting->Set(60.0f);
    Click(SDL_BUTTON_MIDDLE, 120, 100);
    EXPECT_EQ(setting->Get(), 60.0f);
}

TEST_F(ControlsTest, MultiSliderShowsNothingWhileTheSettingsDifferAndSetsThemAll)
{
    auto a = FloatSetting(1.0f, 5.0f);
    auto b = FloatSetting(2.0f, 5.0f);
    util::SharedPtr<MultiAttribSlider> slider = QLEX_NEW new MultiAttribSlider(0.0, 10.0, {a, b});
    LabeledSlider labeled("Density", slider, "kg");
    EXPECT_TRUE(std::isnan(slider->GetValue()));
    EXPECT_TRUE(std::isnan(slider->CalcMarkerPos()));
    EXPECT_EQ(labeled.GetTextField()->GetText(), "");
    slider->SetValue(4.0);
    EXPECT_EQ(a->Get(), 4.0f);
    EXPECT_EQ(b->Get(), 4.0f);
    EXPECT_EQ(labeled.GetTextField()->GetText(), "4.00");
    b->Set(3.0f);
    EXPECT_TRUE(std::isnan(slider->GetValue()));
    a->Set(3.0f);
    EXPECT_EQ(slider->GetValue(), 3.0);
    // The default is the first setting's.
    EXPECT_EQ(slider->GetDefault(), 5.0);
    EXPECT_TRUE(std::isnan(MultiAttribSlider(0.0, 1.0, {}).GetValue()));
}

TEST_F(ControlsTest, LabeledSliderDecimalsFollowRangeAndValue)
{
    EXPECT_EQ(LabeledSlider::FormatValue(5.5, 0.0, 100.0, 1.0), "5.5");
    EXPECT_EQ(LabeledSlider::FormatValue(0.25, 0.0, 1.0, 1.0), "0.250");
    EXPECT_EQ(LabeledSlider::FormatValue(0.001, 0.0, 100.0, 1.0), "0.0010");
    EXPECT_EQ(LabeledSlider::FormatValue(0.0, 0.0, 1000.0, 1.0), "0");
    // The display factor scales what shows and the range it is judged by.
    EXPECT_EQ(LabeledSlider::FormatValue(0.5, 0.0, 1.0, 100.0), "50.0");
    EXPECT_EQ(LabeledSlider::FormatValue(std::nan(""), 0.0, 1.0, 1.0), "");
}

TEST_F(ControlsTest, TypedValueIsTakenAndANonNumberPutBack)
{
    util::SharedPtr<Slider> slider = QLEX_NEW new Slider(0.0, 100.0);
    LabeledSlider labeled("Length", slider, "m");
    labeled.SetValue(12.5);
    EXPECT_EQ(labeled.GetTextField()->GetText(), "12.5");
    labeled.GetTextField()->SetEnabled(true);
    labeled.GetTextField()->SetText("42");
    labeled.GetTextField()->OnReturn();
    EXPECT_EQ(labeled.GetValue(), 42.0);
    EXPECT_FALSE(labeled.GetTextField()->IsEnabled());
    labeled.GetTextField()->SetEnabled(true);
    labeled.GetTextField()->SetText("much");
    labeled.GetTextField()->OnReturn();
    EXPECT_EQ(labeled.GetValue(), 42.0);
    EXPECT_EQ(labeled.GetTextField()->GetText(), "42.0");
}

TEST_F(ControlsTest, SliderTooltipComesFromTheRegisteredLookup)
{
    Slider without(0.0, 1.0);
    without.SetDefault(0.5);
    EXPECT_FALSE(without.GetTooltip());
    FakeLookup lookup;
    SetTextLookup(&lookup);
    Slider with(0.0, 1.0);
    with.SetDefault(0.5);
    util::SharedPtr<Slider> inner = QLEX_NEW new Slider(0.0, 1.0);
    LabeledSlider labeled("Name", inner, "");
    SetTextLookup(nullptr);
    auto tip = util::dynamic_pointer_cast<TextBox>(with.GetTooltip());
    ASSERT_TRUE(tip);
    EXPECT_EQ(tip->GetText(), "<Slider_Tooltip>");
    auto fieldTip = util::dynamic_pointer_cast<TextBox>(labeled.GetTextField()->GetTooltip());
    ASSERT_TRUE(fieldTip);
    EXPECT_EQ(fieldTip->GetText(), "<LabeledSlider_Tooltip>");
}

TEST_F(ControlsTest, CheckboxClickOnMixedMakesOnAndSetsEverySetting)
{
    auto a = BoolSetting(true, false);
    auto b = BoolSetting(false, false);
    util::SharedPtr<MultiAttribCheckbox> box = QLEX_NEW new MultiAttribCheckbox("Glue", {a, b});
    m_main->AddComponent(box);
    EXPECT_EQ(box->GetState(), AbstractToggleButton::Mixed);
    Click(SDL_BUTTON_LEFT, 8, 8);
    EXPECT_EQ(box->GetState(), AbstractToggleButton::On);
    EXPECT_TRUE(a->Get());
    EXPECT_TRUE(b->Get());
    Click(SDL_BUTTON_LEFT, 8, 8);
    EXPECT_FALSE(a->Get());
    EXPECT_FALSE(b->Get());
    a->Set(true);
    EXPECT_EQ(box->GetState(), AbstractToggleButton::Mixed);
}

TEST_F(ControlsTest, CheckboxFollowsItsSettingAndMiddleClickRestoresTheDefault)
{
    auto setting = BoolSetting(true, false);
    util::SharedPtr<AttribCheckbox> box = QLEX_NEW new AttribCheckbox("Borders", setting);
    m_main->AddComponent(box);
    EXPECT_EQ(box->GetState(), AbstractToggleButton::On);
    Click(SDL_BUTTON_LEFT, 8, 8);
    EXPECT_FALSE(setting->Get());
    setting->Set(true);
    EXPECT_EQ(box->GetState(), AbstractToggleButton::On);
    Click(SDL_BUTTON_MIDDLE, 8, 8);
    EXPECT_FALSE(setting->Get());
    EXPECT_EQ(box->GetState(), AbstractToggleButton::Off);
}

TEST_F(ControlsTest, DisabledButtonTakesNoClick)
{
    util::SharedPtr<Counts> counts = QLEX_NEW new Counts();
    util::SharedPtr<gui::Button> button =
        QLEX_NEW new gui::Button("Press", util::MakeCallback(&Counts::Click, counts.get()));
    m_main->AddComponent(button);
    button->SetInnerSize(40, 20);
    Click(SDL_BUTTON_LEFT, 10, 10);
    EXPECT_EQ(counts->clicks, 1);
    button->SetEnabled(false);
    input::ClickEvent click(math::Vec2(10, 10), SDLKey(input::Key::MOUSE_LEFT), 1);
    MoveMouseTo(10, 10);
    button->OnClick(click);
    EXPECT_FALSE(click.IsHandled());
    EXPECT_EQ(counts->clicks, 1);
    // Hot keys act as a click, but not with a modifier.
    button->SetEnabled(true);
    button->AddHotKey(SDLK_RETURN);
    input::KeyEvent plain(SDLK_RETURN, 0, true, math::Vec2(0, 0));
    plain.shift = plain.ctrl = plain.alt = false;
    button->OnKeyEvent(plain);
    EXPECT_EQ(counts->clicks, 2);
    EXPECT_TRUE(plain.IsHandled());
}

TEST_F(ControlsTest, RadioGroupSelectsOneAndPassesTheSelectionOn)
{
    util::SharedPtr<RadioGroup> group = QLEX_NEW new RadioGroup();
    {
        util::SharedPtr<RadioButton> only = QLEX_NEW new RadioButton("Only", group);
        EXPECT_TRUE(only->IsChecked());
    }
    EXPECT_EQ(group->GetSelected(), nullptr);
    util::SharedPtr<RadioButton> first = QLEX_NEW new RadioButton("First", group);
    util::SharedPtr<RadioButton> second = QLEX_NEW new RadioButton("Second", group);
    EXPECT_TRUE(first->IsChecked());
    m_main->AddComponent(second);
    Click(SDL_BUTTON_LEFT, 8, 8);
    EXPECT_TRUE(second->IsChecked());
    EXPECT_FALSE(first->IsChecked());
    m_main->RemoveComponent(second);
    second = nullptr;
    EXPECT_TRUE(first->IsChecked());
}

} // namespace
