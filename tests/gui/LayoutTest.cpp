#include "GuiTestSupport.h"

#include "gui/LookAndFeel.h"
#include "gui/components/BorderLayout.h"
#include "gui/components/ListLayout.h"
#include "gui/components/TextBox.h"

#include <gtest/gtest.h>

using namespace gui;
using namespace gui::test;

namespace
{
void ExpectVec(const math::Vec2& actual, float x, float y)
{
    EXPECT_FLOAT_EQ(actual.x, x);
    EXPECT_FLOAT_EQ(actual.y, y);
}
} // namespace

TEST(ListLayout, VerticalListSizesItsOwnerToTheChildrenAndWrapsTextToItsWidth)
{
    util::SharedPtr<Component> list =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Vertical, 2.0f));
    list->SetMaxSize(math::Vec2(100.0f, math::INF));
    auto a = Box(30, 10);
    auto b = Box(50, 20);
    // 16 units a character: "aaaa " is 80 wide and a sixth character passes 100.
    util::SharedPtr<TextBox> text = QLEX_NEW new TextBox();
    text->SetFont(FixedWidthFont());
    text->SetText("aaaa bbbb cccc");
    ExpectVec(text->GetInnerSize(), 14 * 16.0f, 16.0f);
    list->AddComponent(a);
    list->AddComponent(b);
    list->AddComponent(text);

    ExpectVec(a->GetOuterPos(), 0, 0);
    ExpectVec(b->GetOuterPos(), 0, 12);
    ExpectVec(text->GetOuterPos(), 0, 34);
    // Three rows; the box keeps its width, clipped to the limit (a box only grows).
    ASSERT_EQ(text->GetTextEditor()->NRows(), 3u);
    EXPECT_EQ(text->GetTextEditor()->GetLines()[0].GetRow(1), "bbbb ");
    ExpectVec(text->GetTextEditor()->GetSize() * 16.0f, 80, 48);
    ExpectVec(text->GetInnerSize(), 100, 48);
    // Bounding box: the text box's outer width (one unit of border each side); the spacing stands only
    // between children.
    ExpectVec(list->GetInnerSize(), 102, 10 + 2 + 20 + 2 + 50);

    // A child that grows later makes the owner grow.
    b->SetInnerSize(60, 30);
    ExpectVec(text->GetOuterPos(), 0, 44);
    ExpectVec(list->GetInnerSize(), 102, 94);
}

TEST(ListLayout, HorizontalListPlacesChildrenSideBySideWithSpacing)
{
    util::SharedPtr<Component> list =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Horizontal, 4.0f));
    auto a = Box(10, 5);
    auto b = Box(20, 15);
    b->SetBorder(LookAndFeel::GetDefault()->GetDefaultBorder());
    list->AddComponent(a);
    list->AddComponent(b);
    ExpectVec(b->GetOuterPos(), 14, 0);
    ExpectVec(b->GetInnerPos(), 15, 1);
    ExpectVec(list->GetInnerSize(), 14 + 22, 17);
}

TEST(ListLayout, FillMakesAllAsWideAsTheWidestWhateverTheirOrder)
{
    for (bool widestFirst : {true, false})
    {
        util::SharedPtr<Component> list =
            QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Vertical | ListLayout::Fill, 0.0f));
        auto narrow = Box(10, 5);
        auto wide = Box(40, 5);
        list->AddComponent(widestFirst ? wide : narrow);
        list->AddComponent(widestFirst ? narrow : wide);
        EXPECT_FLOAT_EQ(narrow->GetOuterSize().x, 40.0f);
        EXPECT_FLOAT_EQ(wide->GetOuterSize().x, 40.0f);
        ExpectVec(list->GetInnerSize(), 40, 10);
    }
}

TEST(ListLayout, AlignEndPutsChildrenAgainstTheFarSide)
{
    util::SharedPtr<Component> list =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Vertical | ListLayout::AlignEnd, 0.0f));
    auto narrow = Box(10, 5);
    auto wide = Box(40, 5);
    list->AddComponent(narrow);
    list->AddComponent(wide);
    ExpectVec(narrow->GetOuterPos(), 30, 0);
    ExpectVec(wide->GetOuterPos(), 0, 5);
}

TEST(ListLayout, FloatingChildrenAreLeftWhereTheyStand)
{
    util::SharedPtr<Component> list =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Vertical, 0.0f));
    auto floating = Box(30, 30);
    floating->SetFloating(true);
    floating->SetOuterPos(math::Vec2(50, 60));
    list->AddComponent(floating);
    ExpectVec(list->GetInnerSize(), 0, 0);
    ExpectVec(floating->GetOuterPos(), 50, 60);

    auto placed = Box(10, 10);
    list->AddComponent(placed);
    ExpectVec(placed->GetOuterPos(), 0, 0);
    ExpectVec(list->GetInnerSize(), 10, 10);
}

TEST(BorderLayout, FirstChildAtTheStartAndTheOthersAgainstTheFarEnd)
{
    util::SharedPtr<Component> row =
        QLEX_NEW new Component(QLEX_NEW new BorderLayout(BorderLayout::Horizontal));
    row->SetInnerSize(100, 10);
    auto title = Box(30, 10);
    auto ok = Box(20, 8);
    auto cancel = Box(25, 12);
    row->AddComponent(title);
    row->AddComponent(ok);
    row->AddComponent(cancel);
    ExpectVec(title->GetOuterPos(), 0, 0);
    ExpectVec(cancel->GetOuterPos(), 75, 0);
    ExpectVec(ok->GetOuterPos(), 55, 0);
    // The owner grows to hold the tallest child, and never shrinks.
    ExpectVec(row->GetInnerSize(), 100, 12);

    // Too narrow for all: the far end is the children's total.
    util::SharedPtr<Component> narrow =
        QLEX_NEW new Component(QLEX_NEW new BorderLayout(BorderLayout::Horizontal));
    auto first = Box(30, 10);
    auto second = Box(20, 10);
    narrow->AddComponent(first);
    narrow->AddComponent(second);
    ExpectVec(second->GetOuterPos(), 30, 0);
    ExpectVec(narrow->GetInnerSize(), 50, 10);
}

TEST(FontFormater, BreaksRowsAtLineFeedsTabsAndTheMaximalWidth)
{
    FontFormater f(FixedWidthFont());
    f.SetScale(math::Vec2(10.0f, 20.0f));
    ExpectVec(f.GetTextSize(""), 0, 20);
    ExpectVec(f.GetTextSize("\n"), 0, 40);
    ExpectVec(f.GetTextSize("ab\ncde"), 30, 40);
    // Tab stops every four characters.
    EXPECT_FLOAT_EQ(f.NextTabPos(0.0f), 40.0f);
    EXPECT_FLOAT_EQ(f.NextTabPos(40.0f), 80.0f);
    ExpectVec(f.GetTextSize("a\tb"), 50, 20);

    // A tab past the maximal width goes to the next row.
    f.SetMaxWidth(35.0f);
    ExpectVec(f.GetTextSize("abc\tf"), 30, 40);

    f.SetMaxWidth(45.0f);
    // A word longer than the row breaks inside; a row of blanks breaks behind the last blank that fits.
    const TextFormat word = f.FormatText("abcdefghij");
    ASSERT_EQ(word.fragments.size(), 3u);
    EXPECT_EQ(word.fragments[0].end, 4u);
    EXPECT_EQ(word.fragments[1].begin, 4u);
    const TextFormat words = f.FormatText("ab cd ef");
    std::vector<std::string> rows;
    for (const TextFragment& fragment : words.fragments)
        rows.push_back(words.text.substr(fragment.begin, fragment.end - fragment.begin));
    EXPECT_EQ(rows, std::vector<std::string>({"ab ", "cd ", "ef"}));
    // A character wider than the row stands alone, with no endless loop.
    f.SetMaxWidth(5.0f);
    EXPECT_EQ(f.FormatText("xyz").fragments.size(), 3u);
}
