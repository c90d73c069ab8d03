#include "gui/LookAndFeel.h"

namespace gui
{

util::SharedPtr<LookAndFeel> LookAndFeel::s_default;

namespace
{
const math::Vec4 CLEAR(0.0f, 0.0f, 0.0f, 0.0f);
const math::Vec4 GREY(0.5f, 0.5f, 0.5f, 1.0f);
const math::Vec4 WHITE(1.0f, 1.0f, 1.0f, 1.0f);
} // namespace

LookAndFeel::LookAndFeel()
    : m_backgroundColor(0.1f, 0.1f, 0.1f, 1.0f), m_foregroundColor(WHITE),
      m_font(QLEX_NEW new util::Mentor<Font>(&DefaultFontLoader)), m_fixedFont(LoadFont("fixedsys")),
      m_fontFormater(m_font), m_fixedFontFormater(m_fixedFont),
      m_emptyBorder(QLEX_NEW new SimpleBorder(0.0f, CLEAR, CLEAR)),
      m_defaultBorder(QLEX_NEW new SimpleBorder(1.0f, CLEAR, CLEAR)),
      m_tooltipBorder(QLEX_NEW new SimpleBorder(1.0f, GREY, math::Vec4(0.0f, 0.0f, 0.0f, 1.0f))),
      m_windowBorder(QLEX_NEW new SimpleBorder(1.0f, GREY, math::Vec4(0.1f, 0.1f, 0.1f, 0.95f))),
      m_windowTitleBorder(QLEX_NEW new SimpleBorder(0.0f, CLEAR, math::Vec4(0.0f, 0.0f, 0.0f, 0.35f))),
      m_textBoxBorder(QLEX_NEW new SimpleBorder(1.0f, GREY, CLEAR))
{
    m_fontFormater.SetColor(WHITE);
    m_fixedFontFormater.SetColor(WHITE);
}

util::SharedPtr<LookAndFeel> LookAndFeel::GetDefault()
{
    if (!s_default)
        s_default = QLEX_NEW new LookAndFeel();
    return s_default;
}

void LookAndFeel::ResetDefault()
{
    s_default.Reset();
}

} // namespace gui
