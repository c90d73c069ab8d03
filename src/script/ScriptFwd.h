#pragma once
// Names of the script classes and their owning pointers, for headers that only pass them along.

#include "util/SharedPtr.h"

#include <vector>

namespace script
{

class Object;
class ClassObject;
class Variable;
class Reflected;
class Scope;
class Closure;
class AbstractFunction;
class Function;
class List;
class Expression;
class CodeBlock;
class Identifier;
class Infix;
class Parser;

typedef util::SharedPtr<Object> ObjectPtr;
typedef std::vector<ObjectPtr> ObjectList;
typedef util::SharedPtr<Variable> VariablePtr;
typedef util::SharedPtr<Expression> ExpressionPtr;
typedef util::SharedPtr<CodeBlock> CodeBlockPtr;
typedef util::SharedPtr<Infix> InfixPtr;
typedef util::SharedPtr<Function> FunctionPtr;
typedef util::SharedPtr<List> ListPtr;
typedef util::SharedPtr<Closure> ClosurePtr;
typedef util::SharedPtr<ClassObject> ClassObjectPtr;

typedef float Float;
typedef int Int;

} // namespace script
