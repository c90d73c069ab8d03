#include "gui/FontFormater.h"

#include "logging/Exception.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"

#include <GL/gl.h>

#include <cctype>
#include <cmath>

namespace gui
{

namespace
{
// Default size of a font unit on screen, in GUI units.
const float DEFAULT_SCALE = 16.0f;
// Tab stops stand every this many font units.
const float TAB_WIDTH = 4.0f;
} // namespace

void TextFormat::AddFragment(const TextFragment& fragment)
{
    fragments.push_back(fragment);
    width = std::max(width, fragment.x + fragment.width);
    height = std::max(height, fragment.y + fragment.height);
}

math::BoundingBox2f TextFormat::GetCharBounds(unsigned long i) const
{
    const float rowHeight = formater ? formater->GetCharHeight() : 0.0f;
    if (text.empty())
        return math::BoundingBox2f(math::Vec2(0.0f, 0.0f), math::Vec2(0.0f, rowHeight));
    const bool pastEnd = i >= text.size();
    if (pastEnd)
        i = text.size() - 1;
    const auto box = [&](const TextFragment& fragment, bool inside)
    {
        float x = fragment.x;
        for (size_t j = fragment.begin; j < i; ++j)
            x += formater->GetCharWidth(text[j]);
        const float width = inside ? formater->GetCharWidth(text[i]) : 0.0f;
        const float left = pastEnd ? x + width : x;
        return math::BoundingBox2f(math::Vec2(left, fragment.y),
                                   math::Vec2(x + width, fragment.y + fragment.height));
    };
    for (const TextFragment& fragment : fragments)
        if (i >= fragment.begin && i < fragment.end)
            return box(fragment, true);
    for (const TextFragment& fragment : fragments)
        if (i == fragment.end)
            return box(fragment, false);
    QLEX_THROW(BadCoderException("Error in TextFormat::GetCharBounds"));
}

FontFormater::FontFormater(FontProxy font)
    : m_font(std::move(font)), m_scale(DEFAULT_SCALE, DEFAULT_SCALE), m_color(1.0f, 0.0f, 0.0f, 1.0f),
      m_maxWidth(math::INF)
{
}

float FontFormater::GetCharWidth(char c) const
{
    return m_font->GetWidth(static_cast<unsigned char>(c)) * m_scale.x;
}

float FontFormater::NextTabPos(float x) const
{
    const float tab = TAB_WIDTH * m_scale.x;
    return (std::trunc(x / tab) + 1.0f) * tab;
}

math::Vec2 FontFormater::GetTextSize(const std::string& text) const
{
    return FormatText(text).GetSize();
}

math::Vec2 FontFormater::DrawText(math::Vec2 pos, const std::string& text, Font::Flags flags) const
{
    return DrawText(pos, FormatText(text, 0.0f), flags);
}

math::Vec2 FontFormater::DrawText(math::Vec2 pos, const TextFormat& format, Font::Flags flags) const
{
    util::ScopeProfiler profiler("FF::DrawText");
    rendering::ColorPusher color;
    rendering::Renderer::GetInstancePtr()->MulColor4(m_color);
    const Font& font = *m_font.operator->();
    font.BeginDraw();
    for (const TextFragment& fragment : format.fragments)
    {
        if (fragment.end <= fragment.begin)
            continue;
        glPushMatrix();
        glTranslatef(pos.x + fragment.x, pos.y + fragment.y, 0.0f);
        glScalef(m_scale.x, m_scale.y, 1.0f);
        font.Draw(format.text.substr(fragment.begin, fragment.end - fragment.begin), flags);
        glPopMatrix();
    }
    font.EndDraw();
    return format.GetSize();
}

TextFormat FontFormater::FormatText(const std::string& text, float startX) const
{
    static util::StaticProfilerData s_timing("FF::FormatText");
    util::StaticProfilerScope timing(s_timing);
    const float rowHeight = GetCharHeight();
    TextFormat format;
    format.formater = this;
    format.text = text;

    TextFragment fragment;
    fragment.x = startX;
    fragment.height = rowHeight;
    auto close = [&](size_t end)
    {
        fragment.end = end;
        format.AddFragment(fragment);
    };
    auto startRow = [&](size_t begin)
    {
        const float y = fragment.y + rowHeight;
        fragment = TextFragment();
        fragment.begin = begin;
        fragment.y = y;
        fragment.height = rowHeight;
    };

    bool afterLineBreak = false;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        afterLineBreak = c == '\n';
        if (c == '\n')
        {
            close(i);
            startRow(i + 1);
            continue;
        }
        if (c == '\t')
        {
            close(i);
            const float tabPos = NextTabPos(fragment.x + fragment.width);
            if (tabPos < m_maxWidth)
            {
                fragment.begin = i + 1;
                fragment.x = tabPos;
                fragment.width = 0.0f;
            }
            else
                startRow(i + 1);
            continue;
        }

        const float width = GetCharWidth(c);
        // Only a row that holds something breaks: a character wider than the limit stands alone.
        while (fragment.x + fragment.width + width > m_maxWidth && i > fragment.begin)
        {
            size_t blank = i;
            for (size_t j = i; j-- > fragment.begin;)
                if (std::isspace(static_cast<unsigned char>(text[j])))
                {
                    blank = j;
                    break;
                }
            if (blank == i)
            {
                close(i);
                startRow(i);
            }
            else
            {
                float carried = 0.0f;
                for (size_t j = blank + 1; j < i; ++j)
                    carried += GetCharWidth(text[j]);
                fragment.width -= carried;
                close(blank + 1);
                startRow(blank + 1);
                fragment.width = carried;
            }
        }
        fragment.width += width;
    }
    // A trailing line break opens an empty row of its own; an empty text is one empty row.
    if (text.size() > fragment.begin || text.empty() || afterLineBreak)
        close(text.size());
    return format;
}

} // namespace gui
