#include "gui/components/TextBox.h"

#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "gui/components/AutoUndoer.h"
#include "input/Input.h"
#include "input/Key.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"

#include <GL/gl.h>

#include <algorithm>

namespace gui
{

namespace
{
// The mark of where a click would put the cursor: a shadow of the cursor.
const float CLICK_MARK_ALPHA = 0.3f;
// The first size of a field, in GUI units; it grows with its text.
const math::Vec2 FIELD_SIZE(96.0f, 0.0f);
} // namespace

TextBox::TextBox(const std::string& text)
    : m_text(QLEX_NEW new Text(m_fontFormater.GetFont())), m_selecting(false), m_movingText(false),
      m_enabled(false), m_enableByDrag(true), m_enableByClick(true), m_loseFocusOutside(true),
      m_clickReleases(false), m_inverse(false)
{
    SetMaxSize(math::Vec2(DEFAULT_MAX_WIDTH, math::INF));
    SetText(text);
    m_text->AddChangeCallback(util::MakeCallback(&TextBox::OnTextChange, this));
    m_text->AddReturnCallback(util::MakeCallback(&TextBox::OnReturn, this));
    SetEnabled(true);
    SetBorder(LookAndFeel::GetDefault()->GetTextBoxBorder());
}

TextBox::~TextBox()
{
    // The root holds the text weakly, but undo records hold it strongly: a text that outlives its box
    // must not go on taking keys.
    if (m_enabled)
        Attach(false);
}

void TextBox::SetText(const std::string& text)
{
    m_text->SetText(text);
    OnTextChange();
}

void TextBox::SetFont(FontProxy font)
{
    m_fontFormater.SetFont(font);
    m_text->SetFont(font);
}

void TextBox::Attach(bool attach)
{
    if (!GUI::Exists())
        return;
    const util::SharedPtr<Component>& root = GUI::GetInstancePtr()->GetRootComponent();
    if (!root)
        return;
    if (attach)
    {
        m_text->SetPriority(FOCUSED_TEXT_PRIORITY);
        root->AddListener(m_text);
    }
    else
        root->RemoveListener(m_text);
}

void TextBox::SetEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    if (enabled)
    {
        for (TextBox* box : util::ClassTracker<TextBox>::GetAllClassInstances())
            if (box != this)
                box->SetEnabled(false);
        m_enabled = true;
        Attach(true);
    }
    else
    {
        m_enabled = false;
        Attach(false);
        m_onFocusLost.CallAll();
    }
}

void TextBox::SetNonEditable()
{
    SetEnabled(false);
    m_enableByClick = false;
    m_enableByDrag = false;
}

void TextBox::SetMaxSize(math::Vec2 size)
{
    if (size == m_maxSize)
        return;
    Component::SetMaxSize(size);
    m_text->SetMaxWidth(size.x / m_fontFormater.GetScale().x);
}

math::Vec2 TextBox::CursorToPos(const TextPos& pos) const
{
    const math::Vec2 scale = m_fontFormater.GetScale();
    const math::Vec2 p = m_text->CursorToPos(pos);
    return math::Vec2(p.x * scale.x, p.y * scale.y);
}

TextPos TextBox::PosToCursor(math::Vec2 pos) const
{
    const math::Vec2 scale = m_fontFormater.GetScale();
    return m_text->PosToCursor(math::Vec2(pos.x / scale.x, pos.y / scale.y));
}

void TextBox::OnReturn()
{
    m_onReturn.CallAll();
    m_onFocusLost.CallAll();
}

void TextBox::OnTextChange()
{
    const math::Vec2 scale = m_fontFormater.GetScale();
    const math::Vec2 size = m_text->GetSize();
    SetInnerSize(
        math::Vec2(std::max(m_innerSize.x, size.x * scale.x), std::max(m_innerSize.y, size.y * scale.y)));
}

void TextBox::OnKeyEvent(const input::KeyEvent& event)
{
    Component::OnKeyEvent(event);
    if (!event.IsHandled() && event.pressed && event.key == SDLK_ESCAPE && m_enabled)
    {
        SetEnabled(false);
        event.SetHandled();
    }
}

void TextBox::LoseFocusIfOutside()
{
    if (m_enabled && m_loseFocusOutside && !IsMouseOverInner())
        SetEnabled(false);
}

void TextBox::OnClick(const input::ClickEvent& event)
{
    Component::OnClick(event);
    LoseFocusIfOutside();
    if (event.IsHandled() || event.button != SDLKey(input::Key::MOUSE_LEFT) || !IsMouseOverInner())
        return;
    if (event.clickCount == 1)
    {
        if ((m_enabled && m_clickReleases) || (!m_enabled && m_enableByClick))
        {
            SetEnabled(!m_enabled);
            event.SetHandled();
        }
        if (m_enabled)
        {
            m_text->SetCursor(PosToCursor(GUIToLocal(event.position)));
            event.SetHandled();
        }
    }
    else if (m_enabled || m_enableByClick)
    {
        m_text->SelectAll();
        SetEnabled(true);
        event.SetHandled();
    }
}

void TextBox::OnDragBegin(const input::DragEvent& event)
{
    Component::OnDragBegin(event);
    LoseFocusIfOutside();
    if (event.IsHandled() || event.button != SDLKey(input::Key::MOUSE_LEFT) || !IsMouseOverInner() ||
        !(m_enabled || m_enableByDrag))
        return;
    SetEnabled(true);
    const TextPos pos = PosToCursor(GUIToLocal(event.startPos));
    const TextSelection selection = gui::Sort(m_text->GetSelection().first, m_text->GetSelection().second);
    if (selection.first < pos && pos < selection.second)
        m_movingText = true;
    else
    {
        m_selecting = true;
        m_text->SetCursor(pos);
    }
    event.SetHandled();
}

void TextBox::OnDrag(const input::DragEvent& event)
{
    Component::OnDrag(event);
    if (m_selecting)
    {
        const TextPos pos = PosToCursor(GUIToLocal(event.position));
        m_text->SetCursor(TextSelection(m_text->GetSelection().first, pos));
        event.SetHandled();
    }
    else if (m_movingText)
        event.SetHandled();
}

void TextBox::OnDragEnd(const input::DragEvent& event)
{
    Component::OnDragEnd(event);
    if (m_selecting)
    {
        m_selecting = false;
        event.SetHandled();
        return;
    }
    if (!m_movingText)
        return;
    m_movingText = false;
    event.SetHandled();

    AutoUndoer undo(m_text.get());
    TextPos pos = PosToCursor(GUIToLocal(event.position));
    const TextSelection selection = gui::Sort(m_text->GetSelection().first, m_text->GetSelection().second);
    const std::string moved = m_text->GetSelectedText();
    TextSelection pasted;
    if (input::Input::GetInstancePtr()->CheckModifier(input::Ctrl))
    {
        m_text->SetCursor(pos);
        pasted = m_text->PasteText(moved);
    }
    else if (pos <= selection.first || selection.second <= pos)
    {
        if (selection.second <= pos)
        {
            // Where pos stands once the selection has gone from in front of it.
            if (pos.row == selection.second.row)
                pos = TextPos(selection.first.row,
                              selection.first.column + pos.column - selection.second.column);
            else
                pos.row -= selection.second.row - selection.first.row;
        }
        m_text->EraseSelected();
        m_text->SetCursor(pos);
        pasted = m_text->PasteText(moved);
    }
    else
        return;
    m_text->SetCursor(pasted);
}

void TextBox::DrawComp() const
{
    util::ScopeProfiler profiler("TextBox::DrawComp");
    Component::DrawComp();
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    rendering::ColorPusher color;
    renderer.MulColor4(m_fontFormater.GetColor());
    const math::Vec2 scale = m_fontFormater.GetScale();
    glPushMatrix();
    glScalef(scale.x, scale.y, 1.0f);
    m_text->Draw(m_enabled, m_inverse);
    if (m_enabled && IsMouseOverInner())
    {
        const math::Vec2 mark = m_text->CursorToPos(PosToCursor(GetMousePosLocal()));
        const Font& font = *m_text->GetFont().operator->();
        math::Vec4 faint = renderer.GetColor4();
        faint.w *= CLICK_MARK_ALPHA;
        renderer.SetColor4(faint);
        font.BeginDraw();
        glTranslatef(0.0f, mark.y, 0.0f);
        DrawTextAt(m_text->GetFont(), mark.x - font.GetWidth('|') / 2.0f, "|", Font::PLAIN);
        font.EndDraw();
    }
    glPopMatrix();
}

TextField::TextField(const std::string& text) : TextBox()
{
    SetMaxLines(1);
    SetInnerSize(FIELD_SIZE);
    SetText(text);
}

} // namespace gui
