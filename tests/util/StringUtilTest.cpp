#include "util/StringUtil.h"
#include "util/ColorUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
const float FINF = std::numeric_limits<float>::infinity();
}

TEST(StringUtil_NumberText, FloatsPrintNineSignificantDigits)
{
    EXPECT_EQ("1", util::ToString(1.0f));
    EXPECT_EQ("0.100000001", util::ToString(0.1f));
    EXPECT_EQ("-9.80000019", util::ToString(-9.8f));
    EXPECT_EQ("123456792", util::ToString(123456789.0f));
    EXPECT_EQ("1.00000002e+20", util::ToString(1e20f));
    EXPECT_EQ("9.99999975e-06", util::ToString(1e-5f));
    EXPECT_EQ("-0", util::ToString(-0.0f));
    // Doubles carry 18 digits, as the precedence of infix declarations prints.
    EXPECT_EQ("0.100000000000000006", util::ToString(0.1));
    EXPECT_EQ("2", util::ToString(2.0));
}

TEST(StringUtil_NumberText, InfinitiesAndNaNHaveWords)
{
    EXPECT_EQ("+inf", util::ToString(FINF));
    EXPECT_EQ("-inf", util::ToString(-FINF));
    EXPECT_EQ("NaN", util::ToString(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ("+inf", util::ToString(std::numeric_limits<double>::infinity()));
    EXPECT_EQ("3.40282347e+38", util::ToString(std::numeric_limits<float>::max()));
}

TEST(StringUtil_NumberText, EveryPrintedFloatReadsBackExactly)
{
    const float values[] = {0.1f,
                            -9.8f,
                            1.0f / 3.0f,
                            1e-38f,
                            3.0e38f,
                            16777217.0f,
                            123.456f,
                            -0.0f,
                            std::numeric_limits<float>::max(),
                            std::numeric_limits<float>::denorm_min()};
    for (float x : values)
    {
        float back = util::FromString<float>(util::ToString(x));
        EXPECT_EQ(x, back) << util::ToString(x);
        EXPECT_EQ(std::signbit(x), std::signbit(back));
    }
    EXPECT_EQ(FINF, util::ParseFloat(util::ToString(FINF)));
    EXPECT_EQ(-FINF, util::ParseFloat(util::ToString(-FINF)));
    EXPECT_TRUE(std::isnan(util::ParseFloat(util::ToString(std::nanf("")))));
}

TEST(StringUtil_NumberText, SpecialWordsReadInAnyCase)
{
    EXPECT_EQ(FINF, util::ParseFloat("+INF"));
    EXPECT_EQ(-FINF, util::ParseFloat("-Inf"));
    EXPECT_TRUE(std::isnan(util::ParseFloat("nan")));
    EXPECT_EQ(2.5f, util::ParseFloat(" 2.5 "));
}

TEST(StringUtil_NumberText, BadTextThrowsWithTheTypeName)
{
    auto message = [](auto parse)
    {
        try
        {
            parse();
        }
        catch (std::runtime_error& e)
        {
            return std::string(e.what());
        }
        return std::string("no exception");
    };
    EXPECT_EQ("Bad lexical cast: \"1e\" is not a float", message([] { util::FromString<float>("1e"); }));
    EXPECT_EQ("Bad lexical cast: \"inf\" is not a float", message([] { util::FromString<float>("inf"); }));
    EXPECT_EQ("Bad lexical cast: \"1.5x\" is not a float", message([] { util::FromString<float>("1.5x"); }));
    EXPECT_EQ("Bad lexical cast: \"1.5\" is not a int", message([] { util::FromString<int>("1.5"); }));
    EXPECT_EQ("Bad lexical cast: \"99999999999\" is not a int",
              message([] { util::FromString<int>("99999999999"); }));
    EXPECT_EQ("Bad lexical cast: \"yes\" is not a bool", message([] { util::FromString<bool>("yes"); }));
    EXPECT_EQ("Bad lexical cast: \"\" is not a int", message([] { util::FromString<int>(""); }));
}

TEST(StringUtil_NumberText, BoolsAndIntsBothWays)
{
    EXPECT_TRUE(util::FromString<bool>("TRUE"));
    EXPECT_TRUE(util::FromString<bool>("1"));
    EXPECT_FALSE(util::FromString<bool>("False"));
    EXPECT_FALSE(util::FromString<bool>("0"));
    EXPECT_EQ("true", util::ToString(true));
    EXPECT_EQ("false", util::ToString(false));
    EXPECT_EQ(-42, util::FromString<int>("-42"));
    EXPECT_EQ(7, util::FromString<int>("+7"));
    EXPECT_EQ("-2147483648", util::ToString(std::numeric_limits<int>::min()));
}

TEST(StringUtil_Text, SplitKeepsEmptyPartsAndJoinRestoresThem)
{
    EXPECT_EQ((std::vector<std::string>{"a", "", "b"}), util::Split("a,,b", ','));
    EXPECT_EQ((std::vector<std::string>{""}), util::Split("", ','));
    EXPECT_EQ((std::vector<std::string>{"", ""}), util::Split(",", ','));
    EXPECT_EQ("a,,b", util::Join(util::Split("a,,b", ','), ","));
    EXPECT_EQ("", util::Join({}, ", "));
    EXPECT_EQ("x", util::Join({"x"}, ", "));
}

TEST(StringUtil_Text, WildcardMatcher)
{
    EXPECT_TRUE(util::WildcardMatcher("abc", "a*"));
    EXPECT_FALSE(util::WildcardMatcher("a", "a*"));
    EXPECT_TRUE(util::WildcardMatcher("abc", "a?c"));
    EXPECT_FALSE(util::WildcardMatcher("ac", "a?c"));
    EXPECT_TRUE(util::WildcardMatcher("ac", "a*c"));
    EXPECT_TRUE(util::WildcardMatcher("welcome.qlx", "*.qlx"));
    EXPECT_FALSE(util::WildcardMatcher("welcome.qlx.bak", "*.qlx"));
    EXPECT_TRUE(util::WildcardMatcher("x", "*"));
    EXPECT_FALSE(util::WildcardMatcher("", "*"));
    EXPECT_TRUE(util::WildcardMatcher("", ""));
}

TEST(StringUtil_Color, HSLRoundTripsAndKnownColors)
{
    EXPECT_FLOAT_EQ(1.0f, util::RGBIntensity(math::Vec3(1, 1, 1)));
    EXPECT_FLOAT_EQ(0.3f, util::RGBIntensity(math::Vec3(1, 0, 0)));

    math::Vec3 red = util::RGB2HSL(1, 0, 0);
    EXPECT_FLOAT_EQ(0.0f, red.x);
    EXPECT_FLOAT_EQ(1.0f, red.y);
    EXPECT_FLOAT_EQ(0.5f, red.z);
    EXPECT_FLOAT_EQ(240.0f, util::RGB2HSL(0, 0, 1).x);
    EXPECT_FLOAT_EQ(300.0f, util::RGB2HSL(1, 0, 1).x);
    math::Vec3 grey = util::RGB2HSL(0.25f, 0.25f, 0.25f);
    EXPECT_FLOAT_EQ(0.0f, grey.y);
    EXPECT_FLOAT_EQ(0.25f, grey.z);
    math::Vec3 greyRgb = util::HSL2RGB(123.0f, 0.0f, 0.4f);
    EXPECT_FLOAT_EQ(0.4f, greyRgb.x);
    EXPECT_FLOAT_EQ(0.4f, greyRgb.z);

    const math::Vec3 colors[] = {
        {0.2f, 0.5f, 0.9f}, {0.9f, 0.1f, 0.3f}, {0.5f, 0.9f, 0.2f}, {0.7f, 0.7f, 0.1f}};
    for (const math::Vec3& c : colors)
    {
        math::Vec3 back = util::HSL2RGB(util::RGB2HSL(c));
        EXPECT_NEAR(c.x, back.x, 1e-5f);
        EXPECT_NEAR(c.y, back.y, 1e-5f);
        EXPECT_NEAR(c.z, back.z, 1e-5f);
    }
}
