#include "script/Tokenizer.h"
#include "script/ScriptException.h"

#include <gtest/gtest.h>

using script::Tokenizer;
using script::TokenType;

namespace
{
// Tokens as "text:type" for compact comparison.
std::vector<std::string> Tokens(const std::string& text)
{
    std::vector<std::string> result;
    for (const script::Token& token : Tokenizer::Tokenize(text))
        result.push_back(token.text + ":" + std::to_string(token.type));
    return result;
}

std::string TokenError(const std::string& text)
{
    try
    {
        Tokenizer::Tokenize(text);
    }
    catch (script::TokenException& e)
    {
        return e.what();
    }
    return "no error";
}

typedef std::vector<std::string> V;
} // namespace

TEST(Tokenizer, EmptyTextAndCommentsGiveNoTokens)
{
    EXPECT_TRUE(Tokens("").empty());
    EXPECT_TRUE(Tokens("  \t\n\r\n ").empty());
    EXPECT_TRUE(Tokens("// only a comment").empty());
    EXPECT_TRUE(Tokens("// one\n  // two\n").empty());
    EXPECT_EQ(V{"a:4"}, Tokens("a // comment at the end without line feed"));
}

TEST(Tokenizer, WordsAndBooleans)
{
    EXPECT_EQ((V{"true:0", "false:0", "truex:4", "_a1:4", "inf:4", "NaN:4"}),
              Tokens("true false truex _a1 inf NaN"));
    EXPECT_EQ((V{"2:2", "x:4"}), Tokens("2x"));
    EXPECT_EQ((V{"2e:1", "lse:4"}), Tokens("2else"));
}

TEST(Tokenizer, NumbersKeepTheirSign)
{
    EXPECT_EQ((V{"1:2", "1.:1", "1e5:1", ".5:1", "-.5:1", "+7:2", "1.5e-3:1", "2.5E+2.5:1"}),
              Tokens("1 1. 1e5 .5 -.5 +7 1.5e-3 2.5E+2.5"));
    EXPECT_EQ((V{"+inf:1", "-inf:1", "-INF:1"}), Tokens("+inf -inf -INF"));
    EXPECT_EQ((V{"1e:1"}), Tokens("1e"));
    EXPECT_EQ((V{"1:2", "-2:2"}), Tokens("1-2"));
    EXPECT_EQ((V{"x:4", "=:4", "-1:2"}), Tokens("x=-1"));
    EXPECT_EQ((V{"a:4", "-:4", "1:2"}), Tokens("a - 1"));
    EXPECT_EQ((V{"-:2", "-1:2"}), Tokens("--1"));
}

TEST(Tokenizer, OperatorRunsAndPunctuation)
{
    EXPECT_EQ((V{"a:4", "=>:4", "b:4"}), Tokens("a=>b"));
    EXPECT_EQ((V{"(:4", "x:4", "):4", "=>:4", "{:4"}), Tokens("(x)=>{"));
    EXPECT_EQ((V{"a:4", ".:4", "b:4"}), Tokens("a.b"));
    EXPECT_EQ((V{"a:4", "/:4", "b:4"}), Tokens("a/b"));
    EXPECT_EQ((V{"+//:4"}), Tokens("+//"));
    EXPECT_EQ((V{";//:4", "x:4"}), Tokens(";// x"));
    EXPECT_EQ((V{"[:4", "]:4", ",:4", "}:4", "<=:4", "&&:4", ";:4"}), Tokens("[],} <= && ;"));
    EXPECT_EQ((V{"==:4", "s:3"}), Tokens("==\"s\""));
    // Any byte starts an operator run; bytes above 127 are no letters.
    EXPECT_EQ((V{"\xC3\xA9:4"}), Tokens("\xC3\xA9"));
    EXPECT_EQ((V{"@:4", "a:4"}), Tokens("@a"));
}

TEST(Tokenizer, StringsAndEscapes)
{
    std::vector<script::Token> tokens = Tokenizer::Tokenize("\"a\\qb\" \"t\\tn\\n\\\"q\\\\\" \"\"");
    ASSERT_EQ(3u, tokens.size());
    EXPECT_EQ("aqb", tokens[0].text);
    EXPECT_EQ("t\tn\n\"q\\", tokens[1].text);
    EXPECT_EQ("", tokens[2].text);
    EXPECT_EQ(script::TOKEN_STRING, tokens[2].type);
}

TEST(Tokenizer, LinesAreCountedAcrossCommentsAndStrings)
{
    std::vector<script::Token> tokens = Tokenizer::Tokenize("a\n// c\n\n\"s\" b\n  c");
    ASSERT_EQ(4u, tokens.size());
    EXPECT_EQ(1u, tokens[0].pos.line);
    EXPECT_EQ(4u, tokens[1].pos.line);
    EXPECT_EQ(4u, tokens[2].pos.line);
    EXPECT_EQ(5u, tokens[3].pos.line);
    EXPECT_EQ("line 5", tokens[3].pos.ToString());
}

TEST(Tokenizer, BadStringsNameTheirLine)
{
    EXPECT_EQ("Line 3: Newline in string literal", TokenError("a\n\nx = \"ab\ncd\""));
    EXPECT_EQ("Line 2: Unmatched quote (\")", TokenError("a\n\"abc"));
    EXPECT_EQ("Line 1: Bad \\-escape in string", TokenError("\"abc\\"));
    // An escaped line feed is taken as itself; the string's line is that of its start.
    std::vector<script::Token> tokens = Tokenizer::Tokenize("\"a\\\nb\" c");
    ASSERT_EQ(2u, tokens.size());
    EXPECT_EQ("a\nb", tokens[0].text);
    EXPECT_EQ(1u, tokens[1].pos.line);
}

TEST(Tokenizer, LongRunsCostOnePass)
{
    // A run of signs that never reaches a digit is one operator token, however long.
    std::string signs(200000, '-');
    std::vector<script::Token> tokens = Tokenizer::Tokenize(signs + " x");
    ASSERT_EQ(2u, tokens.size());
    EXPECT_EQ(signs.size(), tokens[0].text.size());
    tokens = Tokenizer::Tokenize(signs + "1");
    ASSERT_FALSE(tokens.empty());
    EXPECT_EQ(script::TOKEN_INT, tokens.back().type);
}
