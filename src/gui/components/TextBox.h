#pragma once

#include "gui/components/Component.h"

#include <string>

namespace gui
{

// Text in a box that wraps its rows to the box's maximal width and grows to hold them. This is the
// display side only: editing, the cursor, selection, focus and the drawing of the glyphs come with the
// text editor and the bitmap fonts. Until then it measures through its formater's TextMetrics and draws
// its border alone.
class TextBox : public Component
{
public:
    static constexpr float DEFAULT_MAX_WIDTH = 800.0f;

    explicit TextBox(const std::string& text = "");

    void SetText(const std::string& text);
    const std::string& GetText() const { return m_text; }
    // The width limit wraps the text: in the formater's screen units.
    void SetMaxSize(math::Vec2 size) override;
    // Not editable, and not to be made so by a click or a drag.
    void SetNonEditable();
    bool IsEditable() const { return m_enableByClick || m_enableByDrag; }

    // The inner size becomes the larger, per axis, of itself and the text's size: a box only grows.
    void OnTextChange();
    const TextFormat& GetFormat() const { return m_format; }

private:
    std::string m_text;
    TextFormat m_format;
    bool m_enableByClick;
    bool m_enableByDrag;
};

} // namespace gui
