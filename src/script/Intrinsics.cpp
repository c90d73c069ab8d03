#include "script/Intrinsics.h"

#include "script/EvalGuard.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"

#include <climits>
#include <cmath>

namespace script
{

namespace
{
const float PI_FLOAT = 3.1415927f;

[[noreturn]] void Fail(const util::String& text)
{
    QLEX_THROW(ScriptException(text));
}

util::String FailedText(const char* operation, const ObjectPtr& a, const ObjectPtr& b)
{
    return util::String("Failed: ") + operation + "(" + a->ToText() + ", " + b->ToText() + ")";
}

List* AsList(const ObjectPtr& object)
{
    return dynamic_cast<List*>(object.get());
}

ObjectPtr AddStrings(const util::String& a, const util::String& b)
{
    if (a.size() + b.size() > EvalGuard::MAX_STRING_LENGTH)
        Fail("String too long");
    // Copying long strings is work like any other: count it against the script's budget.
    EvalGuard::Tick(1 + (a.size() + b.size()) / EvalGuard::BYTES_PER_STEP);
    return ValueToObject(a + b);
}
} // namespace

// ---------------------------------------------------------------------------------------------------
// Plain arithmetic. Ints wrap on overflow, computed unsigned so that the wrap is defined.

int AddInt(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

int SubInt(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

int MulInt(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

int DivInt(int a, int b)
{
    if (b == 0)
        Fail("Division by zero");
    // The one quotient that overflows wraps like the others.
    if (a == INT_MIN && b == -1)
        return INT_MIN;
    return a / b;
}

float AddFloat(float a, float b)
{
    return a + b;
}

float SubFloat(float a, float b)
{
    return a - b;
}

float MulFloat(float a, float b)
{
    return a * b;
}

float DivFloat(float a, float b)
{
    return a / b;
}

// ---------------------------------------------------------------------------------------------------

ObjectPtr NumFun(ObjectPtr a, ObjectPtr b, const IntFunction& intFunction, const FloatFunction& floatFunction,
                 const util::String& name)
{
    if (IntValue* ia = dynamic_cast<IntValue*>(a.get()))
    {
        if (IntValue* ib = dynamic_cast<IntValue*>(b.get()))
            return ValueToObject(intFunction(ia->Get(), ib->Get()));
        if (FloatValue* fb = dynamic_cast<FloatValue*>(b.get()))
            return ValueToObject(floatFunction(static_cast<float>(ia->Get()), fb->Get()));
        Fail("Cannot " + name + " an int to a non-number");
    }
    if (FloatValue* fa = dynamic_cast<FloatValue*>(a.get()))
        return ValueToObject(floatFunction(fa->Get(), ObjectToValue<float>(b)));
    return nullptr;
}

ObjectPtr ListRecurse(ObjectPtr a, ObjectPtr b, const BinaryFunction& function, const util::String& name)
{
    List* la = AsList(a);
    if (!la)
        return nullptr;
    List* lb = AsList(b);
    if (!lb)
        Fail("Cannot " + name + " list and no-list");
    if (la->Size() != lb->Size())
        Fail("Cannot " + name + " lists of different size");
    util::SharedPtr<List> result = QLEX_NEW new List();
    for (size_t i = 0; i < la->Size(); ++i)
    {
        EvalGuard::Tick();
        result->Add(function((*la)[i], (*lb)[i]));
    }
    return result;
}

ObjectPtr PerElement(ObjectPtr list, ObjectPtr other, const BinaryFunction& function)
{
    List* elements = AsList(list);
    QLEX_ASSERT(elements);
    util::SharedPtr<List> result = QLEX_NEW new List();
    for (const ObjectPtr& element : elements->GetElements())
    {
        EvalGuard::Tick();
        result->Add(function(element, other));
    }
    return result;
}

ObjectPtr Add(ObjectPtr a, ObjectPtr b)
{
    if (StringValue* sa = dynamic_cast<StringValue*>(a.get()))
        return AddStrings(sa->Get(), b->ToText());
    if (StringValue* sb = dynamic_cast<StringValue*>(b.get()))
        return AddStrings(a->ToText(), sb->Get());
    if (ObjectPtr result = NumFun(a, b, AddInt, AddFloat, "add"))
        return result;
    if (ObjectPtr result = ListRecurse(a, b, Add, "add"))
        return result;
    Fail(FailedText("Add", a, b));
}

ObjectPtr Subtract(ObjectPtr a, ObjectPtr b)
{
    if (ObjectPtr result = NumFun(a, b, SubInt, SubFloat, "subtract"))
        return result;
    if (ObjectPtr result = ListRecurse(a, b, Subtract, "subtract"))
        return result;
    Fail(FailedText("Subtract", a, b));
}

ObjectPtr Multiply(ObjectPtr a, ObjectPtr b)
{
    if (AsList(a) && AsList(b))
        return ListRecurse(a, b, Multiply, "multiply");
    if (AsList(a))
        return PerElement(a, b, Multiply);
    if (AsList(b))
        return PerElement(b, a, Multiply);
    if (ObjectPtr result = NumFun(a, b, MulInt, MulFloat, "multiply"))
        return result;
    Fail(FailedText("Multiply", a, b));
}

ObjectPtr Divide(ObjectPtr a, ObjectPtr b)
{
    if (AsList(a) && AsList(b))
        return ListRecurse(a, b, Divide, "divide");
    if (AsList(a))
        return PerElement(a, b, Divide);
    if (ObjectPtr result = NumFun(a, b, DivInt, DivFloat, "divide"))
        return result;
    Fail(FailedText("Divide", a, b));
}

ObjectPtr UnaryFloat(float (*function)(float), ObjectPtr x)
{
    if (List* list = AsList(x))
    {
        util::SharedPtr<List> result = QLEX_NEW new List();
        for (const ObjectPtr& element : list->GetElements())
        {
            EvalGuard::Tick();
            result->Add(UnaryFloat(function, element));
        }
        return result;
    }
    return ValueToObject(function(ObjectToValue<float>(x)));
}

bool Negator(bool b)
{
    return !b;
}

template <class R, class A> std::function<ObjectPtr(ObjectPtr)> UnaryWrapper(R (*function)(A))
{
    return [function](ObjectPtr x) { return ValueToObject(function(ObjectToValue<A>(x))); };
}

ObjectPtr GetPi()
{
    return ValueToObject(PI_FLOAT);
}

// ---------------------------------------------------------------------------------------------------

void AddBinFun(Parser& parser, const ClosurePtr& closure, const ExpressionPtr& mathIdentifier,
               const util::String& name, const util::String& symbol,
               const std::function<ObjectPtr(ObjectPtr, ObjectPtr)>& function)
{
    closure->AddVariable2(name, QLEX_NEW new IntrinsicCmd2(function));
    ExpressionPtr functionExpression = QLEX_NEW new Identifier(mathIdentifier, name);
    parser.AddInfix(
        QLEX_NEW new Infix(BINARY_OPERATOR_PRECEDENCE, ASSOC_LEFT, {"", symbol, ""}, functionExpression));
}

void AddNegeator(Parser& parser, const ClosurePtr& closure, const ExpressionPtr& mathIdentifier)
{
    closure->AddVariable2("negate", QLEX_NEW new IntrinsicCmd1(UnaryWrapper<bool, bool>(Negator)));
    ExpressionPtr functionExpression = QLEX_NEW new Identifier(mathIdentifier, "negate");
    parser.AddInfix(QLEX_NEW new Infix(NEGATION_PRECEDENCE, ASSOC_RIGHT, {"!", ""}, functionExpression));
}

void AddUnary(const ClosurePtr& closure, const util::String& name, float (*function)(float))
{
    closure->AddVariable2(
        name, QLEX_NEW new IntrinsicCmd1([function](ObjectPtr x) { return UnaryFloat(function, x); }));
}

void AddIntrinsics(Parser& parser)
{
    // An anonymous closure: its name, "[closure]", is what a failed lookup in `math` reports.
    ClosurePtr math = QLEX_NEW new Closure();
    parser.GetRootClosure()->AddVariable2("math", math);
    ExpressionPtr mathIdentifier = QLEX_NEW new Identifier(nullptr, "math");

    AddBinFun(parser, math, mathIdentifier, "add", "+", Add);
    AddBinFun(parser, math, mathIdentifier, "subtract", "-", Subtract);
    AddBinFun(parser, math, mathIdentifier, "multiply", "*", Multiply);
    AddBinFun(parser, math, mathIdentifier, "divide", "/", Divide);
    AddNegeator(parser, math, mathIdentifier);

    AddUnary(math, "sin", std::sin);
    AddUnary(math, "cos", std::cos);
    AddUnary(math, "tan", std::tan);
    AddUnary(math, "asin", std::asin);
    AddUnary(math, "acos", std::acos);
    AddUnary(math, "atan", std::atan);
    math->AddVariable2("pi", QLEX_NEW new IntrinsicCmd(GetPi));

    // What scripts print goes to the parser's output function (the console, or standard output).
    Parser* p = &parser;
    parser.GetRootClosure()->AddVariable2("print", QLEX_NEW new IntrinsicCmd1(
                                                       [p](ObjectPtr x) -> ObjectPtr
                                                       {
                                                           p->Print(x->ToText());
                                                           return QLEX_NEW new Void();
                                                       }));
}

} // namespace script
