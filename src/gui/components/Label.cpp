#include "gui/components/Label.h"

#include "gui/LookAndFeel.h"

namespace gui
{

Label::Label(const std::string& text, const math::Vec4& color)
{
    SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
    SetMaxLines(1);
    SetNonEditable();
    SetText(text);
    m_fontFormater.SetColor(color);
}

} // namespace gui
