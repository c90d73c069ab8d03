#include "ScriptFixture.h"

#include "script/Expressions.h"

namespace
{
// The code that parsing `text` prints back, or "null" when it doesn't parse.
std::string Reprint(const std::string& text)
{
    script::CodeBlockPtr block = script::Parser::GetInstancePtr()->Parse(text);
    return block ? block->ToCode() : "null";
}
} // namespace

class Parser : public ScriptFixture
{
};

TEST_F(Parser, TreesPrintBackAsTheyWereRead)
{
    EXPECT_EQ("", Reprint(""));
    EXPECT_EQ("a;\nb", Reprint("a; b;"));
    EXPECT_EQ("x = 1", Reprint("x = 1"));
    EXPECT_EQ("a = b = 1", Reprint("a = b = 1"));
    EXPECT_EQ("a.b.c = 1", Reprint("a.b.c = 1"));
    EXPECT_EQ("f(a, b)", Reprint("f(a, b)"));
    EXPECT_EQ("f(x)", Reprint("f x"));
    EXPECT_EQ("f()", Reprint("f()"));
    EXPECT_EQ("f(x)(y)", Reprint("f x y"));
    EXPECT_EQ("Scene.foo(y, \"a\")", Reprint("Scene.foo(y, \"a\")"));
    EXPECT_EQ("(x)=>{x}", Reprint("(x)=>{ x }"));
    EXPECT_EQ("(x)", Reprint("(x)"));
    EXPECT_EQ("{1}", Reprint("{ 1 }"));
    EXPECT_EQ("[1, [2, 3], ()]", Reprint("[1, [2, 3], ()]"));
    EXPECT_EQ("f(a = 1)", Reprint("f(a = 1)"));
    EXPECT_EQ("1(2)", Reprint("1 2"));
}

TEST_F(Parser, OperatorsSplitAtTheLeftmostLoosestMatch)
{
    EXPECT_EQ("1 + 2 + 3", Reprint("1 + 2 + 3"));
    EXPECT_EQ("11", Run("10 - 2 - 3")); // a - (b - c), whatever the declared associativity
    EXPECT_EQ("y = (x + 1) * 3", Reprint("y = (x + 1) * 3"));
    EXPECT_EQ(" ! a + b", Reprint("!a + b"));
    EXPECT_EQ("null", Reprint("1 + 2 * 3"));
    EXPECT_TRUE(Reported("Parse error: Multiple mathcing infix functions found"));
    EXPECT_EQ("7", Run("1 + (2 * 3)"));
}

TEST_F(Parser, ErrorsNameTheLineAndToken)
{
    struct Case
    {
        const char* text;
        const char* error;
    };
    const Case cases[] = {
        {"a b = 1", "Parse error: line 1 '=': Bad placement of = (info: 1)"},
        {"a\nb =", "Parse error: line 2 '=': Bad placement of = (info: )"},
        {"5 = 1", "Parse error: line 1 '=': You can only assign to an identifier"},
        {"x = ;", "Parse error: line 1: Empty expression"},
        {"\n\n(x)=>x", "Parse error: line 3: Missing {"},
        {"a = 1\nb = 2", "Parse error: line 2 '=': Bad placement of = (info: 2)"},
        {"f(1,\n2", "Parse error: line 2: Missing )"},
        {"x;\n)", "Parse error: line 1: Unexpected token: )"},
        {"a.", "Parse error: Bad lexical cast: \".\" is not a float"},
        {".b", "Parse error: line 1 '.': General parse error"},
        {"(a b)=>{}", "Parse error: line 1: Missing )"},
        {"(1)=>{}", "Parse error: line 1 '1': Argument list must consist of Identifiers"},
        {"infix 1 up: _ % _ => f", "Parse error: line 1: Bad infix function"},
        {"infix x left: _ % _ => f", "Parse error: Bad lexical cast: \"x\" is not a float"},
        {"infix 1 left: _ % _", "Parse error: line 1: Missing =>"},
        {"infix 1 left: _ _ => f", "Parse error: line 1 '_': Bad infix function"},
        {"x = \"a\nb\"", "Tokenizer error: Line 1: Newline in string literal"},
    };
    for (const Case& c : cases)
    {
        m_errors.clear();
        EXPECT_EQ("null", Reprint(c.text)) << c.text;
        ASSERT_EQ(1u, m_errors.size()) << c.text;
        EXPECT_EQ(c.error, m_errors[0]);
    }
}

TEST_F(Parser, AFaultyTextRunsNothing)
{
    EXPECT_EQ("", Run("ran = 1;\n x = ;"));
    EXPECT_FALSE(Root()->HasVariable("ran"));
}

TEST_F(Parser, InfixDeclarationsTakeEffectAtOnceAndPrintBack)
{
    EXPECT_EQ("[true, 1, 2]",
              Run("choose = (c, a, b)=>{ [c, a, b] }; infix 1 left: _ ? _ : _ => choose; true ? 1 : 2"));
    EXPECT_EQ("c ? a : b", Reprint("c ? a : b"));
    EXPECT_EQ("[false, x, [3]]", Run("false ? \"x\" : [3]"));
    // A pattern that begins with an operator word needs a blank behind the colon.
    EXPECT_EQ("", Run("twice = (a)=>{ a * 2 }; infix 4 right: ~ _ => twice"));
    EXPECT_EQ("6", Run("~ 3"));
    EXPECT_EQ(" ~ 3", Reprint("~ 3"));
    // The lower precedence number splits first, whatever comes first in the text.
    EXPECT_EQ("7", Run("~ 3 + 1"));
    // Parsing a declaration adds it at once: a second one of equal rank makes the pattern ambiguous.
    EXPECT_EQ("infix 1 left: _ ? _ : _ => choose;\n", Reprint("infix 1 left: _ ? _ : _ => choose"));
    EXPECT_EQ("null", Reprint("c ? a : b"));
    EXPECT_TRUE(Reported("Multiple mathcing infix functions found"));
    EXPECT_EQ("infix 2 left: _ + _ => math.add;\n",
              script::InfixDeclaration(m_parser->GetRootScope()->GetInfixes()[0]).ToCode());
}

TEST_F(Parser, DeepNestingIsRefusedNotFollowed)
{
    std::string deep(100000, '(');
    EXPECT_EQ("", Run(deep));
    EXPECT_TRUE(Reported("Expression nested too deeply"));
    std::string sum = "x = 1";
    for (int i = 0; i < 5000; ++i)
        sum += " + 1";
    m_errors.clear();
    EXPECT_EQ("", Run(sum));
    EXPECT_TRUE(Reported("Expression nested too deeply"));
    // Reasonable depth is fine.
    std::string fine = "1";
    for (int i = 0; i < 100; ++i)
        fine = "(" + fine + " + 1)";
    EXPECT_EQ("101", Run(fine));
}

TEST_F(Parser, LongChainsAndMemberPathsAreRefusedAsNesting)
{
    // Each term of a chain nests one call deeper, and `+1` is a number, so `1+1+1` is a chain too.
    for (const std::string& term : {std::string(" 1"), std::string("+1"), std::string(".a")})
    {
        std::string chain = "x";
        for (int i = 0; i < 50000; ++i)
            chain += term;
        m_errors.clear();
        EXPECT_EQ("", Run(chain)) << term;
        EXPECT_TRUE(Reported("Expression nested too deeply")) << term;
    }
    std::string shortChain = "(a) => {(b) => {a}}";
    for (int i = 0; i < 100; ++i)
        shortChain += " 1";
    EXPECT_EQ("", Run(shortChain));
    EXPECT_TRUE(Reported("Function call applied to non-function: "));

    // A function declaration is still told from a bracket, however deep the brackets around it.
    EXPECT_EQ("3", Run("(((((a) => {a + 1}) 2)))"));
    EXPECT_EQ("2", Run("((1) + ((1)))"));
}
