#include "ScriptFixture.h"

#include "script/Expressions.h"

class Evaluation : public ScriptFixture
{
};

TEST_F(Evaluation, BlocksListsAndVoid)
{
    EXPECT_EQ("1", Run("(1)"));
    EXPECT_EQ("[1]", Run("[1]"));
    EXPECT_EQ("[]", Run("()"));
    EXPECT_EQ("[]", Run("[]"));
    EXPECT_EQ("[1, 2]", Run("(1, 2)"));
    EXPECT_EQ("", Run(""));
    script::ObjectPtr empty = m_parser->Execute("");
    EXPECT_EQ("void", empty->ToText());
    EXPECT_EQ("void", m_parser->Execute("{}")->ToText() == "{}" ? "void" : "not a function");
    EXPECT_EQ("void", m_parser->Execute("f = {}; f")->ToText());
}

TEST_F(Evaluation, FailingStatementsAreLoggedWhileTheRestRun)
{
    EXPECT_EQ("3", Run("a = 1; nothere; b = 2; a + b"));
    EXPECT_TRUE(Reported("!! ERROR: Failed to evaluate: nothere, Cannot find identifier nothere in [ROOT]"));
    EXPECT_EQ("2", Run("b"));

    m_log.clear();
    EXPECT_EQ("", Run("c = 5; 1 / 0"));
    EXPECT_TRUE(Reported("Failed to evaluate: 1 / 0, Division by zero"));
    EXPECT_EQ("error", m_parser->Execute("1 / 0")->ToText());
    EXPECT_EQ("5", Run("c"));

    // Inside a function a failing statement doesn't leave it: its value is that of its last statement.
    EXPECT_EQ("4", Run("f = { p = 1; q = missing; 4 }; f"));
    EXPECT_TRUE(
        Reported("Failed to evaluate: q = missing, Cannot find identifier missing in [function closure: {"));

    EXPECT_EQ("", Run("Nowhere.x = 1"));
    EXPECT_TRUE(Reported("Failed to evaluate: Nowhere.x = 1, Cannot find identifier Nowhere in [ROOT]"));
    EXPECT_EQ("", Run("+ 5"));
    EXPECT_TRUE(Reported("Tried to dereference a NULL SharedPtr"));
    EXPECT_EQ("", Run("math = math; 3(4)"));
    EXPECT_TRUE(Reported("Function call applied to non-function: 3(4)"));
}

TEST_F(Evaluation, ClosuresReadByReferenceAndWriteLocally)
{
    Run("x = 1; f = { x }");
    EXPECT_EQ("1", Run("f"));
    Run("x = 2");
    EXPECT_EQ("2", Run("f"));
    EXPECT_EQ("5", Run("g = { x = 5; x }; g"));
    EXPECT_EQ("2", Run("x"));
    EXPECT_EQ("7", Run("add = (a)=>{ (b)=>{ a + b } }; add3 = add(3); add3(4)"));
    // What the body set stays readable in the closure of the latest call.
    m_parser->Execute("rec = { width = 2; height = 3 }; rec");
    script::FunctionPtr rec = script::ObjectToValue<script::FunctionPtr>(Root()->GetObject("rec"));
    ASSERT_TRUE(rec->GetLastCallClosure());
    EXPECT_EQ("3", rec->GetLastCallClosure()->GetObject("height")->ToText());
    EXPECT_FALSE(Root()->HasVariable("width"));
}

TEST_F(Evaluation, FunctionsWithoutParametersExpandWhereRead)
{
    EXPECT_EQ("3", Run("n = 1; three = { n + 2 }; three"));
    EXPECT_EQ("(a)=>{a}", Run("one = (a)=>{ a }; one"));
    EXPECT_EQ("6", Run("one(6)"));
    EXPECT_EQ("", Run("two = (a, b)=>{ a }; two(1)"));
    EXPECT_TRUE(Reported("Wrong number of arguments to function"));
    EXPECT_EQ("[5]", Run("l = [5]; l"));
    EXPECT_EQ("5", Run("l(0)"));
    EXPECT_EQ("", Run("l(1)"));
    EXPECT_TRUE(Reported("List index out of bounds"));
    EXPECT_EQ("", Run("l(0.0)"));
    EXPECT_TRUE(Reported("Not an integer"));
}

TEST_F(Evaluation, CommandsRunOnceWithOrWithoutBrackets)
{
    int calls = 0;
    util::SharedPtr<script::Reflected> counter = QLEX_NEW new script::Reflected("Counter");
    counter->AddCmd("count", [&calls] { return script::ValueToObject(++calls); });
    Root()->AddReflectedChild(counter);
    EXPECT_EQ("1", Run("Counter.count"));
    EXPECT_EQ("3", Run("Counter.count(); Counter.count()"));
    EXPECT_EQ(3, calls);
    EXPECT_EQ("3.14159274", Run("math.pi()"));
    EXPECT_EQ("3.14159274", Run("math.pi"));
    m_errors.clear();
    m_log.clear();
    // A command that makes a function gives that function; the brackets don't call it a second time.
    EXPECT_EQ("(x)=>{x}", Run("make = { (x)=>{ x } }; make()"));
    EXPECT_EQ("7", Run("make() 7"));
    EXPECT_FALSE(Reported("Function call applied to non-function"));
    // Brackets with arguments still go to what the name expands to.
    EXPECT_EQ("2", Run("pair = { [1, 2] }; pair(1)"));
}

TEST_F(Evaluation, ConstantsCannotBeSetWhileOperatorsFollowTheirFunctions)
{
    Root()->AddReflectedChild(QLEX_NEW new script::Reflected("Box"));
    EXPECT_EQ("", Run("Box = 1"));
    EXPECT_TRUE(Reported("Failed to evaluate: Box = 1, Cannot set constant variable Box"));
    EXPECT_EQ("Box", Run("Box"));
    // An operator looks its function up at each evaluation: replacing it changes `+` at once.
    EXPECT_EQ("[1, 2]", Run("keep = math.add; math.add = (a, b)=>{ [a, b] }; 1 + 2"));
    EXPECT_EQ("3", Run("math.add = keep; 1 + 2"));
}

TEST_F(Evaluation, RunawayRecursionEndsWithAnError)
{
    EXPECT_EQ("", Run("loop = { loop }; loop"));
    EXPECT_TRUE(Reported("Stack overflow in script"));
    // Exponential work is cut by the step budget rather than hanging.
    unsigned long budget = script::EvalGuard::GetStepBudget();
    script::EvalGuard::SetStepBudget(100000);
    m_log.clear();
    Run("fork = (n)=>{ fork(n); fork(n) }; fork(1)");
    EXPECT_TRUE(Reported("Script took too many steps"));
    Run("l = [1]; l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]");
    for (int i = 0; i < 4; ++i)
        Run("l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]; l = [l, l]");
    m_errors.clear();
    EXPECT_EQ("", Run("l"));
    EXPECT_TRUE(Reported("Script took too many steps"));
    EXPECT_EQ("", Run("s = \"ab\"; dbl = (t)=>{ dbl(t + t) }; dbl(s)"));
    EXPECT_TRUE(Reported("String too long") || Reported("Script took too many steps"));
    script::EvalGuard::SetStepBudget(budget);
    EXPECT_EQ("2", Run("1 + 1"));
}

TEST_F(Evaluation, ACallNeedsAHeadAndATail)
{
    auto assertion = [](script::ExpressionPtr head, script::CodeBlockPtr tail) -> std::string
    {
        try
        {
            script::FunctionCall call(head, tail);
        }
        catch (BadCoderException& e)
        {
            return e.what();
        }
        return "no exception";
    };
    script::ExpressionPtr name = QLEX_NEW new script::Identifier(nullptr, "f");
    EXPECT_NE(std::string::npos, assertion(nullptr, QLEX_NEW new script::Block()).find("\"head\""));
    EXPECT_NE(std::string::npos, assertion(name, nullptr).find("\"tail\""));
    EXPECT_EQ("no exception", assertion(name, QLEX_NEW new script::Block()));
}
