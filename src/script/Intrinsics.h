#pragma once
// The built-in functions. The language has no operators of its own: + - * / and ! are infix
// declarations that call functions of the closure `math` in the root. All four binary operators share
// one precedence, so a mix of them needs parentheses.

#include "script/Objects.h"

#include <functional>

namespace script
{

const double BINARY_OPERATOR_PRECEDENCE = 2.0;
const double NEGATION_PRECEDENCE = 5.0;

void AddIntrinsics(Parser& parser);

void AddBinFun(Parser& parser, const ClosurePtr& closure, const ExpressionPtr& mathIdentifier,
               const util::String& name, const util::String& symbol,
               const std::function<ObjectPtr(ObjectPtr, ObjectPtr)>& function);
void AddNegeator(Parser& parser, const ClosurePtr& closure, const ExpressionPtr& mathIdentifier);
void AddUnary(const ClosurePtr& closure, const util::String& name, float (*function)(float));

ObjectPtr Add(ObjectPtr a, ObjectPtr b);
ObjectPtr Subtract(ObjectPtr a, ObjectPtr b);
ObjectPtr Multiply(ObjectPtr a, ObjectPtr b);
ObjectPtr Divide(ObjectPtr a, ObjectPtr b);

typedef std::function<int(int, int)> IntFunction;
typedef std::function<float(float, float)> FloatFunction;
typedef std::function<ObjectPtr(ObjectPtr, ObjectPtr)> BinaryFunction;

// Number arithmetic; null when `a` is no number, so that the caller tries its next case.
ObjectPtr NumFun(ObjectPtr a, ObjectPtr b, const IntFunction& intFunction, const FloatFunction& floatFunction,
                 const util::String& name);
// Element by element over two lists of one size; null when `a` is no list.
ObjectPtr ListRecurse(ObjectPtr a, ObjectPtr b, const BinaryFunction& function, const util::String& name);
// A new list of function(element, other).
ObjectPtr PerElement(ObjectPtr list, ObjectPtr other, const BinaryFunction& function);

int AddInt(int a, int b);
int SubInt(int a, int b);
int MulInt(int a, int b);
int DivInt(int a, int b);
float AddFloat(float a, float b);
float SubFloat(float a, float b);
float MulFloat(float a, float b);
float DivFloat(float a, float b);

// Applies a float function to a number, or to each element of (nested) lists.
ObjectPtr UnaryFloat(float (*function)(float), ObjectPtr x);
bool Negator(bool b);
template <class R, class A> std::function<ObjectPtr(ObjectPtr)> UnaryWrapper(R (*function)(A));
ObjectPtr GetPi();

} // namespace script
