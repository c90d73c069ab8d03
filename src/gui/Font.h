#pragma once

#include "rendering/Texture.h"
#include "util/Mentor.h"

#include <array>
#include <string>

namespace gui
{

class Font;
using FontProxy = util::MentorProxy<Font>;

// A bitmap font: a texture of 16 x 16 character cells and the width of each of the 256 characters.
//
// The font's own unit: a row of text is 1 high, and a width of 1 is one whole cell. Character c lies in
// column c % 16 and row c / 16 of the texture, row 0 at the top, its advance box centred in the cell.
class Font : public util::Pointee
{
public:
    // A bit set.
    enum Flags
    {
        PLAIN = 0,
        // Dark text on a quad of the present colour.
        INVERSE = 1,
    };
    static const int CELLS = 16;
    static const int CHARS = CELLS * CELLS;

    // Widths all 1 until LoadWidths: a fixed-width font. `textureWidth` is in pixels and turns the
    // pixel widths of a widths file into font units.
    Font(rendering::TextureProxy texture, int textureWidth);

    // The image (a RAW alpha picture, square, 16 cells wide) and the widths file. Throws when the image
    // can't be had; a bad widths file only leaves the widths at 1.
    static Font* RawFontLoader(std::string imageFile, std::string widthsFile);
    // A font behind a mentor that loads it again with each GL context; one that can't be loaded falls
    // back on the built-in font.
    static FontProxy Load(std::string imageFile, std::string widthsFile);
    // The font made into the program: readable when the font files are not.
    static Font* BuiltinFontLoader();
    // Its picture, made once from the data built into the program.
    static rendering::ImageRGBA32Ptr BuiltinFontImage();

    // 256 entries of one byte, or of two bytes little-endian: the width of each character in pixels of
    // the texture. Any other file leaves every width at 1 and says why in the log.
    void LoadWidths(const std::string& file);

    float GetWidth(unsigned char c) const { return m_widths[c]; }
    const rendering::TextureProxy& GetTexture() const { return m_texture; }

    // The state for Draw: one BeginDraw and EndDraw around any number of Draws.
    void BeginDraw() const;
    // Draws at the origin, one font unit a row, in the present colour. Returns the width in font units.
    float Draw(const std::string& text, Flags flags = PLAIN) const;
    void EndDraw() const;

private:
    rendering::TextureProxy m_texture;
    int m_textureWidth;
    std::array<float, CHARS> m_widths;
};

// Moves the GL matrix by x, draws, moves back; the width drawn, in font units.
float DrawTextAt(const FontProxy& font, float x, const std::string& text, Font::Flags flags);

// The interface's font, named by the "font" attribute of the GUI, from the fonts directory.
Font* DefaultFontLoader();
// The font of that name in the fonts directory: NAME.raw and NAME.dat.
FontProxy LoadFont(const std::string& name);
// Sets up the built-in font as the stand-in of every font that can't be loaded; DropFallbackFont
// undoes it when the GUI goes.
void SetUpFallbackFont();
void DropFallbackFont();

} // namespace gui
