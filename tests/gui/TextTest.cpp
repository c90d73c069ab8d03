// Text editing without a window: wrapping, editing by keys with undo and redo, selections by keys and by
// the mouse, focus. Texts use a font of one unit a character, so that positions are easy to tell.
#include "GuiTestSupport.h"

#include "gui/components/AutoUndoer.h"
#include "gui/components/Text.h"
#include "gui/components/TextBox.h"
#include "input/Key.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace gui;
using namespace gui::test;

namespace
{

// A history of text edits as the application keeps one: undo moves the newest step to the redo stack.
class History : public TextUndoSink
{
public:
    History() { SetTextUndoSink(this); }
    ~History() override { SetTextUndoSink(nullptr); }
    void AddUndo(util::SharedPtr<TextEditUndoer> edit) override
    {
        undo.push_back(edit);
        redo.clear();
    }
    bool IsNewest(const TextEditUndoer& edit) const override
    {
        return !undo.empty() && undo.back().get() == &edit;
    }
    void Undo()
    {
        ASSERT_FALSE(undo.empty());
        undo.back()->Undo();
        redo.push_back(undo.back());
        undo.pop_back();
    }
    void Redo()
    {
        ASSERT_FALSE(redo.empty());
        redo.back()->Redo();
        undo.push_back(redo.back());
        redo.pop_back();
    }
    std::vector<util::SharedPtr<TextEditUndoer>> undo;
    std::vector<util::SharedPtr<TextEditUndoer>> redo;
};

enum Mods
{
    NONE = 0,
    CTRL = 1,
    SHIFT = 2
};

input::KeyEvent Key(SDLKey key, char character = 0, int mods = NONE)
{
    input::KeyEvent event(key, character, true, math::Vec2(0.0f, 0.0f));
    event.ctrl = mods & CTRL;
    event.shift = mods & SHIFT;
    event.alt = false;
    return event;
}

void Press(input::InputListener& listener, SDLKey key, int mods = NONE)
{
    listener.OnKeyEvent(Key(key, 0, mods));
}

void Type(input::InputListener& listener, const std::string& text)
{
    for (char c : text)
        listener.OnKeyEvent(Key(SDLKey(c), c));
}

util::SharedPtr<Text> MakeText(const std::string& content = "")
{
    util::SharedPtr<Text> text = QLEX_NEW new Text(FixedWidthFont());
    text->SetText(content);
    return text;
}

std::vector<std::string> Rows(const Line& line)
{
    std::vector<std::string> rows;
    for (unsigned long row = 0; row < line.NRows(); ++row)
        rows.push_back(line.GetRow(row));
    return rows;
}

using Rows_ = std::vector<std::string>;

} // namespace

TEST(Line, WrapsBehindTheLastBlankAndInsideWordsLongerThanTheWidth)
{
    Line line(FixedWidthFont(), 6.5f, "aaaa bbbb cccc");
    EXPECT_EQ(Rows(line), Rows_({"aaaa ", "bbbb ", "cccc"}));
    EXPECT_FLOAT_EQ(line.GetWidth(), 5.0f);
    EXPECT_EQ(line.GetRowBounds(1), std::make_pair(5ul, 10ul));
    // A column at the end of a row that isn't the last belongs to the next one.
    EXPECT_EQ(line.RowOfColumn(4), 0u);
    EXPECT_EQ(line.RowOfColumn(5), 1u);
    EXPECT_EQ(line.RowOfColumn(14), 2u);

    line.SetMaxWidth(4.5f);
    line.SetText("abcdefghij");
    EXPECT_EQ(Rows(line), Rows_({"abcd", "efgh", "ij"}));
    // Blanks that pass the width hang at the end of their row.
    line.SetMaxWidth(2.5f);
    line.SetText("a    b");
    EXPECT_EQ(Rows(line), Rows_({"a  ", "  ", "b"}));
    // A character wider than the row stands alone, with no endless loop.
    line.SetMaxWidth(0.5f);
    line.SetText("xyz");
    EXPECT_EQ(Rows(line), Rows_({"x", "y", "z"}));
    line.SetMaxWidth(math::INF);
    EXPECT_EQ(Rows(line), Rows_({"xyz"}));
    line.SetText("");
    EXPECT_EQ(Rows(line), Rows_({""}));
}

TEST(Text, LinesSplitAtLineBreaksUpToTheMaximalLines)
{
    util::SharedPtr<Text> text = MakeText("one\ntwo\n\nfour");
    EXPECT_EQ(text->GetLines().size(), 4u);
    EXPECT_EQ(text->GetText(), "one\ntwo\n\nfour");
    EXPECT_EQ(MakeText("\n")->NRows(), 2u);

    text->SetMaxWidth(2.5f);
    EXPECT_EQ(text->NRows(), 2u + 2u + 1u + 2u);
    EXPECT_FLOAT_EQ(text->GetSize().x, 2.0f);
    // Positions count display rows: "four" is rows 5 and 6.
    EXPECT_FLOAT_EQ(text->CursorToPos(TextPos(3, 3)).x, 1.0f);
    EXPECT_FLOAT_EQ(text->CursorToPos(TextPos(3, 3)).y, 6.0f);
    EXPECT_EQ(text->PosToCursor(math::Vec2(0.4f, 5.9f)), TextPos(3, 0));
    EXPECT_EQ(text->PosToCursor(math::Vec2(0.6f, 5.0f)), TextPos(3, 1));
    EXPECT_EQ(text->PosToCursor(math::Vec2(9.0f, 99.0f)), TextPos(3, 4));
    EXPECT_EQ(text->PosToCursor(math::Vec2(-3.0f, -3.0f)), TextPos(0, 0));

    text->SetMaxLines(2);
    EXPECT_EQ(text->GetText(), "one\ntwo");
    text->SetCursor(TextPos(1, 3));
    text->PasteText("\nthree");
    EXPECT_EQ(text->GetText(), "one\ntwo");
}

TEST(Text, EditingByKeysIsUndoneAndRedoneStepByStep)
{
    History history;
    util::SharedPtr<Text> text = MakeText();
    // A run of typing is one step.
    Type(*text, "hello");
    ASSERT_EQ(history.undo.size(), 1u);
    Press(*text, SDLK_RETURN);
    Type(*text, "world");
    EXPECT_EQ(text->GetText(), "hello\nworld");
    ASSERT_EQ(history.undo.size(), 3u);
    // Backspace at the start of a line joins it to the line before.
    Press(*text, SDLK_HOME);
    Press(*text, SDLK_BACKSPACE);
    EXPECT_EQ(text->GetText(), "helloworld");
    EXPECT_EQ(text->GetSelection().second, TextPos(0, 5));
    // A move ends the run: this typing is a step of its own.
    Type(*text, " ");
    Press(*text, SDLK_DELETE);
    EXPECT_EQ(text->GetText(), "hello orld");
    ASSERT_EQ(history.undo.size(), 6u);

    history.Undo();
    EXPECT_EQ(text->GetText(), "hello world");
    history.Undo();
    EXPECT_EQ(text->GetText(), "helloworld");
    history.Undo();
    EXPECT_EQ(text->GetText(), "hello\nworld");
    EXPECT_EQ(text->GetSelection().second, TextPos(1, 0));
    history.Undo();
    EXPECT_EQ(text->GetText(), "hello\n");
    history.Redo();
    EXPECT_EQ(text->GetText(), "hello\nworld");
    EXPECT_EQ(text->GetSelection().second, TextPos(1, 5));

    // Nothing to erase at the very start: no step.
    text->SetCursor(TextPos(0, 0));
    Press(*text, SDLK_BACKSPACE);
    EXPECT_EQ(history.undo.size(), 3u);
    EXPECT_EQ(text->GetText(), "hello\nworld");

    // Cut and paste through the clipboard, each one step.
    Press(*text, SDLK_END, SHIFT);
    Press(*text, SDLK_x, CTRL);
    EXPECT_EQ(text->GetText(), "\nworld");
    Press(*text, SDLK_END, CTRL);
    Press(*text, SDLK_v, CTRL);
    EXPECT_EQ(text->GetText(), "\nworldhello");
    EXPECT_EQ(history.undo.size(), 5u);
    history.Undo();
    history.Undo();
    EXPECT_EQ(text->GetText(), "hello\nworld");
}

TEST(Text, ShiftMovesTheCursorAndKeepsTheAnchor)
{
    util::SharedPtr<Text> text = MakeText("hello world\nsecond line");
    Press(*text, SDLK_RIGHT, SHIFT);
    Press(*text, SDLK_RIGHT, SHIFT);
    Press(*text, SDLK_RIGHT, SHIFT);
    EXPECT_EQ(text->GetSelectedText(), "hel");
    Press(*text, SDLK_DOWN, SHIFT);
    EXPECT_EQ(text->GetSelectedText(), "hello world\nsec");
    // Without Shift the anchor follows: nothing is selected.
    Press(*text, SDLK_LEFT);
    EXPECT_EQ(text->GetSelectedText(), "");
    EXPECT_EQ(text->GetSelection().first, TextPos(1, 2));
    Press(*text, SDLK_HOME, CTRL | SHIFT);
    EXPECT_EQ(text->GetSelectedText(), "hello world\nse");
    // Typing replaces the selection; Ctrl+A of an empty text selects nothing.
    Type(*text, "X");
    EXPECT_EQ(text->GetText(), "Xcond line");
    text->SetText("");
    Press(*text, SDLK_a, CTRL);
    EXPECT_EQ(text->GetSelection().first, text->GetSelection().second);

    // Overwrite replaces, and appends at the end of the line.
    text->SetText("abc");
    text->SetCursor(TextPos(0, 1));
    Press(*text, SDLK_INSERT);
    Type(*text, "XYZW");
    EXPECT_EQ(text->GetText(), "aXYZW");
}

TEST(Text, ReturnWithOneLineRunsTheCallbacksAndAddsNoLine)
{
    util::SharedPtr<Text> text = MakeText("field");
    text->SetMaxLines(1);
    int returns = 0;
    text->AddReturnCallback(QLEX_NEW new util::Callback([&returns] { ++returns; }, text.get()));
    text->MoveCursorToEnd();
    Press(*text, SDLK_RETURN);
    EXPECT_EQ(returns, 1);
    EXPECT_EQ(text->GetText(), "field");
    text->PasteText("s\nrest");
    EXPECT_EQ(text->GetText(), "fields");
    // Keys that the text doesn't know, and Ctrl with a letter, stay unhandled for others.
    const input::KeyEvent undo = Key(SDLK_z, 'z', CTRL);
    text->OnKeyEvent(undo);
    EXPECT_FALSE(undo.IsHandled());
    EXPECT_EQ(text->GetText(), "fields");
}

class TextBoxTest : public GuiFixture
{
protected:
    void SetUp() override
    {
        GuiFixture::SetUp();
        m_box = MakeBox("hello world");
        m_box->SetOuterPos(math::Vec2(10.0f, 10.0f));
        m_gui->GetMainComponent()->AddComponent(m_box);
    }
    static util::SharedPtr<TextBox> MakeBox(const std::string& content)
    {
        util::SharedPtr<TextBox> box = QLEX_NEW new TextBox();
        box->SetFont(FixedWidthFont());
        box->SetText(content);
        return box;
    }
    // GUI coordinates of a column of the first row of the box: the box's inner area starts at (11, 11),
    // and characters are 16 units wide.
    static math::Vec2 At(float column) { return math::Vec2(11.0f + 16.0f * column, 19.0f); }
    static void Drag(math::Vec2 from, math::Vec2 to)
    {
        MoveMouseTo(int(from.x), int(from.y));
        input::Input& input = *input::Input::GetInstancePtr();
        const SDLKey left = SDLKey(input::Key::MOUSE_LEFT);
        input.OnDragBegin(input::DragEvent(from, math::Vec2(0, 0), from, left));
        MoveMouseTo(int(to.x), int(to.y));
        input.OnDrag(input::DragEvent(from, to - from, to, left));
        input.OnDragEnd(input::DragEvent(from, to - from, to, left));
    }
    static void Click(math::Vec2 at, int count)
    {
        MoveMouseTo(int(at.x), int(at.y));
        input::Input::GetInstancePtr()->OnClick(input::ClickEvent(at, SDLKey(input::Key::MOUSE_LEFT), count));
    }
    const Text& TextOf(const util::SharedPtr<TextBox>& box) const { return *box->GetTextEditor(); }

    util::SharedPtr<TextBox> m_box;
};

TEST_F(TextBoxTest, ADragSelectsAndADragOfTheSelectionMovesOrCopiesIt)
{
    History history;
    // From the left quarter of "h" to the left quarter of "l": the middles decide.
    Drag(At(0.2f), At(3.2f));
    EXPECT_EQ(TextOf(m_box).GetSelectedText(), "hel");
    // Dragged from inside the selection to behind "world".
    Drag(At(1.9f), At(11.0f));
    EXPECT_EQ(m_box->GetText(), "lo worldhel");
    EXPECT_EQ(TextOf(m_box).GetSelectedText(), "hel");
    ASSERT_EQ(history.undo.size(), 1u);
    // Onto itself: nothing changes.
    Drag(At(9.0f), At(9.5f));
    EXPECT_EQ(m_box->GetText(), "lo worldhel");
    history.Undo();
    EXPECT_EQ(m_box->GetText(), "hello world");

    // Dragged in front of it: the text before shifts, the moved part stays selected.
    Drag(At(6.1f), At(11.0f));
    EXPECT_EQ(TextOf(m_box).GetSelectedText(), "world");
    Drag(At(8.0f), At(0.0f));
    EXPECT_EQ(m_box->GetText(), "worldhello ");
    EXPECT_EQ(TextOf(m_box).GetSelectedText(), "world");
}

TEST_F(TextBoxTest, ClicksGiveAndTakeTheFocusAndANewBoxTakesIt)
{
    EXPECT_TRUE(m_box->IsEnabled());
    // Keys reach the focused box's text before anything else.
    input::Input::GetInstancePtr()->OnKeyEvent(Key(SDLK_END));
    input::Input::GetInstancePtr()->OnKeyEvent(Key(SDLKey('!'), '!'));
    EXPECT_EQ(m_box->GetText(), "hello world!");

    Click(math::Vec2(300.0f, 200.0f), 1);
    EXPECT_FALSE(m_box->IsEnabled());
    input::Input::GetInstancePtr()->OnKeyEvent(Key(SDLKey('?'), '?'));
    EXPECT_EQ(m_box->GetText(), "hello world!");

    Click(At(5.0f), 1);
    EXPECT_TRUE(m_box->IsEnabled());
    EXPECT_EQ(TextOf(m_box).GetSelection().second, TextPos(0, 5));
    Click(At(5.0f), 2);
    EXPECT_EQ(TextOf(m_box).GetSelectedText(), "hello world!");

    util::SharedPtr<TextBox> other = MakeBox("other");
    EXPECT_TRUE(other->IsEnabled());
    EXPECT_FALSE(m_box->IsEnabled());
    other->SetNonEditable();
    EXPECT_FALSE(other->IsEnabled());
    m_gui->GetMainComponent()->AddComponent(other);
    other->SetOuterPos(math::Vec2(10.0f, 100.0f));
    Click(math::Vec2(20.0f, 108.0f), 1);
    EXPECT_FALSE(other->IsEnabled());
    // Escape gives the focus back.
    Click(At(1.0f), 1);
    ASSERT_TRUE(m_box->IsEnabled());
    input::Input::GetInstancePtr()->OnKeyEvent(Key(SDLK_ESCAPE));
    EXPECT_FALSE(m_box->IsEnabled());
}

TEST_F(TextBoxTest, TheBoxGrowsWithItsTextAndWrapsAtItsMaximalWidth)
{
    m_box->SetMaxSize(math::Vec2(100.0f, math::INF));
    m_box->SetText("one two three four");
    EXPECT_EQ(TextOf(m_box).NRows(), 4u);
    EXPECT_FLOAT_EQ(m_box->GetInnerSize().y, 4 * 16.0f);
    EXPECT_LE(m_box->GetInnerSize().x, 100.0f);
    // A field keeps to one line.
    util::SharedPtr<TextField> field = QLEX_NEW new TextField("a\nb");
    EXPECT_EQ(field->GetText(), "a");
    EXPECT_GE(field->GetInnerSize().x, 96.0f);
}
