#pragma once

#include "gui/FontFormater.h"
#include "gui/components/SimpleBorder.h"
#include "util/SharedPtr.h"

namespace gui
{

// The theme: colours, text formaters and borders shared by all components. One instance, made on first
// use and dropped with the GUI.
class LookAndFeel : public util::Pointee
{
public:
    LookAndFeel();
    virtual ~LookAndFeel() = default;

    static util::SharedPtr<LookAndFeel> GetDefault();
    static void ResetDefault();

    virtual math::Vec4 GetBackgroundColor() const { return m_backgroundColor; }
    virtual math::Vec4 GetForegroundColor() const { return m_foregroundColor; }
    // The interface's font, named by the GUI's "font" attribute, and the fixed-width "fixedsys".
    virtual FontProxy GetFont() const { return m_font; }
    virtual const FontFormater& GetFontFormater() const { return m_fontFormater; }
    virtual FontProxy GetFixedFont() const { return m_fixedFont; }
    virtual const FontFormater& GetFixedFontFormater() const { return m_fixedFontFormater; }
    virtual util::SharedPtr<Border> GetDefaultBorder() const { return m_defaultBorder; }
    virtual util::SharedPtr<Border> GetEmptyBorder() const { return m_emptyBorder; }
    virtual util::SharedPtr<Border> GetSmallBorder() const { return m_defaultBorder; }
    virtual util::SharedPtr<Border> GetButtonBorder() const { return m_defaultBorder; }
    virtual util::SharedPtr<Border> GetTooltipBorder() const { return m_tooltipBorder; }
    virtual util::SharedPtr<Border> GetWindowBorder() const { return m_windowBorder; }
    virtual util::SharedPtr<Border> GetWindowTitleBorder() const { return m_windowTitleBorder; }
    virtual util::SharedPtr<Border> GetTextBoxBorder() const { return m_textBoxBorder; }

private:
    math::Vec4 m_backgroundColor;
    math::Vec4 m_foregroundColor;
    FontProxy m_font;
    FontProxy m_fixedFont;
    FontFormater m_fontFormater;
    FontFormater m_fixedFontFormater;
    util::SharedPtr<Border> m_emptyBorder;
    // Also the small and the button border: a transparent margin of one unit.
    util::SharedPtr<Border> m_defaultBorder;
    util::SharedPtr<Border> m_tooltipBorder;
    util::SharedPtr<Border> m_windowBorder;
    util::SharedPtr<Border> m_windowTitleBorder;
    util::SharedPtr<Border> m_textBoxBorder;

    static util::SharedPtr<LookAndFeel> s_default;
};

} // namespace gui
