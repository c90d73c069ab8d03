// "Keys": combinations tied to script functions, pressed through a host the test holds, and saved as the
// statements that made them.
#include "ScriptFixture.h"

#include "input/ButtonInput.h"
#include "input/InputDelegator.h"
#include "input/KeyState.h"
#include "script/KeyBinder.h"
#include "script/Objects.h"
#include "util/StringUtil.h"

#include <set>

namespace
{
const SDLKey LEFT_CTRL = static_cast<SDLKey>(306);

class KeyBinderTest : public ScriptFixture
{
protected:
    void SetUp() override
    {
        ScriptFixture::SetUp();
        input::KeyState::SetSource([this](SDLKey key) { return m_down.count(key) > 0; });
        input::ButtonInput::SetHost(m_host.get());
        m_keys = QLEX_NEW new script::KeyBinder();
        m_keys->AddToRoot();
        // What the bound functions do: an assignment in a function stays in its own closure.
        Root()->AddVariable2("note",
                             QLEX_NEW new script::IntrinsicCmd1(script::VoidWrapper1(
                                 [this](script::ObjectPtr x) { m_noted += script::ObjectToValue<int>(x); })));
    }
    void TearDown() override
    {
        m_keys = nullptr;
        ScriptFixture::TearDown();
        input::ButtonInput::SetHost(nullptr);
        input::KeyState::SetSource(nullptr);
    }

    // A key goes down and up again, as the event pump tells it: the key table first, then the listeners.
    void Tap(SDLKey key)
    {
        for (bool pressed : {true, false})
        {
            if (pressed)
                m_down.insert(key);
            else
                m_down.erase(key);
            m_host->OnKeyEvent(input::KeyEvent(key, 0, pressed, math::Vec2(0, 0)));
        }
    }
    void Hold(SDLKey key) { m_down.insert(key); }

    static std::set<std::string> BindStatements(const std::string& code)
    {
        std::set<std::string> statements;
        for (const std::string& line : util::Split(code, '\n'))
            if (line.find("Keys.bind") != std::string::npos)
                statements.insert(line);
        return statements;
    }

    int Counter() const { return m_noted; }

    std::set<SDLKey> m_down;
    util::SharedPtr<input::InputDelegator> m_host = QLEX_NEW new input::InputDelegator(50);
    util::SharedPtr<script::KeyBinder> m_keys;
    int m_noted = 0;
};

TEST_F(KeyBinderTest, ABoundCombinationRunsItsFunctionWhenItIsComplete)
{
    Run("Keys.bind(\"left_ctrl a\", {note(1)})");
    Tap(SDLK_a);
    EXPECT_EQ(Counter(), 0) << "a alone is not the combination";
    Hold(LEFT_CTRL);
    Tap(SDLK_a);
    EXPECT_EQ(Counter(), 1);
    Tap(SDLK_a);
    EXPECT_EQ(Counter(), 2);
}

TEST_F(KeyBinderTest, BindingAgainKeepsOneEntryAndRunsTheLaterFunction)
{
    Run("Keys.bind(\"f12\", {note(1)})");
    Run("Keys.bind(\"F12\", {note(10)})");
    EXPECT_EQ(m_keys->GetBindings().size(), 1u);
    Tap(SDLK_F12);
    EXPECT_EQ(Counter(), 10) << "one press callback, the later function";
}

TEST_F(KeyBinderTest, BadCombinationsAndFunctionsAreRefused)
{
    Run("Keys.bind(\"nosuchkey\", {1})");
    EXPECT_TRUE(Reported("Unknown name of key \"nosuchkey\""));
    EXPECT_TRUE(Reported("Bad button"));
    Run("Keys.bind(\"\", {1})");
    Run("Keys.bind(\"f1\", (x)=>{x})");
    EXPECT_TRUE(Reported("The second argument should be a function taking no arguments"));
    Run("Keys.bind(\"f1\", 3)");
    EXPECT_TRUE(m_keys->GetBindings().empty());

    // A name that is no key next to one that is: the rest of the text still counts.
    Run("Keys.bind(\"f2 nosuchkey\", {1})");
    ASSERT_EQ(m_keys->GetBindings().size(), 1u);
    EXPECT_EQ(m_keys->GetBindings().begin()->first.Serialize(), "f2");
}

TEST_F(KeyBinderTest, ABuiltInCommandOfNoArgumentsIsAcceptedButNotSaved)
{
    int calls = 0;
    m_keys->Bind(script::ValueToObject(util::String("f3")),
                 QLEX_NEW new script::IntrinsicCmd(script::VoidWrapper([&calls] { ++calls; })));
    Tap(SDLK_F3);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(m_parser->ToCode().find("Keys.bind"), std::string::npos) << m_parser->ToCode();
}

TEST_F(KeyBinderTest, BindingsAreSavedAsTheirStatementsAndReadBack)
{
    EXPECT_EQ(m_parser->ToCode().find("Keys"), std::string::npos) << "no bindings, nothing saved";
    Run("Keys.bind(\"left_ctrl a\", {note(1)})");
    Run("Keys.bind(\"toggle f5\", {note(100)})");
    const std::string code = m_parser->ToCode();
    EXPECT_NE(code.find("Keys.bind(\"left_ctrl a\", {note(1)})"), std::string::npos) << code;
    EXPECT_NE(code.find("Keys.bind(\"toggle f5\", {note(100)})"), std::string::npos) << code;

    // A new run: the configuration is read into a binder that has nothing bound.
    m_keys = nullptr;
    Root()->RemoveVariable("Keys");
    m_keys = QLEX_NEW new script::KeyBinder();
    m_keys->AddToRoot();
    Tap(SDLK_F5);
    EXPECT_EQ(Counter(), 0) << "the old binder's watchers are gone";
    m_parser->Execute(code);
    EXPECT_EQ(m_keys->GetBindings().size(), 2u);
    Hold(LEFT_CTRL);
    Tap(SDLK_a);
    Tap(SDLK_F5);
    Tap(SDLK_F5);
    EXPECT_EQ(Counter(), 101) << "the toggle runs on every other press";
    EXPECT_EQ(BindStatements(m_parser->ToCode()), BindStatements(code)) << "saved again as they were read";
}

TEST_F(KeyBinderTest, UnbindEndsTheBindingAndItsSavedStatement)
{
    Run("Keys.bind(\"f6\", {note(1)})");
    Run("Keys.unbind(\"f6\")");
    Run("Keys.unbind(\"f7\")");
    Tap(SDLK_F6);
    EXPECT_EQ(Counter(), 0);
    EXPECT_EQ(m_parser->ToCode().find("Keys.bind"), std::string::npos);
    EXPECT_TRUE(m_errors.empty()) << "an unknown combination is no error";
}

TEST_F(KeyBinderTest, ABoundFunctionMayChangeTheBindingsAndTheChangesHoldFromTheNextFrame)
{
    // A one-shot key that binds others: the table changes under the press of its own button.
    Run("Keys.bind(\"f1\", {note(1); Keys.unbind(\"f1\"); Keys.bind(\"f2\", {note(10)}); "
        "Keys.bind(\"f3\", {note(100)}); Keys.bind(\"f4\", {note(1000)})})");
    Tap(SDLK_F1);
    EXPECT_EQ(Counter(), 1);
    Tap(SDLK_F1);
    EXPECT_EQ(Counter(), 1) << "unbound at once";
    EXPECT_EQ(m_parser->ToCode().find("Keys.bind"), std::string::npos)
        << "the new bindings wait for the frame";
    m_parser->Update();
    EXPECT_EQ(m_keys->GetBindings().size(), 3u);
    Tap(SDLK_F1);
    Tap(SDLK_F2);
    Tap(SDLK_F3);
    Tap(SDLK_F4);
    EXPECT_EQ(Counter(), 1111);
}

TEST_F(KeyBinderTest, AFailingFunctionWarnsAndKeepsItsBinding)
{
    // A statement that fails inside the function is reported, and the rest of the function still runs.
    Run("Keys.bind(\"f8\", {nothing.here; note(1)})");
    Tap(SDLK_F8);
    EXPECT_TRUE(Reported("nothing"));
    Tap(SDLK_F8);
    EXPECT_EQ(Counter(), 2);

    // A command that throws: a warning, and the next press runs it again.
    int calls = 0;
    m_keys->Bind(script::ValueToObject(util::String("f9")),
                 QLEX_NEW new script::IntrinsicCmd(
                     [&calls]() -> script::ObjectPtr
                     {
                         ++calls;
                         QLEX_THROW(script::ScriptException("out of order"));
                     }));
    Tap(SDLK_F9);
    EXPECT_TRUE(Reported("Button combination \"f9\" bound to bad command: out of order"));
    ForgetRepeats();
    Tap(SDLK_F9);
    EXPECT_EQ(calls, 2);
}

TEST_F(KeyBinderTest, APressWithoutBindingWarns)
{
    input::ButtonInput button;
    button.Deserialize("f10");
    m_keys->OnButtonPress(button);
    EXPECT_TRUE(Reported("Button combination \"f10\" failed to execute its command."));
}

} // namespace
