#include "ScriptFixture.h"

#include "script/Expressions.h"
#include "script/Intrinsics.h"
#include "script/Reflected.h"

namespace
{
// A reflected object with one command of each kind.
class Gadget : public script::Reflected
{
public:
    explicit Gadget(const std::string& name) : script::Reflected(name)
    {
        AddMemberCmd("poke", &Gadget::Poke);
        AddMemberCmd("count", &Gadget::Count);
        AddCmd1("twice", [](script::ObjectPtr x) { return script::Multiply(x, script::ValueToObject(2)); });
    }
    void Poke() { ++m_pokes; }
    int Count() const { return m_pokes; }

    int m_pokes = 0;
};
} // namespace

class Reflection : public ScriptFixture
{
protected:
    util::SharedPtr<Gadget> AddGadget(const std::string& name)
    {
        util::SharedPtr<Gadget> gadget = QLEX_NEW new Gadget(name);
        Root()->AddReflectedChild(gadget);
        return gadget;
    }
};

TEST_F(Reflection, ChildrenWithOneNameAreNumbered)
{
    util::SharedPtr<Gadget> a = AddGadget("Gad");
    util::SharedPtr<Gadget> b = AddGadget("Gad");
    util::SharedPtr<Gadget> c = AddGadget("Gad");
    EXPECT_EQ("Gad", a->GetReflectedName());
    EXPECT_EQ("Gad_2", b->GetReflectedName());
    EXPECT_EQ("Gad_3", c->GetReflectedName());
    EXPECT_EQ("Gad_2", Run("Gad_2"));
    EXPECT_EQ(Root().get(), b->GetOwner());

    // Moving a child to another parent takes it out of the first.
    a->AddReflectedChild(b);
    EXPECT_FALSE(Root()->HasVariable("Gad_2"));
    EXPECT_EQ("Gad_2", Run("Gad.Gad_2"));
    EXPECT_EQ(a.get(), b->GetOwner());
}

TEST_F(Reflection, CommandsRunWhenNamed)
{
    util::SharedPtr<Gadget> g = AddGadget("Gad");
    Run("Gad.poke");
    Run("Gad.poke()");
    EXPECT_EQ(2, g->m_pokes);
    EXPECT_EQ("2", Run("Gad.count"));
    EXPECT_EQ("intrinsic function", Run("Gad.twice"));
    EXPECT_EQ("[2, 4]", Run("Gad.twice [1, 2]"));
    EXPECT_EQ("", Run("Gad.twice(1, 2)"));
    EXPECT_TRUE(Reported("args.size() == 1"));
    g->Report("stat", 2.5f);
    g->Report("stat", 3.5f);
    EXPECT_EQ("3.5", Run("Gad.stat"));
}

TEST_F(Reflection, RemovingAVariableClearsItsOwners)
{
    util::SharedPtr<Gadget> g = AddGadget("Gad");
    script::VariablePtr var = Root()->GetVariable("Gad");
    ASSERT_TRUE(var);
    Root()->RemoveVariable("Gad");
    EXPECT_EQ(nullptr, var->GetOwner());
    EXPECT_EQ(nullptr, g->GetOwner());
    Root()->RemoveVariable("Gad"); // absent: nothing happens
}

TEST_F(Reflection, LookupsClimbTheOwnerChain)
{
    util::SharedPtr<Gadget> outer = AddGadget("Outer");
    util::SharedPtr<Gadget> inner = QLEX_NEW new Gadget("Inner");
    outer->AddReflectedChild(inner);
    Run("rootValue = 4");
    EXPECT_EQ("4", Run("Outer.Inner.rootValue"));
    EXPECT_EQ("3.14159274", Run("Outer.Inner.math.pi"));
    EXPECT_THROW(inner->LookupVariable("nowhere"), script::ScriptException);
    EXPECT_FALSE(inner->LookupObject("nowhere"));

    // Names print as the path from the root; the root adds nothing.
    EXPECT_EQ("Outer.Inner", inner->AsIdentifier()->ToCode());
    EXPECT_EQ("Outer", outer->AsIdentifier()->ToCode());
    EXPECT_FALSE(Root()->AsIdentifier());
    Run("Outer.Inner.v = 1");
    EXPECT_EQ("Outer.Inner.v = 1", Root()->ToExpression()->ToCode().substr(0, 17));
}

TEST_F(Reflection, ClassObjectsStayWhereTheyAreAndNeverFormCycles)
{
    util::SharedPtr<Gadget> g = AddGadget("Gad");
    Run("alias = Gad; alias = 5");
    EXPECT_EQ(Root().get(), g->GetOwner());
    Run("Gad.me = Gad; Gad.x = 1");
    EXPECT_EQ(Root().get(), g->GetOwner());
    EXPECT_EQ("1", Run("Gad.me.me.x"));
    EXPECT_EQ("", Run("Gad.nothere"));
    EXPECT_TRUE(Reported("Cannot find identifier nothere in Gad"));
    // A reference to a class object isn't saved; the object's own variables are, once.
    EXPECT_EQ("Gad.x = 1", Root()->GetVariable("Gad")->ToExpression()->ToCode());
}

TEST_F(Reflection, InnerScopesShadowOuterInfixes)
{
    util::SharedPtr<script::Scope> outer = QLEX_NEW new script::Scope("outer");
    util::SharedPtr<script::Scope> inner = QLEX_NEW new script::Scope("inner", outer);
    auto infix = [](double precedence, const char* word)
    {
        return util::SharedPtr<script::Infix>(QLEX_NEW new script::Infix(
            precedence, script::ASSOC_LEFT, {"", word, ""}, QLEX_NEW new script::Identifier(nullptr, word)));
    };
    script::InfixPtr outerPlus = infix(2.0, "+");
    script::InfixPtr innerPlus = infix(2.0, "+");
    outer->AddInfix(outerPlus);
    outer->AddInfix(infix(2.0, "*"));
    inner->AddInfix(innerPlus);
    EXPECT_EQ(innerPlus, inner->GetInfix({"+", "a"}));
    EXPECT_EQ(outerPlus, outer->GetInfix({"+"}));
    EXPECT_FALSE(inner->GetInfix({"-"}));
    EXPECT_THROW(outer->GetInfix({"+", "*"}), script::ScriptException);
    // A strictly looser outer infix wins over the inner one.
    outer->AddInfix(infix(1.0, "?"));
    EXPECT_EQ("?", inner->GetInfix({"+", "?"})->GetName());
}

TEST_F(Reflection, CompletionFollowsDottedNames)
{
    util::SharedPtr<Gadget> g = AddGadget("Gizmo");
    g->AddVariable2("speed", script::ValueToObject(1));
    g->AddVariable2("spin", script::ValueToObject(1));
    g->AddVariable2("Spot", script::ValueToObject(1));

    std::string text = "x = giz";
    EXPECT_EQ((std::vector<std::string>{"Gizmo"}), m_parser->Expand(text));
    EXPECT_EQ("x = Gizmo.", text);

    text = "Gizmo.sp";
    EXPECT_EQ(3u, m_parser->Expand(text).size());
    EXPECT_EQ("Gizmo.sp", text);

    text = "Gizmo.spe";
    m_parser->Expand(text);
    EXPECT_EQ("Gizmo.speed", text);

    text = "Gizmo.q";
    EXPECT_TRUE(m_parser->Expand(text).empty());
    EXPECT_EQ("Gizmo.q", text);

    text = "Nothing.sp";
    EXPECT_TRUE(m_parser->Expand(text).empty());
}
