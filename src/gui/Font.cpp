#include "gui/Font.h"

#include "gui/GUI.h"
#include "logging/Log.h"
#include "rendering/ImageManager.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <GL/gl.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace gui
{

// The built-in font's data, made at build time by the font tool: a square picture of one bit a pixel,
// rows from the top, the highest bit leftmost, and the widths in its pixels.
extern const int BUILTIN_FONT_SIDE;
extern const unsigned char BUILTIN_FONT_WIDTHS[];
extern const unsigned char BUILTIN_FONT_BITS[];

namespace
{
const size_t NARROW_WIDTHS_SIZE = Font::CHARS;
const size_t WIDE_WIDTHS_SIZE = 2 * Font::CHARS;

// Mipmapped, with the nearest texel of the nearest level: a row of text 16 pixels high shows a cell of the
// first level below the picture almost texel for texel, and one of the picture itself at a scale of 2, so
// that each texel lands on a pixel whole instead of being smeared over two. Clamped at the picture's
// edge.
rendering::Texture::ImageType FontImageType()
{
    return rendering::Texture::ImageType(GL_RGBA, true, rendering::Texture::Quality(1, 1, 0, 0, 0));
}

// What the "fontShadow", "crispFonts" and related settings of the GUI hold, or their defaults while there
// is no GUI.
bool ShadowOn()
{
    return GUI::Exists() ? bool(GUI::GetInstancePtr()->m_fontShadow) : true;
}
math::Vec2 ShadowOffset()
{
    return GUI::Exists() ? GUI::GetInstancePtr()->m_fontShadowOffset.Get() : math::Vec2(0.0625f, 0.0625f);
}
bool CrispOn()
{
    return GUI::Exists() && GUI::GetInstancePtr()->m_crispFonts;
}
float CrispFactor()
{
    return GUI::Exists() ? GUI::GetInstancePtr()->m_crispFontFactor.Get() : 0.5f;
}

void Quad(float x0, float y0, float x1, float y1, float u0, float v0, float u1, float v1)
{
    glTexCoord2f(u0, v0);
    glVertex2f(x0, y0);
    glTexCoord2f(u0, v1);
    glVertex2f(x0, y1);
    glTexCoord2f(u1, v1);
    glVertex2f(x1, y1);
    glTexCoord2f(u1, v0);
    glVertex2f(x1, y0);
}

} // namespace

rendering::ImageRGBA32Ptr Font::BuiltinFontImage()
{
    // Made once and never freed: fonts are made again with every GL context, the picture is not.
    static rendering::ImageRGBA32Ptr* s_image = nullptr;
    if (!s_image)
    {
        const unsigned side = unsigned(BUILTIN_FONT_SIDE);
        rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(side, side, true);
        for (unsigned row = 0; row < side; ++row)
            for (unsigned x = 0; x < side; ++x)
            {
                const size_t bit = size_t(row) * side + x;
                const bool on = (BUILTIN_FONT_BITS[bit / 8] >> (7 - bit % 8)) & 1;
                // The data's first row is the top; the image's is the bottom.
                (*image)(x, side - 1 - row) = rendering::PixelRGBA(255, 255, 255, on ? 255 : 0);
            }
        image->SetName("built-in font");
        s_image = new rendering::ImageRGBA32Ptr(image);
    }
    return *s_image;
}

Font::Font(rendering::TextureProxy texture, int textureWidth)
    : m_texture(std::move(texture)), m_textureWidth(textureWidth)
{
    m_widths.fill(1.0f);
}

Font* Font::RawFontLoader(std::string imageFile, std::string widthsFile)
{
    const rendering::ImageRGBA32Ptr image = rendering::ImageManager::GetInstancePtr()->Load(imageFile);
    if (!image)
        QLEX_THROW(FileReadException("The font picture \"" + imageFile +
                                     "\" can't be read; the built-in font stands in"));
    const unsigned side = image->GetWidth();
    if (side < unsigned(CELLS) || side % CELLS != 0 || image->GetHeight() != side)
        QLEX_THROW(BadDataException("The font picture \"" + imageFile + "\" is " + util::ToString(int(side)) +
                                    " x " + util::ToString(int(image->GetHeight())) +
                                    " pixels, not a square of 16 x 16 cells; the built-in font stands in"));
    std::unique_ptr<Font> font(
        new Font(rendering::TextureManager::GetInstancePtr()->Load(image, FontImageType()), int(side)));
    font->LoadWidths(widthsFile);
    return font.release();
}

FontProxy Font::Load(std::string imageFile, std::string widthsFile)
{
    SetUpFallbackFont();
    return FontProxy(QLEX_NEW new util::Mentor<Font>([imageFile, widthsFile]
                                                     { return RawFontLoader(imageFile, widthsFile); }));
}

Font* Font::BuiltinFontLoader()
{
    const rendering::ImageRGBA32Ptr image = BuiltinFontImage();
    Font* font = new Font(rendering::TextureManager::GetInstancePtr()->Load(image, FontImageType()),
                          BUILTIN_FONT_SIDE);
    const float toUnits = float(CELLS) / float(BUILTIN_FONT_SIDE);
    for (int c = 0; c < CHARS; ++c)
        font->m_widths[size_t(c)] = float(BUILTIN_FONT_WIDTHS[c]) * toUnits;
    return font;
}

void Font::LoadWidths(const std::string& file)
{
    try
    {
        std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(file.c_str(), "rb"), &std::fclose);
        if (!f)
            QLEX_THROW(FileReadException("File \"" + file + "\" can't be opened."));
        const auto corrupt = [&file] { return FileReadException("File \"" + file + "\" is corrupt."); };
        if (std::fseek(f.get(), 0, SEEK_END) != 0)
            QLEX_THROW(corrupt());
        const long size = std::ftell(f.get());
        if (size != long(NARROW_WIDTHS_SIZE) && size != long(WIDE_WIDTHS_SIZE))
            throw std::runtime_error(
                "Bad widths file, must be either 256 or 512 bytes of raw little endian data");
        std::rewind(f.get());
        const float toUnits = float(CELLS) / float(m_textureWidth);
        std::array<float, CHARS> widths;
        for (float& width : widths)
        {
            unsigned char bytes[2] = {0, 0};
            const size_t n = size == long(WIDE_WIDTHS_SIZE) ? 2 : 1;
            if (std::fread(bytes, 1, n, f.get()) != n)
                QLEX_THROW(corrupt());
            width = float(bytes[0] | (unsigned(bytes[1]) << 8)) * toUnits;
        }
        m_widths = widths;
    }
    catch (std::exception& e)
    {
        Log(logging::Error, util::String("Font widths \"") + file + "\": " + e.what() +
                                " Every character of the font is one cell wide.");
        m_widths.fill(1.0f);
    }
}

void Font::BeginDraw() const
{
    util::ScopeProfiler profiler("Font::BeginDraw");
    glPushAttrib(GL_CURRENT_BIT | GL_ENABLE_BIT);
    glEnable(GL_TEXTURE_2D);
    if (m_texture->HasAlpha())
    {
        if (CrispOn())
        {
            glDisable(GL_BLEND);
            glEnable(GL_ALPHA_TEST);
            glAlphaFunc(GL_GEQUAL, rendering::Renderer::GetInstancePtr()->GetColor4().w * CrispFactor());
        }
        else
        {
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
    }
    glBindTexture(GL_TEXTURE_2D, m_texture->GetName());
}

void Font::EndDraw() const
{
    glBindTexture(GL_TEXTURE_2D, 0);
    glPopAttrib();
    rendering::Renderer::GetInstancePtr()->InvalidateColor();
}

float Font::Draw(const std::string& text, Flags flags) const
{
    if (text.empty())
        return 0.0f;
    util::ScopeProfiler profiler("Font::Draw");
    const math::Vec4 color = rendering::Renderer::GetInstancePtr()->GetColor4();
    float total = 0.0f;
    for (char c : text)
        total += GetWidth(static_cast<unsigned char>(c));

    math::Vec4 textColor = color;
    if (flags & INVERSE)
    {
        glDisable(GL_TEXTURE_2D);
        glColor4f(color.x, color.y, color.z, color.w);
        glBegin(GL_QUADS);
        glVertex2f(0.0f, 0.0f);
        glVertex2f(0.0f, 1.0f);
        glVertex2f(total, 1.0f);
        glVertex2f(total, 0.0f);
        glEnd();
        glEnable(GL_TEXTURE_2D);
        textColor = math::Vec4(1.0f - color.x, 1.0f - color.y, 1.0f - color.z, color.w);
    }

    // One texel row of each cell is left off at the top and the bottom, so that a neighbour's glyph never
    // bleeds in; the picture is square.
    const float texel = 1.0f / float(m_textureWidth);
    const float cell = 1.0f / float(CELLS);
    // A shadow sets light text off any background; under dark text on its own light quad it only smears.
    const bool shadow = ShadowOn() && !(flags & INVERSE);
    const math::Vec2 offset = ShadowOffset();
    glBegin(GL_QUADS);
    // Every shadow goes below every glyph, so that no shadow darkens the glyph before it.
    for (int pass = shadow ? 0 : 1; pass < 2; ++pass)
    {
        const math::Vec2 shift = pass == 0 ? offset : math::Vec2(0.0f, 0.0f);
        if (pass == 0)
            glColor4f(0.0f, 0.0f, 0.0f, color.w);
        else
            glColor4f(textColor.x, textColor.y, textColor.z, textColor.w);
        float x = 0.0f;
        for (char ch : text)
        {
            const unsigned char c = static_cast<unsigned char>(ch);
            const float w = GetWidth(c);
            if (w > 0.0f)
            {
                const float u0 = (cell - w * cell) / 2.0f + float(c % CELLS) * cell;
                const float v0 = 1.0f - float(c / CELLS) * cell - texel;
                Quad(x + shift.x, shift.y, x + w + shift.x, 1.0f + shift.y, u0, v0, u0 + w * cell,
                     v0 - (cell - 2.0f * texel));
            }
            x += w;
        }
    }
    glEnd();
    // The renderer's record of the colour stays true.
    glColor4f(color.x, color.y, color.z, color.w);
    return total;
}

float DrawTextAt(const FontProxy& font, float x, const std::string& text, Font::Flags flags)
{
    glTranslatef(x, 0.0f, 0.0f);
    const float width = font->Draw(text, flags);
    glTranslatef(-x, 0.0f, 0.0f);
    return width;
}

Font* DefaultFontLoader()
{
    const util::String name =
        GUI::Exists() ? GUI::GetInstancePtr()->m_font.Get() : util::String("arial_black");
    const util::String dir = util::FileSystem::GetInstancePtr()->FontsDir();
    return Font::RawFontLoader(dir + name + ".raw", dir + name + ".dat");
}

FontProxy LoadFont(const std::string& name)
{
    const util::String dir = util::FileSystem::GetInstancePtr()->FontsDir();
    return Font::Load(dir + name + ".raw", dir + name + ".dat");
}

void SetUpFallbackFont()
{
    if (!util::Mentor<Font>::s_default)
        util::Mentor<Font>::s_default = QLEX_NEW new util::Mentor<Font>(&Font::BuiltinFontLoader);
}

void DropFallbackFont()
{
    util::Mentor<Font>::s_default.Reset();
}

} // namespace gui
