#include "GuiTestSupport.h"
#include "logging/LogCapture.h"

#include "logging/Log.h"
#include "script/Parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace gui::test
{
namespace
{

void ExpectVec(const math::Vec2& actual, float x, float y)
{
    EXPECT_NEAR(actual.x, x, 1e-4f);
    EXPECT_NEAR(actual.y, y, 1e-4f);
}

// The GUI as scripts see it, as the shell sets it up: "GUI" in the script root.
class GuiScript : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_gui = GUI::GetInstancePtr();
        m_gui->GetReflected()->AddToRoot();
        m_gui->OnNewWindowSize(400, 300);
    }
    void TearDown() override
    {
        Run("GUI.scale = 1.0");
        Run("GUI.clickTolerance = 3.5");
        Run("GUI.font = \"arial_black\"");
        m_gui->GetMainComponent()->RemoveAllComponents();
    }

    std::string Run(const std::string& text)
    {
        // Each statement is a frame of its own, so that a repeated error is logged again.
        logging::Logger::GetInstancePtr()->Update();
        logging::Logger::GetInstancePtr()->Update();
        return script::Parser::GetInstancePtr()->ExecuteToString(text);
    }

    GUI* m_gui = nullptr;
    logtest::LogCapture m_errors{logging::Error};
};

TEST_F(GuiScript, ScaleSetByScriptResizesTheTreeAtOnce)
{
    Run("GUI.scale = 2");
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 200, 150);
    ExpectVec(m_gui->PosFromPixel(100, 50), 50, 25);

    // A bound scale follows its expression, and each new value resizes the tree.
    Run("s = 4.0");
    Run("GUI.scale = { s }");
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 100, 75);
    Run("s = 0.5");
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 800, 600);

    // A value of the wrong type is refused; the last good one stays.
    Run("GUI.scale = \"big\"");
    EXPECT_TRUE(m_errors.Has("scale was bound to bad type"));
    EXPECT_EQ(Run("GUI.scale"), "0.5");
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 800, 600);
}

TEST_F(GuiScript, AScaleThatIsNoPositiveNumberIsWarnedOfAndTheInterfaceStaysFinite)
{
    logtest::LogCapture warnings(logging::Warning);
    for (const char* bad : {"0", "-2"})
    {
        warnings.lines.clear();
        Run(std::string("GUI.scale = ") + bad);
        logging::Logger::GetInstancePtr()->Update();
        ASSERT_EQ(warnings.lines.size(), 1u) << bad;
        EXPECT_TRUE(warnings.Has("GUI.scale must be a number above 0"));
        ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 400, 300);
        ExpectVec(m_gui->PosFromPixel(100, 50), 100, 50);
    }
    Run("GUI.scale = 2");
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 200, 150);
}

TEST_F(GuiScript, ClickToleranceSetByScriptDecidesBetweenClickAndDrag)
{
    ManualClock clock;
    util::SharedPtr<ClickTarget> target = QLEX_NEW new ClickTarget("target");
    target->SetInnerSize(100, 100);
    m_gui->GetMainComponent()->AddComponent(target);

    // Six pixels of motion between press and release: beyond the default tolerance of 3.5 units.
    auto pressMoveRelease = [&]
    {
        MoveMouseTo(20, 20);
        MouseButton(SDL_BUTTON_LEFT, true, 20, 20);
        MoveMouseTo(26, 20);
        MouseButton(SDL_BUTTON_LEFT, false, 26, 20);
    };
    pressMoveRelease();
    EXPECT_TRUE(target->clicks.empty());

    Run("GUI.clickTolerance = 10");
    EXPECT_FLOAT_EQ(m_gui->GetClickTolerance(), 10.0f);
    clock.now += 1.0;
    pressMoveRelease();
    EXPECT_EQ(target->clicks.size(), 1u);
}

TEST_F(GuiScript, FontChangeRunsTheFontCallbacksOncePerNewName)
{
    int reloads = 0;
    util::SharedPtr<util::Pointee> owner = QLEX_NEW new util::Pointee();
    m_gui->AddFontChangeCallback(QLEX_NEW new util::Callback([&reloads] { ++reloads; }, owner.get()));

    Run("GUI.font = \"fixedsys\"");
    EXPECT_EQ(reloads, 1);
    Run("GUI.font = \"fixedsys\"");
    EXPECT_EQ(reloads, 1);
    m_gui->SetFont("arial_black");
    EXPECT_EQ(reloads, 2);
    EXPECT_EQ(Run("GUI.font"), "arial_black");
    Run("GUI.font = 3");
    EXPECT_TRUE(m_errors.Has("font was bound to bad type"));
    EXPECT_EQ(reloads, 2);
}

TEST_F(GuiScript, SettingsSaveUnderTheirNamesWithTheirDefaults)
{
    const std::string code = script::Parser::GetInstancePtr()->ToCode();
    const std::string expected = "GUI.clickTimeTolerance = 0.300000012;\n"
                                 "GUI.clickTolerance = 3.5;\n"
                                 "GUI.crispFontFactor = 0.5;\n"
                                 "GUI.crispFonts = false;\n"
                                 "GUI.font = \"arial_black\";\n"
                                 "GUI.fontShadow = true;\n"
                                 "GUI.fontShadowOffset = [0.0625, 0.0625];\n"
                                 "GUI.forceOSCursor = false;\n"
                                 "GUI.opaqueness = 0.899999976;\n"
                                 "GUI.scale = 1.0";
    EXPECT_NE(code.find(expected), std::string::npos) << code;
}

} // namespace
} // namespace gui::test
