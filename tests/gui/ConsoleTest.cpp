// The console without a window: keys as the interface's root delivers them, commands run through the
// script parser, history, completion, scrolling and the slide.
#include "GuiTestSupport.h"

#include "gui/components/AutoUndoer.h"
#include "gui/components/Console.h"
#include "gui/components/ConsoleSettings.h"
#include "gui/components/Text.h"
#include "logging/Log.h"
#include "script/Parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace gui;
using namespace gui::test;

namespace
{

const int CTRL = 1;
const int ALT = 2;

class ConsoleTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        GUI* gui = GUI::GetInstancePtr();
        gui->OnNewWindowSize(400, 300);
        m_root = gui->GetRootComponent();
        // A console of the test's own in place of the interface's.
        m_root->RemoveComponent(gui->GetConsole());
        m_console = QLEX_NEW new Console();
        m_root->AddComponent(m_console);
        ConsoleSettings::GetInstancePtr()->AddToRoot();
        Frame();
    }
    void TearDown() override
    {
        if (m_console->IsOpen())
            m_console->Toggle();
        m_root->RemoveComponent(m_console);
        m_console = nullptr;
        m_root->AddComponent(GUI::GetInstancePtr()->GetConsole());
        script::Parser::GetInstancePtr()->GetRootClosure()->RemoveVariable("Console");
        ConsoleSettings::GetInstancePtr()->m_delay = ConsoleSettings::DEFAULT_DELAY;
    }

    // The log holds back a message that repeats from one frame to the next.
    static void Frame()
    {
        logging::Logger::GetInstancePtr()->Update();
        logging::Logger::GetInstancePtr()->Update();
    }

    // Delivered as the interface delivers it, to every listener of the root; returns whether it was taken.
    bool Press(SDLKey key, char character = 0, int mods = 0)
    {
        input::KeyEvent event(key, character, true, math::Vec2(0.0f, 0.0f));
        event.ctrl = mods & CTRL;
        event.alt = mods & ALT;
        event.shift = false;
        m_root->OnKeyEvent(event);
        input::KeyEvent release(key, character, false, math::Vec2(0.0f, 0.0f));
        m_root->OnKeyEvent(release);
        return event.IsHandled();
    }
    void Type(const std::string& text)
    {
        for (char c : text)
            Press(SDLKey(c), c);
    }
    void Enter(const std::string& command)
    {
        Type(command);
        Press(SDLK_RETURN);
    }
    void Open()
    {
        if (!m_console->IsOpen())
            Press(SDLK_F11);
        ASSERT_TRUE(m_console->IsOpen());
    }
    std::string Input() const { return m_console->GetInputText(); }
    TextPos Cursor() const { return m_console->GetInput()->GetTextEditor()->GetSelection().second; }
    // Puts the input's cursor at a column, as the arrow keys would.
    void SetCursor(unsigned long column)
    {
        m_console->GetInput()->GetTextEditor()->SetCursor(TextPos(0, column));
    }
    std::string LastLine() const { return m_console->GetLines().empty() ? "" : m_console->GetLines().back(); }

    util::SharedPtr<Component> m_root;
    util::SharedPtr<Console> m_console;
};

TEST_F(ConsoleTest, ItsKeysOpenAndShutItAndTheirCharacterNeverReachesTheInput)
{
    EXPECT_FALSE(Press(SDLK_b, 'b')) << "a shut console leaves keys to others";
    EXPECT_TRUE(Press(SDLK_BACKQUOTE, '`'));
    EXPECT_TRUE(m_console->IsOpen());
    EXPECT_EQ(Input(), "");
    Type("ab");
    EXPECT_EQ(Input(), "ab");
    EXPECT_TRUE(Press(SDLK_ESCAPE));
    EXPECT_FALSE(m_console->IsOpen());
    EXPECT_EQ(m_console->GetHistory(), std::vector<std::string>{"ab"}) << "text left in the input is kept";
    EXPECT_EQ(Input(), "");
    EXPECT_FALSE(Press(SDLK_ESCAPE)) << "escape opens nothing";

    for (SDLKey key : {SDLK_F11, SDLK_WORLD_7, SDLK_WORLD_29, SDLKey(SDLK_UNKNOWN)})
    {
        const char character = key == SDLK_UNKNOWN ? char(0xA7) : 0;
        EXPECT_TRUE(Press(key, character)) << key;
        EXPECT_TRUE(m_console->IsOpen()) << key;
        EXPECT_EQ(Input(), "") << key;
        Press(SDLK_F11);
        EXPECT_FALSE(m_console->IsOpen());
    }
}

TEST_F(ConsoleTest, ACommandIsEchoedRunAndFollowedByItsResult)
{
    Open();
    Enter("1 + 2");
    ASSERT_GE(m_console->GetLines().size(), 2u);
    EXPECT_EQ(m_console->GetLines()[m_console->GetLines().size() - 2], "> 1 + 2");
    EXPECT_EQ(LastLine(), "3");
    EXPECT_EQ(Input(), "");

    const size_t lines = m_console->GetLines().size();
    EXPECT_TRUE(Press(SDLK_RETURN));
    EXPECT_EQ(m_console->GetLines().size(), lines) << "an empty return does nothing";
    EXPECT_TRUE(m_console->IsOpen());

    Enter("1 + 2");
    Enter("1 + 2");
    EXPECT_EQ(m_console->GetHistory(), std::vector<std::string>{"1 + 2"}) << "no repeat in the history";

    // What scripts print shows up as a line of its own.
    Enter("print \"hello\"");
    EXPECT_EQ(LastLine(), "hello");

    Enter("Console.clear");
    EXPECT_TRUE(m_console->GetLines().empty());
}

// The interface's own console shows the log but for debugging messages, and so the errors of commands.
TEST(InterfaceConsole, ShowsTheLogButForDebuggingMessages)
{
    const util::SharedPtr<Console>& console = GUI::GetInstancePtr()->GetConsole();
    logging::Logger::GetInstancePtr()->Update();
    logging::Logger::GetInstancePtr()->Update();
    Log(logging::Info, "information");
    ASSERT_FALSE(console->GetLines().empty());
    EXPECT_EQ(console->GetLines().back(), "information");
    Log(logging::Debug, "debugging");
    EXPECT_EQ(console->GetLines().back(), "information");
    Log(logging::Error, "an error");
    EXPECT_NE(console->GetLines().back().find("an error"), std::string::npos) << console->GetLines().back();
    console->PrintLine("nothing.here", true);
    EXPECT_NE(console->GetLines().back().find("nothing"), std::string::npos) << console->GetLines().back();
    EXPECT_EQ(console->GetHistory().back(), "nothing.here");
}

TEST_F(ConsoleTest, UpAndDownWalkTheHistoryWithoutLosingWhatWasTyped)
{
    Open();
    EXPECT_TRUE(Press(SDLK_UP)) << "the console holds the arrows even with no history";
    EXPECT_EQ(Input(), "");
    Enter("1");
    Enter("2");
    Press(SDLK_UP);
    EXPECT_EQ(Input(), "2");
    EXPECT_EQ(Cursor(), TextPos(0, 1)) << "the cursor at the end";
    Press(SDLK_UP);
    Press(SDLK_UP);
    EXPECT_EQ(Input(), "1") << "Up stops at the first entry";
    Press(SDLK_DOWN);
    EXPECT_EQ(Input(), "2");
    Press(SDLK_DOWN);
    EXPECT_EQ(Input(), "") << "beyond the last entry the input is empty";

    Type("3");
    Press(SDLK_UP);
    EXPECT_EQ(Input(), "2");
    EXPECT_EQ(m_console->GetHistory(), (std::vector<std::string>{"1", "2", "3"})) << "Up kept what was typed";
    Press(SDLK_DOWN);
    EXPECT_EQ(Input(), "3");

    // Down on a line being typed puts it away for later.
    Press(SDLK_DOWN);
    Type("4");
    Press(SDLK_DOWN);
    EXPECT_EQ(Input(), "");
    EXPECT_EQ(m_console->GetHistory().back(), "4");

    // An entry taken back and edited runs as a new command.
    Press(SDLK_UP);
    Press(SDLK_UP);
    Press(SDLK_BACKSPACE);
    Type("5");
    Press(SDLK_RETURN);
    EXPECT_EQ(LastLine(), "5");
    EXPECT_EQ(m_console->GetHistory().back(), "5");
}

TEST_F(ConsoleTest, TabCompletesTheNameBeforeTheCursor)
{
    Open();
    Type("Cons");
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "Console.");
    Type("fa");
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "Console.fade");
    EXPECT_EQ(Cursor(), TextPos(0, 12));

    // Two candidates: the name grows to what they share, and both are listed below an empty line.
    Press(SDLK_RETURN);
    Type("Console.sc");
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "Console.scr");
    const std::vector<std::string>& lines = m_console->GetLines();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
              (std::vector<std::string>{"", "screenSize", "scroll"}));

    // In the middle of a line: the text behind the cursor stays behind the completed name.
    m_console->SetInputText("x = Console.del + 1");
    SetCursor(15);
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "x = Console.delay + 1");
    EXPECT_EQ(Cursor(), TextPos(0, 17));

    // At the start nothing stands before the cursor: every name of the root is a candidate.
    m_console->SetInputText("Console");
    SetCursor(0);
    const size_t before = m_console->GetLines().size();
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "Console");
    EXPECT_GT(m_console->GetLines().size(), before + 2);

    // With a selection, the head reaches to its later end, whichever way it was made.
    m_console->SetInputText("Console.dela");
    m_console->GetInput()->GetTextEditor()->SetCursor(TextSelection(TextPos(0, 12), TextPos(0, 9)));
    Press(SDLK_TAB);
    EXPECT_EQ(Input(), "Console.delay");

    // Alt+Tab is not the console's.
    m_console->SetInputText("Cons");
    SetCursor(4);
    Press(SDLK_TAB, 0, ALT);
    EXPECT_EQ(Input(), "Cons");
}

// Counts the steps that text edits offer to the application's history.
class CountingSink : public TextUndoSink
{
public:
    CountingSink() { SetTextUndoSink(this); }
    ~CountingSink() override { SetTextUndoSink(nullptr); }
    void AddUndo(util::SharedPtr<TextEditUndoer>) override { ++steps; }
    bool IsNewest(const TextEditUndoer&) const override { return false; }
    int steps = 0;
};

TEST_F(ConsoleTest, TypingInTheConsoleLeavesTheApplicationsHistoryAlone)
{
    CountingSink history;
    Open();
    Type("1 + 1");
    Press(SDLK_BACKSPACE);
    Press(SDLK_a, 0, CTRL);
    Press(SDLK_x, 0, CTRL);
    EXPECT_EQ(Input(), "");
    EXPECT_EQ(history.steps, 0);

    TextField field;
    field.GetTextEditor()->OnKeyEvent(input::KeyEvent(SDLK_a, 'a', true, math::Vec2(0.0f, 0.0f)));
    EXPECT_EQ(history.steps, 1) << "other fields still offer their edits";
}

TEST_F(ConsoleTest, PageKeysScrollWithinTheLines)
{
    Open();
    m_console->Clear();
    EXPECT_TRUE(Press(SDLK_PAGEUP));
    EXPECT_EQ(m_console->GetScroll(), 0) << "nothing to scroll";
    for (const char* line : {"one", "two", "three"})
        m_console->Print(line);
    for (int i = 0; i < 5; ++i)
        Press(SDLK_PAGEUP);
    EXPECT_EQ(m_console->GetScroll(), 2) << "Page Up stops at the first line";
    Press(SDLK_PAGEDOWN);
    EXPECT_EQ(m_console->GetScroll(), 1);
    Press(SDLK_END, 0, CTRL);
    EXPECT_EQ(m_console->GetScroll(), 0);
    Press(SDLK_HOME, 0, CTRL);
    EXPECT_EQ(m_console->GetScroll(), 2);
    Press(SDLK_PAGEDOWN);
    Press(SDLK_PAGEDOWN);
    Press(SDLK_PAGEDOWN);
    EXPECT_EQ(m_console->GetScroll(), 0);

    // Home and End alone move the input's cursor.
    Type("abc");
    Press(SDLK_HOME);
    EXPECT_EQ(Cursor(), TextPos(0, 0));
    EXPECT_EQ(m_console->GetScroll(), 0);
    Press(SDLK_PAGEUP);
    m_console->Print("four");
    EXPECT_EQ(m_console->GetScroll(), 0) << "a new line shows the bottom";
}

TEST_F(ConsoleTest, TheSlideTurnsBackFromWhereItStands)
{
    ManualClock clock;
    ConsoleSettings::GetInstancePtr()->m_delay = 0.4f;
    float part = 0.0f;
    EXPECT_FALSE(m_console->GetShownPart(part)) << "shut from the start, with no slide";
    m_console->Toggle();
    EXPECT_FALSE(m_console->GetShownPart(part)) << "nothing shows at the first instant";
    clock.now += 0.1;
    ASSERT_TRUE(m_console->GetShownPart(part));
    EXPECT_NEAR(part, 0.25f, 1e-4f);

    m_console->Toggle();
    ASSERT_TRUE(m_console->GetShownPart(part));
    EXPECT_NEAR(part, 0.25f, 1e-4f) << "the way back starts where the way down stood";
    clock.now += 0.05;
    ASSERT_TRUE(m_console->GetShownPart(part));
    EXPECT_NEAR(part, 0.125f, 1e-4f);
    clock.now += 0.05;
    EXPECT_FALSE(m_console->GetShownPart(part));

    m_console->Toggle();
    clock.now += 1.0;
    ASSERT_TRUE(m_console->GetShownPart(part));
    EXPECT_FLOAT_EQ(part, 1.0f);
    m_console->Update(0.0f);
    EXPECT_NEAR(m_console->GetInnerSize().y, 0.35f * 300.0f, 1e-3f) << "0.35 of the window's height";

    // A delay that is no number above 0: open and shut at once.
    ConsoleSettings::GetInstancePtr()->m_delay = 0.0f;
    m_console->Toggle();
    EXPECT_FALSE(m_console->GetShownPart(part));
    m_console->Toggle();
    ASSERT_TRUE(m_console->GetShownPart(part));
    EXPECT_FLOAT_EQ(part, 1.0f);
}

} // namespace
