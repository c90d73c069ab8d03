// Text as it reaches the screen: the pixels of labels drawn with the fonts the build renders, in a real
// window (the test runner provides Xvfb; without a display the tests are skipped).
#include "GLTestWindow.h"

#include "gui/Font.h"
#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "gui/components/TextBox.h"
#include "rendering/Renderer.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include <vector>

using namespace gui;

namespace
{

const int WIDTH = 400;
const int HEIGHT = 160;
// Where the label stands, in pixels.
const math::Vec2 LABEL_POS(20.0f, 30.0f);
const char* const SAMPLE = "Quick brown fox: 0123 (gjy)";

// The window's pixels, rows from the top.
class Pixels
{
public:
    explicit Pixels(const GLTestWindow& window) : m_width(window.GetWidth()), m_height(window.GetHeight())
    {
        m_rgba.resize(size_t(m_width) * size_t(m_height) * 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_UNSIGNED_BYTE, m_rgba.data());
    }
    // The brightest channel at a pixel, from the top left.
    int Value(int x, int y) const
    {
        const unsigned char* p = &m_rgba[(size_t(m_height - 1 - y) * size_t(m_width) + size_t(x)) * 4];
        return std::max(std::max(p[0], p[1]), p[2]);
    }
    bool Grey(int x, int y) const
    {
        const unsigned char* p = &m_rgba[(size_t(m_height - 1 - y) * size_t(m_width) + size_t(x)) * 4];
        return std::abs(p[0] - p[1]) < 8 && std::abs(p[1] - p[2]) < 8;
    }
    int Width() const { return m_width; }
    int Height() const { return m_height; }

private:
    int m_width;
    int m_height;
    std::vector<unsigned char> m_rgba;
};

struct Ink
{
    int inside = 0;   // lit pixels inside the rectangle
    int white = 0;    // of them, fully lit
    int outside = 0;  // lit pixels outside it
    int coloured = 0; // pixels that aren't grey
    int right = 0;    // the rightmost lit column
};

Ink Measure(const Pixels& pixels, const math::BoundingBox2f& box, int background)
{
    Ink ink;
    for (int y = 0; y < pixels.Height(); ++y)
        for (int x = 0; x < pixels.Width(); ++x)
        {
            const int v = pixels.Value(x, y);
            ink.coloured += pixels.Grey(x, y) ? 0 : 1;
            if (std::abs(v - background) < 24)
                continue;
            const bool in = x >= box.min.x && x < box.max.x && y >= box.min.y && y < box.max.y;
            (in ? ink.inside : ink.outside) += 1;
            if (in && v >= 240)
                ++ink.white;
            ink.right = std::max(ink.right, x);
        }
    return ink;
}

class TextGLTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!m_window.Open(WIDTH, HEIGHT))
            GTEST_SKIP() << "No GL window: " << m_window.GetError();
    }
    void TearDown() override
    {
        LookAndFeel::ResetDefault();
        DropFallbackFont();
        // Every GL object dies with the window, as at a window change of the program.
        for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
            mentor->Unload();
        m_window.Close();
    }

    // A label as the interface makes one: not editable, without border, white text.
    static util::SharedPtr<TextBox> Label(const std::string& text)
    {
        util::SharedPtr<TextBox> label = QLEX_NEW new TextBox(text);
        label->SetNonEditable();
        label->SetMaxLines(1);
        label->SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
        label->SetOuterPos(LABEL_POS);
        return label;
    }

    // Draws the component on black at its place with the GUI's scale in the matrix, as the GUI does.
    void Draw(const Component& c, float scale)
    {
        m_window.SetGUIProjection();
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        rendering::Renderer::GetInstancePtr()->InvalidateColor();
        rendering::Renderer::GetInstancePtr()->SetColor4(1.0f, 1.0f, 1.0f, 1.0f);
        glScalef(scale, scale, 1.0f);
        const math::Vec2 pos = c.GetInnerPos();
        glTranslatef(pos.x, pos.y, 0.0f);
        c.DrawCompAndChildren();
        ASSERT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }

    static math::BoundingBox2f Rect(const Component& c, float scale)
    {
        const math::BoundingBox2f box = c.GetOuterBB();
        return math::BoundingBox2f(box.min * scale, box.max * scale);
    }

    GLTestWindow m_window;
};

} // namespace

TEST_F(TextGLTest, ALabelDrawsWhiteTextInsideItsRectangleAndNothingOutside)
{
    util::SharedPtr<TextBox> label = Label(SAMPLE);
    Draw(*label, 1.0f);
    const Pixels pixels(m_window);
    const Ink ink = Measure(pixels, Rect(*label, 1.0f), 0);
    EXPECT_EQ(ink.outside, 0);
    EXPECT_EQ(ink.coloured, 0);
    // Glyphs fill a good part of the row, and many of their pixels are fully white: the text isn't a
    // grey smear.
    const math::Vec2 size = label->GetInnerSize();
    EXPECT_GT(ink.inside, int(size.x * size.y / 8.0f));
    EXPECT_GT(ink.white, ink.inside / 5) << ink.white << " of " << ink.inside;
    // The text runs to the label's right end.
    EXPECT_GT(ink.right, int(Rect(*label, 1.0f).max.x) - 12);
}

TEST_F(TextGLTest, AtTwiceTheScaleTheTextIsTwiceAsLargeAndAsCrisp)
{
    util::SharedPtr<TextBox> label = Label(SAMPLE);
    Draw(*label, 1.0f);
    const Ink small = Measure(Pixels(m_window), Rect(*label, 1.0f), 0);
    Draw(*label, 2.0f);
    const Pixels pixels(m_window);
    const Ink large = Measure(pixels, Rect(*label, 2.0f), 0);
    EXPECT_EQ(large.outside, 0);
    EXPECT_NEAR(double(large.inside) / double(small.inside), 4.0, 1.2);
    EXPECT_GT(large.white, large.inside / 4) << large.white << " of " << large.inside;
}

TEST_F(TextGLTest, InvertedTextIsDarkOnTheColour)
{
    util::SharedPtr<TextBox> label = Label(SAMPLE);
    label->SetInverse(true);
    Draw(*label, 1.0f);
    const Pixels pixels(m_window);
    const math::BoundingBox2f box = Rect(*label, 1.0f);
    int lit = 0, dark = 0;
    for (int y = int(box.min.y); y < int(box.max.y); ++y)
        for (int x = int(box.min.x); x < int(box.max.x) - 2; ++x)
            (pixels.Value(x, y) > 200 ? lit : dark) += 1;
    // A white quad behind the text, and dark glyphs on it.
    EXPECT_GT(lit, dark);
    EXPECT_GT(dark, (lit + dark) / 10);
    EXPECT_EQ(Measure(pixels, box, 0).outside, 0);
}

TEST_F(TextGLTest, AFormaterDrawsItsRowsWithinTheFormatsSize)
{
    FontFormater formater = LookAndFeel::GetDefault()->GetFontFormater();
    const TextFormat format = formater.FormatText("two rows\nof text");
    ASSERT_EQ(format.fragments.size(), 2u);
    m_window.SetGUIProjection();
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    rendering::Renderer::GetInstancePtr()->InvalidateColor();
    rendering::Renderer::GetInstancePtr()->SetColor4(1.0f, 1.0f, 1.0f, 1.0f);
    const math::Vec2 size = formater.DrawText(LABEL_POS, format);
    ASSERT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_FLOAT_EQ(size.y, 2.0f * formater.GetCharHeight());

    const Pixels pixels(m_window);
    const Ink ink = Measure(pixels, math::BoundingBox2f(LABEL_POS, LABEL_POS + size), 0);
    EXPECT_EQ(ink.outside, 0);
    EXPECT_GT(ink.inside, 100);
    // Both rows have ink.
    const Ink second = Measure(
        pixels, math::BoundingBox2f(LABEL_POS + math::Vec2(0.0f, formater.GetCharHeight()), LABEL_POS + size),
        0);
    EXPECT_GT(second.inside, 40);
}

TEST_F(TextGLTest, AFocusedBoxShowsItsSelectionInverted)
{
    util::SharedPtr<TextBox> box = Label("hello world");
    box->SetEnableByClick(true);
    box->SetEnabled(true);
    box->GetTextEditor()->SetCursor(TextSelection(TextPos(0, 0), TextPos(0, 5)));
    Draw(*box, 1.0f);
    const Pixels pixels(m_window);
    const float split = box->GetInnerPos().x + box->CursorToPos(TextPos(0, 5)).x;
    const math::Vec2 inner = box->GetInnerPos();
    int selectedLit = 0, selectedAll = 0, restLit = 0, restAll = 0;
    for (int y = int(inner.y) + 2; y < int(inner.y + box->GetInnerSize().y) - 2; ++y)
        for (int x = int(inner.x) + 1; x < int(inner.x + box->GetInnerSize().x) - 2; ++x)
        {
            const bool lit = pixels.Value(x, y) > 200;
            if (x < int(split) - 1)
            {
                ++selectedAll;
                selectedLit += lit;
            }
            else if (x > int(split) + 1)
            {
                ++restAll;
                restLit += lit;
            }
        }
    // The selected part is a light quad under dark glyphs and their shadows; the rest is light glyphs
    // on the dark: far more of the selected part is lit.
    EXPECT_GT(selectedLit * 10, selectedAll * 3) << selectedLit << " of " << selectedAll;
    EXPECT_GT(selectedLit * restAll, 2 * restLit * selectedAll) << restLit << " of " << restAll;
    EXPECT_GT(restLit, 10);
}

TEST_F(TextGLTest, CrispFontsAreCutAtTheAlphaAndShadowsFallBehindLightText)
{
    GUI* gui = GUI::GetInstancePtr();
    util::SharedPtr<TextBox> label = Label(SAMPLE);
    // On grey, a shadow shows as pixels darker than the background.
    const auto countDark = [&]
    {
        m_window.SetGUIProjection();
        glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        rendering::Renderer::GetInstancePtr()->InvalidateColor();
        rendering::Renderer::GetInstancePtr()->SetColor4(1.0f, 1.0f, 1.0f, 1.0f);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        const math::Vec2 pos = label->GetInnerPos();
        glTranslatef(pos.x, pos.y, 0.0f);
        label->DrawCompAndChildren();
        const Pixels pixels(m_window);
        int dark = 0, between = 0;
        for (int y = 0; y < pixels.Height(); ++y)
            for (int x = 0; x < pixels.Width(); ++x)
            {
                const int v = pixels.Value(x, y);
                dark += v < 100 ? 1 : 0;
                between += (v > 140 && v < 230) ? 1 : 0;
            }
        return std::make_pair(dark, between);
    };
    const auto soft = countDark();
    EXPECT_GT(soft.first, 50);
    EXPECT_GT(soft.second, 50);
    gui->m_fontShadow = false;
    EXPECT_EQ(countDark().first, 0);

    // Cut at the alpha: every pixel is the text's or the background's, none between.
    gui->m_crispFonts = true;
    const auto crisp = countDark();
    EXPECT_EQ(crisp.second, 0);
    gui->m_crispFonts = false;
    gui->m_fontShadow = true;
    GUI::Destroy();
}
