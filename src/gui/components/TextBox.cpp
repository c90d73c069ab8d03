#include "gui/components/TextBox.h"

#include "gui/LookAndFeel.h"

#include <algorithm>

namespace gui
{

TextBox::TextBox(const std::string& text) : m_enableByClick(true), m_enableByDrag(true)
{
    SetMaxSize(math::Vec2(DEFAULT_MAX_WIDTH, math::INF));
    SetText(text);
    SetBorder(LookAndFeel::GetDefault()->GetTextBoxBorder());
}

void TextBox::SetText(const std::string& text)
{
    m_text = text;
    OnTextChange();
}

void TextBox::SetMaxSize(math::Vec2 size)
{
    if (size == m_maxSize)
        return;
    Component::SetMaxSize(size);
    m_fontFormater.SetMaxWidth(size.x);
    OnTextChange();
}

void TextBox::SetNonEditable()
{
    m_enableByClick = false;
    m_enableByDrag = false;
}

void TextBox::OnTextChange()
{
    m_format = m_fontFormater.FormatText(m_text);
    const math::Vec2 textSize = m_format.GetSize();
    SetInnerSize(math::Vec2(std::max(m_innerSize.x, textSize.x), std::max(m_innerSize.y, textSize.y)));
}

} // namespace gui
