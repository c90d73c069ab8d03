#pragma once

#include "gui/Font.h"
#include "math/BoundingBox.h"
#include "math/Math.h"

#include <string>
#include <vector>

namespace gui
{

// A run of one row of laid-out text: characters [begin, end) at (x, y), in screen units.
struct TextFragment
{
    size_t begin = 0;
    size_t end = 0;
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;
};

class FontFormater;

// A string laid out in rows by a FontFormater.
struct TextFormat
{
    void AddFragment(const TextFragment& fragment);
    math::Vec2 GetSize() const { return math::Vec2(width, height); }
    // The box of character i in screen units. An index at or past the end gives the right edge of the
    // last character; a line break or a tab, which no fragment holds, the end of the row before it.
    math::BoundingBox2f GetCharBounds(unsigned long i) const;

    const FontFormater* formater = nullptr;
    std::string text;
    std::vector<TextFragment> fragments;
    float width = 0.0f;
    float height = 0.0f;
};

// How a component writes text: the font, the size of a font unit on screen (the y scale is the row
// height), the colour, and the width at which rows break.
class FontFormater
{
public:
    explicit FontFormater(FontProxy font);

    float GetCharHeight() const { return m_scale.y; }
    float GetCharWidth(char c) const;
    // The next tab stop behind x; stops stand every four font units.
    float NextTabPos(float x) const;
    math::Vec2 GetTextSize(const std::string& text) const;
    // Breaks at line feeds, at tab stops that pass the maximal width, and where a row would pass the
    // maximal width: behind the last blank of the row, or inside a word that has none.
    TextFormat FormatText(const std::string& text, float startX = 0.0f) const;
    // At pos, in the formater's colour times the present one. Both give the size of the text drawn.
    math::Vec2 DrawText(math::Vec2 pos, const std::string& text, Font::Flags flags = Font::PLAIN) const;
    math::Vec2 DrawText(math::Vec2 pos, const TextFormat& format, Font::Flags flags = Font::PLAIN) const;

    const FontProxy& GetFont() const { return m_font; }
    void SetFont(FontProxy font) { m_font = std::move(font); }
    math::Vec2 GetScale() const { return m_scale; }
    void SetScale(const math::Vec2& scale) { m_scale = scale; }
    math::Vec4 GetColor() const { return m_color; }
    void SetColor(const math::Vec4& color) { m_color = color; }
    float GetMaxWidth() const { return m_maxWidth; }
    void SetMaxWidth(float maxWidth) { m_maxWidth = maxWidth; }

private:
    FontProxy m_font;
    math::Vec2 m_scale;
    math::Vec4 m_color;
    float m_maxWidth;
};

} // namespace gui
