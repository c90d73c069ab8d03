// Fonts without a window: widths files, the loaders and their stand-in, the fonts the build renders, and
// the character boxes of laid-out text.
#include "GuiTestSupport.h"
#include "logging/LogCapture.h"

#include "gui/Font.h"
#include "gui/FontFormater.h"
#include "gui/LookAndFeel.h"
#include "logging/Log.h"
#include "rendering/Image.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace gui;
using namespace gui::test;

namespace
{
namespace fs = std::filesystem;

// Pixels of the test fonts' pictures: a width of 32 pixels is one font unit.
const int TEXTURE_WIDTH = 512;

class FontFiles : public ::testing::Test
{
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/qlex-fonts-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
    }
    void TearDown() override
    {
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
    }
    std::string Write(const std::string& name, const std::vector<unsigned char>& bytes) const
    {
        const std::string path = (m_dir / name).string();
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return path;
    }
    // A font picture of `side` pixels with one opaque pixel in the middle of each cell.
    std::string WritePicture(const std::string& name, unsigned side) const
    {
        std::vector<unsigned char> alpha(size_t(side) * side, 0);
        const unsigned cell = side / 16;
        for (unsigned c = 0; c < 256 && cell > 0; ++c)
            alpha[size_t((c / 16) * cell + cell / 2) * side + (c % 16) * cell + cell / 2] = 255;
        return Write(name, alpha);
    }

    fs::path m_dir;
};

// Whether the proxy holds its own font, not the stand-in.
bool Loaded(const FontProxy& font)
{
    return font.operator void*() != nullptr;
}

// The fonts the build renders into the staged tree, where the tests run.
std::string StagedFont(const std::string& name, const std::string& extension)
{
    return util::FileSystem::GetInstancePtr()->FontsDir() + name + extension;
}

// The opaque pixels of character c's cell in a picture.
int InkInCell(const rendering::ImageRGBA32& image, unsigned char c)
{
    const unsigned cell = image.GetWidth() / 16;
    int ink = 0;
    for (unsigned y = 0; y < cell; ++y)
        for (unsigned x = 0; x < cell; ++x)
        {
            // Cell rows count from the top, the image's from the bottom.
            const unsigned px = (c % 16) * cell + x;
            const unsigned py = image.GetHeight() - 1 - ((c / 16) * cell + y);
            ink += image(px, py).w > 128 ? 1 : 0;
        }
    return ink;
}

} // namespace

TEST_F(FontFiles, WidthsFileOfTwoOrOneBytesAnEntryGivesPixelWidthsInFontUnits)
{
    // 512 bytes: little-endian pairs. 0x20, 0x01 is 288 pixels, nine units of 32 pixels.
    std::vector<unsigned char> wide(512, 0);
    wide[2 * 'A'] = 0x20;
    wide[2 * 'A' + 1] = 0x01;
    wide[2 * 'i'] = 16;
    Font font(rendering::TextureProxy(), TEXTURE_WIDTH);
    font.LoadWidths(Write("wide.dat", wide));
    EXPECT_FLOAT_EQ(font.GetWidth('A'), 288.0f / 32.0f);
    EXPECT_FLOAT_EQ(font.GetWidth('i'), 0.5f);
    EXPECT_FLOAT_EQ(font.GetWidth('B'), 0.0f);

    // 256 bytes: one byte an entry, all 256 of them.
    std::vector<unsigned char> narrow(256);
    for (int c = 0; c < 256; ++c)
        narrow[size_t(c)] = (unsigned char)c;
    font.LoadWidths(Write("narrow.dat", narrow));
    EXPECT_FLOAT_EQ(font.GetWidth(0), 0.0f);
    EXPECT_FLOAT_EQ(font.GetWidth(64), 2.0f);
    EXPECT_FLOAT_EQ(font.GetWidth(255), 255.0f / 32.0f);
}

TEST_F(FontFiles, BadWidthsFilesAreToldInTheLogAndLeaveAFixedWidthFont)
{
    logtest::LogCapture log(0xFFFF);
    Font font(rendering::TextureProxy(), TEXTURE_WIDTH);
    font.LoadWidths(Write("good.dat", std::vector<unsigned char>(256, 16)));
    ASSERT_FLOAT_EQ(font.GetWidth('x'), 0.5f);

    font.LoadWidths(Write("odd.dat", std::vector<unsigned char>(300, 16)));
    EXPECT_TRUE(log.Has("Bad widths file, must be either 256 or 512 bytes of raw little endian data"));
    for (int c = 0; c < 256; ++c)
        ASSERT_FLOAT_EQ(font.GetWidth((unsigned char)c), 1.0f) << c;

    font.LoadWidths(Write("good2.dat", std::vector<unsigned char>(256, 16)));
    font.LoadWidths((m_dir / "missing.dat").string());
    EXPECT_TRUE(log.Has("missing.dat"));
    EXPECT_FLOAT_EQ(font.GetWidth('x'), 1.0f);

    font.LoadWidths(Write("empty.dat", {}));
    EXPECT_TRUE(log.Has("empty.dat"));
    EXPECT_FLOAT_EQ(font.GetWidth('x'), 1.0f);
}

TEST_F(FontFiles, AFontThatCannotBeReadIsRefusedAndTheBuiltInFontStandsIn)
{
    logtest::LogCapture log(0xFFFF);
    const std::string widths = Write("w.dat", std::vector<unsigned char>(256, 8));
    const std::string good = WritePicture("good.raw", 128);
    // A RAW picture's side follows from its length, which must make a square of 16 x 16 cells.
    const std::string truncated = Write("truncated.raw", std::vector<unsigned char>(128 * 128 - 5, 0));
    const std::string tiny = WritePicture("tiny.raw", 10);
    const std::string missing = (m_dir / "missing.raw").string();

    FontProxy loaded = Font::Load(good, widths);
    EXPECT_TRUE(Loaded(loaded));
    EXPECT_FLOAT_EQ(loaded->GetWidth('a'), 1.0f);

    for (const std::string& bad : {truncated, tiny, missing})
    {
        EXPECT_THROW(delete Font::RawFontLoader(bad, widths), std::exception) << bad;
        FontProxy proxy = Font::Load(bad, widths);
        // False: the proxy fell back on the default font, which is there and readable.
        EXPECT_FALSE(Loaded(proxy)) << bad;
        ASSERT_NE(proxy.get(), nullptr) << bad;
        EXPECT_EQ(proxy.get(), Font::Load(missing, widths).get());
        const std::string name = fs::path(bad).filename().string();
        EXPECT_TRUE(log.Has(name)) << "no message names " << name;
    }
    EXPECT_TRUE(log.Has("the built-in font stands in"));

    // The stand-in has glyphs where the printable characters are, of their own widths, and none for
    // the control characters.
    FontProxy fallback = Font::Load(missing, widths);
    EXPECT_GT(fallback->GetWidth('W'), 0.0f);
    EXPECT_LT(fallback->GetWidth('W'), 1.0f);
    EXPECT_FLOAT_EQ(fallback->GetWidth(1), 0.0f);
    const rendering::ImageRGBA32Ptr picture = Font::BuiltinFontImage();
    EXPECT_GT(InkInCell(*picture, 'A'), 10);
    EXPECT_GT(InkInCell(*picture, 'g'), 10);
    EXPECT_EQ(InkInCell(*picture, 1), 0);
    EXPECT_EQ(InkInCell(*picture, ' '), 0);
}

TEST(StagedFonts, TheInterfaceFontIsProportionalAndTheFixedFontIsNot)
{
    std::unique_ptr<Font> bold(
        Font::RawFontLoader(StagedFont("arial_black", ".raw"), StagedFont("arial_black", ".dat")));
    std::unique_ptr<Font> fixed(
        Font::RawFontLoader(StagedFont("fixedsys", ".raw"), StagedFont("fixedsys", ".dat")));
    EXPECT_LT(bold->GetWidth('i'), bold->GetWidth('W'));
    EXPECT_LT(bold->GetWidth('W'), 1.0f);
    EXPECT_GT(bold->GetWidth('i'), 0.0f);
    for (unsigned char c = ' '; c < 127; ++c)
        ASSERT_FLOAT_EQ(fixed->GetWidth(c), fixed->GetWidth('m')) << c;
    EXPECT_FLOAT_EQ(fixed->GetWidth('\n'), 0.0f);

    // Each glyph stands inside the part of its cell that is drawn: its advance box, centred, without
    // the first and the last row.
    rendering::ImageRGBA32 image;
    image.LoadFile(StagedFont("arial_black", ".raw"));
    const unsigned cell = image.GetWidth() / 16;
    for (unsigned c = 33; c < 256; ++c)
    {
        const float widthPixels = bold->GetWidth((unsigned char)c) * float(cell);
        const float left = (float(cell) - widthPixels) / 2.0f;
        int inkOutside = 0;
        for (unsigned y = 0; y < cell; ++y)
            for (unsigned x = 0; x < cell; ++x)
            {
                const unsigned py = image.GetHeight() - 1 - ((c / 16) * cell + y);
                const bool drawn = y > 0 && y + 1 < cell && x >= left && x < left + widthPixels;
                if (!drawn && image((c % 16) * cell + x, py).w > 0)
                    ++inkOutside;
            }
        EXPECT_EQ(inkOutside, 0) << "character " << c;
    }
    EXPECT_GT(InkInCell(image, 'Q'), InkInCell(image, '.'));
}

TEST(TextFormat, CharacterBoundsFollowTheFragments)
{
    FontFormater f(FixedWidthFont());
    f.SetScale(math::Vec2(10.0f, 20.0f));
    const TextFormat empty = f.FormatText("");
    math::BoundingBox2f box = empty.GetCharBounds(0);
    EXPECT_FLOAT_EQ(box.max.x, 0.0f);
    EXPECT_FLOAT_EQ(box.max.y, 20.0f);

    const TextFormat text = f.FormatText("ab\ncde");
    box = text.GetCharBounds(4);
    EXPECT_FLOAT_EQ(box.min.x, 10.0f);
    EXPECT_FLOAT_EQ(box.min.y, 20.0f);
    EXPECT_FLOAT_EQ(box.max.x, 20.0f);
    EXPECT_FLOAT_EQ(box.max.y, 40.0f);
    // The line break stands at the end of its row; past the end is the right edge of the last character.
    box = text.GetCharBounds(2);
    EXPECT_FLOAT_EQ(box.min.x, 20.0f);
    EXPECT_FLOAT_EQ(box.min.y, 0.0f);
    box = text.GetCharBounds(99);
    EXPECT_FLOAT_EQ(box.min.x, 30.0f);
    EXPECT_FLOAT_EQ(box.max.x, 30.0f);
    EXPECT_FLOAT_EQ(box.min.y, 20.0f);
}

TEST(LookAndFeel, TheFontsComeFromTheFilesTheGUINames)
{
    GUI* gui = GUI::GetInstancePtr();
    const util::SharedPtr<LookAndFeel> look = LookAndFeel::GetDefault();
    const FontProxy font = look->GetFont();
    EXPECT_TRUE(Loaded(font));
    EXPECT_LT(font->GetWidth('i'), font->GetWidth('W'));
    EXPECT_FLOAT_EQ(look->GetFixedFont()->GetWidth('i'), look->GetFixedFont()->GetWidth('W'));
    EXPECT_EQ(look->GetFontFormater().GetFont(), font);

    // A new name takes effect when the fonts are made again, as a change of the attribute has them.
    gui->SetFont("fixedsys");
    font.GetMentor()->Unload();
    EXPECT_FLOAT_EQ(font->GetWidth('i'), font->GetWidth('W'));
    gui->SetFont("no_such_font");
    font.GetMentor()->Unload();
    EXPECT_FALSE(Loaded(font));
    EXPECT_GT(font->GetWidth('W'), 0.0f);
    gui->SetFont("arial_black");
    font.GetMentor()->Unload();
    EXPECT_TRUE(Loaded(font));
}
