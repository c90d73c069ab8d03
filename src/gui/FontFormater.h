#pragma once

#include "gui/TextMetrics.h"
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

    const FontFormater* formater = nullptr;
    std::string text;
    std::vector<TextFragment> fragments;
    float width = 0.0f;
    float height = 0.0f;
};

// How a component writes text: the font's widths, the size of a font unit on screen (the y scale is the
// row height), the colour, and the width at which rows break.
class FontFormater
{
public:
    explicit FontFormater(util::SharedPtr<TextMetrics> metrics = FixedWidthMetrics::Get());

    float GetCharHeight() const { return m_scale.y; }
    float GetCharWidth(char c) const;
    // The next tab stop behind x; stops stand every four font units.
    float NextTabPos(float x) const;
    math::Vec2 GetTextSize(const std::string& text) const;
    // Breaks at line feeds, at tab stops that pass the maximal width, and where a row would pass the
    // maximal width: behind the last blank of the row, or inside a word that has none.
    TextFormat FormatText(const std::string& text, float startX = 0.0f) const;

    const util::SharedPtr<TextMetrics>& GetMetrics() const { return m_metrics; }
    void SetMetrics(util::SharedPtr<TextMetrics> metrics) { m_metrics = std::move(metrics); }
    math::Vec2 GetScale() const { return m_scale; }
    void SetScale(const math::Vec2& scale) { m_scale = scale; }
    math::Vec4 GetColor() const { return m_color; }
    void SetColor(const math::Vec4& color) { m_color = color; }
    float GetMaxWidth() const { return m_maxWidth; }
    void SetMaxWidth(float maxWidth) { m_maxWidth = maxWidth; }

private:
    util::SharedPtr<TextMetrics> m_metrics;
    math::Vec2 m_scale;
    math::Vec4 m_color;
    float m_maxWidth;
};

} // namespace gui
