// Renders a TrueType font into the program's bitmap font: an alpha picture of 16 x 16 character cells and
// a table of 256 widths, or the same as C++ source for the font built into the program.
//
//   make_font atlas FONT.ttf CELL OUT.raw OUT.dat
//     OUT.raw: 16 * CELL square, one alpha byte a pixel, rows from the top. Character c stands in column
//     c % 16, row c / 16; its advance box is centred in the cell, and the line (ascender to descender)
//     fills the cell but for one row at the top and one at the bottom, which the program leaves out when
//     it samples a cell.
//     OUT.dat: 256 bytes, the width of each character's box in pixels of the picture. The glyphs are
//     fitted to a grid of two pixels, so that the picture halved (its first mipmap level) is as crisp as
//     the picture itself.
//   make_font builtin FONT.ttf CELL OUT.cpp NAMESPACE
//     The same picture in one bit a pixel (rendered without anti-aliasing), and the widths, as arrays.
//
// Character codes are Latin-1: code c is the Unicode character c. A code the font has no glyph for (the
// control codes among them) is left empty, with width 0.
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace
{
const int GRID = 16;
const int CHARS = GRID * GRID;
// The rows of a cell that the program doesn't show: one at the top, one at the bottom.
const int CELL_MARGIN_ROWS = 2;

struct Atlas
{
    int cell = 0;
    int side = 0;
    std::vector<unsigned char> alpha; // side * side, rows from the top
    std::vector<unsigned char> widths;
};

[[noreturn]] void Fail(const std::string& message)
{
    std::fprintf(stderr, "make_font: %s\n", message.c_str());
    std::exit(1);
}

// The largest pixel size whose line, ascender to descender, fits in `rows`.
int FitPixelSize(FT_Face face, int rows)
{
    for (int size = rows + 2; size > 1; --size)
    {
        if (FT_Set_Pixel_Sizes(face, 0, FT_UInt(size)))
            Fail("the font has no size " + std::to_string(size));
        const long ascender = (face->size->metrics.ascender + 63) / 64;
        const long descender = (-face->size->metrics.descender + 63) / 64;
        if (ascender + descender <= rows)
            return size;
    }
    Fail("cells are too small for any size of the font");
}

// `grid`: pixels of the picture to a pixel of the grid the glyphs are fitted to. With 2, each glyph is
// hinted at half the size and drawn at the full one: its stems and its baseline fall on even pixels, so
// that the picture's first mipmap level, which shows the text at a GUI scale of 1, holds the glyphs as
// crisp as if rendered for that size, while the full size keeps smooth curves for a scale of 2.
Atlas Render(const char* fontPath, int cell, int grid, bool antialiased)
{
    FT_Library library;
    if (FT_Init_FreeType(&library))
        Fail("FreeType would not start");
    FT_Face face;
    if (FT_New_Face(library, fontPath, 0, &face))
        Fail(std::string("cannot read the font ") + fontPath);
    const int rowsShown = cell - CELL_MARGIN_ROWS;
    FitPixelSize(face, rowsShown / grid);

    Atlas atlas;
    atlas.cell = cell;
    atlas.side = GRID * cell;
    atlas.alpha.assign(size_t(atlas.side) * size_t(atlas.side), 0);
    atlas.widths.assign(CHARS, 0);
    const long ascender = grid * ((face->size->metrics.ascender + 63) / 64);
    const long descender = grid * ((-face->size->metrics.descender + 63) / 64);
    // The line sits in the middle of the rows that show, its baseline on the grid.
    long baseline = 1 + ascender + (rowsShown - ascender - descender) / 2;
    baseline -= baseline % grid;
    // Full hinting, across as well as up: the stems are fitted to the grid.
    const FT_Int32 flags = FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_MONO;
    const FT_Render_Mode mode = antialiased ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO;
    const FT_Matrix scale = {grid * 0x10000, 0, 0, grid * 0x10000};

    const auto load = [&](int c)
    {
        if (FT_Load_Char(face, FT_ULong(c), flags))
            Fail("cannot load character " + std::to_string(c));
        FT_Outline_Transform(&face->glyph->outline, &scale);
        if (FT_Render_Glyph(face->glyph, mode))
            Fail("cannot render character " + std::to_string(c));
        return face->glyph;
    };
    const auto inkLeftOf = [](FT_GlyphSlot glyph) { return std::min(0, glyph->bitmap_left); };

    // The box a character is drawn in: its advance, widened where the glyph's ink sticks out of it
    // (accents over narrow letters, the hook of a j), since nothing outside the box is drawn.
    std::vector<int> boxes(CHARS, 0);
    for (int c = 0; c < CHARS; ++c)
    {
        if (FT_Get_Char_Index(face, FT_ULong(c)) == 0)
            continue;
        const FT_GlyphSlot glyph = load(c);
        const int advance = grid * int((glyph->advance.x + 32) / 64);
        const int inkRight = std::max(advance, glyph->bitmap_left + int(glyph->bitmap.width));
        int box = std::min(inkRight - inkLeftOf(glyph), cell);
        // The program centres the box in the cell; with a width of the cell's parity the box starts on a
        // whole pixel and the glyph isn't resampled across two columns.
        if ((cell - box) % 2 != 0)
            box += box < cell ? 1 : -1;
        boxes[size_t(c)] = box;
    }
    // A fixed-width font stays one: every character gets the widest box.
    if (FT_IS_FIXED_WIDTH(face))
    {
        const int widest = *std::max_element(boxes.begin(), boxes.end());
        for (int& box : boxes)
            box = box > 0 ? widest : 0;
    }

    for (int c = 0; c < CHARS; ++c)
    {
        const int box = boxes[size_t(c)];
        if (box == 0)
            continue;
        atlas.widths[size_t(c)] = (unsigned char)box;
        const FT_GlyphSlot glyph = load(c);
        const FT_Bitmap& bitmap = glyph->bitmap;
        const int cellX = (c % GRID) * cell;
        const int cellY = (c / GRID) * cell;
        const int boxX = cellX + (cell - box) / 2;
        // A box that starts between two pixels of the grid is shown from its second pixel on where the
        // grid's pixels are shown whole: the glyph moves with it.
        const int penX = boxX - inkLeftOf(glyph) + (boxX % grid);
        for (unsigned row = 0; row < bitmap.rows; ++row)
        {
            const int y = cellY + int(baseline) - glyph->bitmap_top + int(row);
            // The first and the last row of a cell are not drawn.
            if (y < cellY + 1 || y >= cellY + cell - 1)
                continue;
            const unsigned char* source = bitmap.buffer + long(row) * bitmap.pitch;
            for (unsigned col = 0; col < bitmap.width; ++col)
            {
                const int x = penX + glyph->bitmap_left + int(col);
                if (x < boxX || x >= boxX + box)
                    continue;
                unsigned char value;
                if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO)
                    value = (source[col / 8] >> (7 - col % 8)) & 1 ? 255 : 0;
                else
                    value = source[col];
                atlas.alpha[size_t(y) * size_t(atlas.side) + size_t(x)] = value;
            }
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return atlas;
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    if (!file)
        Fail("cannot write " + path);
}

void WriteBuiltin(const Atlas& atlas, const std::string& path, const std::string& nameSpace)
{
    std::ofstream out(path);
    out << "// Made by tools/fonts/make_font from a font of the DejaVu family; see its licence beside the\n"
           "// program's fonts. One bit a pixel, rows from the top, the highest bit leftmost.\n"
           "#include <cstddef>\n\nnamespace "
        << nameSpace << "\n{\n";
    out << "extern const int BUILTIN_FONT_SIDE = " << atlas.side << ";\n";
    out << "extern const unsigned char BUILTIN_FONT_WIDTHS[" << CHARS << "] = {";
    for (int c = 0; c < CHARS; ++c)
        out << (c % 32 == 0 ? "\n    " : " ") << int(atlas.widths[size_t(c)]) << ",";
    const size_t bytes = atlas.alpha.size() / 8;
    out << "\n};\nextern const unsigned char BUILTIN_FONT_BITS[" << bytes << "] = {";
    for (size_t i = 0; i < bytes; ++i)
    {
        unsigned value = 0;
        for (size_t bit = 0; bit < 8; ++bit)
            value = (value << 1) | (atlas.alpha[i * 8 + bit] >= 128 ? 1u : 0u);
        out << (i % 24 == 0 ? "\n    " : " ") << value << ",";
    }
    out << "\n};\n} // namespace " << nameSpace << "\n";
    if (!out)
        Fail("cannot write " + path);
}

int CellArgument(const char* text)
{
    const int cell = std::atoi(text);
    if (cell < 4 || cell > 255)
        Fail(std::string("a cell of ") + text + " pixels is out of range");
    return cell;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "atlas" && argc == 6)
    {
        const Atlas atlas = Render(argv[2], CellArgument(argv[3]), 2, true);
        WriteFile(argv[4], atlas.alpha);
        WriteFile(argv[5], atlas.widths);
        return 0;
    }
    if (mode == "builtin" && argc == 6)
    {
        WriteBuiltin(Render(argv[2], CellArgument(argv[3]), 1, false), argv[4], argv[5]);
        return 0;
    }
    std::fprintf(stderr, "usage: make_font atlas FONT.ttf CELL OUT.raw OUT.dat\n"
                         "       make_font builtin FONT.ttf CELL OUT.cpp NAMESPACE\n");
    return 2;
}
