#include "script/Expressions.h"

#include "script/ClassObject.h"
#include "script/EvalGuard.h"
#include "script/Reflected.h"
#include "script/ScriptException.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <limits>

namespace script
{

namespace
{
const char* const STATEMENT_SEPARATOR = ";\n";
const char* const ELEMENT_SEPARATOR = ", ";
const char* const FUNCTION_BODY_INDENT = "    ";
} // namespace

// ---------------------------------------------------------------------------------------------------
// Literals

template <class T> ObjectPtr Literal<T>::Evaluate(const ClosurePtr&)
{
    return QLEX_NEW new Value<T>(m_value);
}

template <> util::String Literal<bool>::ToCode() const
{
    return util::ToString(m_value);
}

template <> util::String Literal<int>::ToCode() const
{
    return util::ToString(m_value);
}

template <> util::String Literal<float>::ToCode() const
{
    if (m_value > std::numeric_limits<float>::max())
        return "+inf";
    if (m_value < std::numeric_limits<float>::lowest())
        return "-inf";
    util::String text = util::ToString(m_value);
    bool special = util::iequals(text, "+inf") || util::iequals(text, "-inf") || util::iequals(text, "NaN");
    // A float must read back as a float: 2 prints as 2.0, while 1e+20 already does.
    if (!special && text.find_first_of(".eE") == util::String::npos)
        text += ".0";
    return text;
}

template <> util::String Literal<util::String>::ToCode() const
{
    return QuoteString(m_value);
}

template class Literal<bool>;
template class Literal<int>;
template class Literal<float>;
template class Literal<util::String>;

util::String QuoteString(const util::String& text)
{
    util::String code = "\"";
    for (char c : text)
    {
        switch (c)
        {
        case '\n':
            code += "\\n";
            break;
        case '\t':
            code += "\\t";
            break;
        case '"':
            code += "\\\"";
            break;
        case '\\':
            code += "\\\\";
            break;
        default:
            code += c;
            break;
        }
    }
    return code + "\"";
}

// ---------------------------------------------------------------------------------------------------
// Identifier

Identifier::Identifier(ExpressionPtr owner, const util::String& name) : m_owner(owner), m_name(name) {}

ClassObjectPtr Identifier::GetOwner(const ClosurePtr& closure) const
{
    if (!m_owner)
        return closure;
    ClassObjectPtr owner = util::dynamic_pointer_cast<ClassObject>(m_owner->Evaluate(closure));
    QLEX_DATA_ASSERT(owner);
    return owner;
}

ObjectPtr Identifier::GetValue(const ClosurePtr& closure) const
{
    ClassObjectPtr owner = GetOwner(closure);
    ObjectPtr value = owner->LookupObject(m_name);
    if (!value)
        QLEX_THROW(ScriptException("Cannot find identifier " + m_name + " in " + owner->ToText()));
    return value;
}

void Identifier::SetValue(const ClosurePtr& closure, ObjectPtr object) const
{
    ClassObjectPtr owner = GetOwner(closure);
    VariablePtr var = owner->GetVariable(m_name);
    if (!var)
    {
        owner->AddVariable(QLEX_NEW new Variable(m_name, object, false));
        return;
    }
    if (var->IsConstant())
        QLEX_THROW(ScriptException("Cannot set constant variable " + m_name));
    var->SetObject(object);
}

ObjectPtr Identifier::Evaluate(const ClosurePtr& closure)
{
    return ExpandObject(GetValue(closure));
}

util::String Identifier::ToCode() const
{
    if (!m_owner)
        return m_name;
    return m_owner->ToCode() + "." + m_name;
}

// ---------------------------------------------------------------------------------------------------
// Assignment

Assignment::Assignment(util::SharedPtr<Identifier> target, ExpressionPtr value)
    : m_target(target), m_value(value)
{
}

ObjectPtr Assignment::Evaluate(const ClosurePtr& closure)
{
    ObjectPtr value = m_value->Evaluate(closure);
    m_target->SetValue(closure, value);
    return value;
}

util::String Assignment::ToCode() const
{
    return m_target->ToCode() + " = " + m_value->ToCode();
}

// ---------------------------------------------------------------------------------------------------
// Calls

FunctionCall::FunctionCall(ExpressionPtr head, CodeBlockPtr tail) : m_head(head), m_args(tail)
{
    QLEX_ASSERT(head);
    QLEX_ASSERT(tail);
}

ObjectPtr FunctionCall::Evaluate(const ClosurePtr& closure)
{
    EvalGuard::Tick();
    // A name followed by empty brackets, `System.exit()`, calls what the name holds once, just as the
    // name alone does; expanding it first would call a command and then call its result.
    Identifier* name = dynamic_cast<Identifier*>(m_head.get());
    ObjectPtr head =
        name && m_args->GetExpressions().empty() ? name->GetValue(closure) : m_head->Evaluate(closure);
    util::SharedPtr<AbstractFunction> function = util::dynamic_pointer_cast<AbstractFunction>(head);
    if (!function)
        QLEX_THROW(ScriptException("Function call applied to non-function: " + ToCode()));
    ObjectList args;
    {
        util::ScopeProfiler profile("Argument eval");
        for (const ExpressionPtr& argument : m_args->GetExpressions())
            args.push_back(argument->Evaluate(closure));
    }
    util::ScopeProfiler profile("Actual call");
    return function->Call(args);
}

util::String FunctionCall::ToCode() const
{
    util::String head = m_head->ToCode();
    util::String args = m_args->ToCode();
    if (!util::starts_with(args, "("))
        return head + " " + args;
    return head + args;
}

InfixFunctionCall::InfixFunctionCall(InfixPtr infix, const std::vector<ExpressionPtr>& args)
    : m_infix(infix), m_args(args)
{
    QLEX_ASSERT(m_infix->GetArgCount() == args.size());
}

ObjectPtr InfixFunctionCall::Evaluate(const ClosurePtr& closure)
{
    CodeBlockPtr block = QLEX_NEW new Block();
    for (const ExpressionPtr& argument : m_args)
        block->Add(argument);
    util::SharedPtr<FunctionCall> call = QLEX_NEW new FunctionCall(m_infix->GetFunction(), block);
    return call->Evaluate(closure);
}

util::String InfixFunctionCall::ToCode() const
{
    util::String code;
    size_t next = 0;
    for (const util::String& keyword : m_infix->GetKeywords())
    {
        if (!keyword.empty())
        {
            code += " " + keyword + " ";
            continue;
        }
        if (next >= m_args.size())
            QLEX_THROW(ScriptException("Too few arguments to infix function " + m_infix->GetName()));
        code += m_args[next++]->ToCode();
    }
    if (next != m_args.size())
        QLEX_THROW(ScriptException("Too many arguments to infix function " + m_infix->GetName()));
    return code;
}

// ---------------------------------------------------------------------------------------------------
// Blocks

void CodeBlock::Add(ExpressionPtr expression)
{
    m_expressions.push_back(expression);
}

std::vector<ObjectPtr> CodeBlock::EvaluateToList(const ClosurePtr& closure)
{
    std::vector<ObjectPtr> results;
    results.reserve(m_expressions.size());
    for (const ExpressionPtr& expression : m_expressions)
    {
        EvalGuard::Tick();
        results.push_back(expression->Evaluate(closure));
    }
    return results;
}

ObjectPtr CodeBlock::Evaluate(const ClosurePtr& closure)
{
    ObjectPtr result = QLEX_NEW new Void();
    for (const ExpressionPtr& expression : m_expressions)
    {
        bool topLevel = EvalGuard::IsTopLevel();
        if (topLevel)
            EvalGuard::NewStatement();
        try
        {
            EvalGuard::Tick();
            result = expression->Evaluate(closure);
        }
        catch (std::exception& e)
        {
            // One bad statement doesn't stop the others: a scene file with an error still loads the rest.
            CatchException(e, QLEX_SITE);
            util::String code;
            try
            {
                code = expression ? expression->ToCode() : util::String();
            }
            catch (std::exception&)
            {
            }
            Log(logging::Error, "Failed to evaluate: " + code + ", " + e.what());
            result = QLEX_NEW new ErrorObject();
            // Inside a function, failures spend the budget, so that a runaway script unwinds at last.
            if (!topLevel)
                EvalGuard::Tick(EvalGuard::FAILURE_COST);
        }
    }
    return result;
}

util::String CodeBlock::JoinedCode(const char* separator) const
{
    util::String code;
    for (const ExpressionPtr& expression : m_expressions)
    {
        util::String part;
        try
        {
            part = expression->ToCode();
        }
        catch (std::exception& e)
        {
            Log(logging::Debug, util::String("Error: ") + e.what() + "\n" + QLEX_SITE + "\n");
            continue;
        }
        catch (...)
        {
            Log(logging::Debug, "Fail\n" + QLEX_SITE + "\n");
            continue;
        }
        if (part.empty())
            continue;
        code += part;
        code += separator;
    }
    if (util::ends_with(code, separator))
        code.resize(code.size() - std::char_traits<char>::length(separator));
    return code;
}

util::String CodeBlock::ToCode() const
{
    return JoinedCode(STATEMENT_SEPARATOR);
}

ObjectPtr Block::Evaluate(const ClosurePtr& closure)
{
    std::vector<ObjectPtr> results = EvaluateToList(closure);
    if (results.size() == 1)
        return results.front();
    return QLEX_NEW new List(results);
}

util::String Block::ToCode() const
{
    return "(" + JoinedCode(ELEMENT_SEPARATOR) + ")";
}

ObjectPtr ListDeclaration::Evaluate(const ClosurePtr& closure)
{
    util::ScopeProfiler profile("ListDeclaration::Evaluate");
    return QLEX_NEW new List(EvaluateToList(closure));
}

util::String ListDeclaration::ToCode() const
{
    return "[" + JoinedCode(ELEMENT_SEPARATOR) + "]";
}

// ---------------------------------------------------------------------------------------------------
// Declarations

FunctionDeclaration::FunctionDeclaration(const std::vector<util::String>& argNames, ExpressionPtr body)
    : m_argNames(argNames), m_body(body)
{
}

ObjectPtr FunctionDeclaration::Evaluate(const ClosurePtr& closure)
{
    return QLEX_NEW new Function(m_argNames, m_body, closure);
}

util::String FunctionDeclaration::ToCode() const
{
    util::String body = m_body->ToCode();
    if (body.find('\n') != util::String::npos)
        body = "\n" + Indent(body, FUNCTION_BODY_INDENT) + "\n";
    if (m_argNames.empty())
        return "{" + body + "}";
    return "(" + util::Join(m_argNames, ", ") + ")=>{" + body + "}";
}

InfixDeclaration::InfixDeclaration(InfixPtr infix) : m_infix(infix) {}

ObjectPtr InfixDeclaration::Evaluate(const ClosurePtr& closure)
{
    closure->AddInfix(m_infix);
    return QLEX_NEW new Void();
}

util::String InfixDeclaration::ToCode() const
{
    return m_infix->DeclarationCode();
}

// ---------------------------------------------------------------------------------------------------
// Infix

Infix::Infix(double precedence, Associativity associativity, const std::vector<util::String>& keywords,
             ExpressionPtr function)
    : m_precedence(precedence), m_associativity(associativity), m_keywords(keywords), m_function(function),
      m_holeCount(0)
{
    for (const util::String& keyword : m_keywords)
    {
        if (keyword.empty())
            ++m_holeCount;
    }
}

util::String Infix::GetName() const
{
    return util::Join(m_keywords, "");
}

util::String Infix::DeclarationCode() const
{
    util::String code = "infix " + util::ToString(m_precedence) + " ";
    code += m_associativity == ASSOC_LEFT ? "left" : "right";
    code += ": ";
    for (const util::String& keyword : m_keywords)
        code += (keyword.empty() ? util::String("_") : keyword) + " ";
    return code + "=> " + m_function->ToCode() + ";\n";
}

// ---------------------------------------------------------------------------------------------------

util::String Indent(const util::String& text, const util::String& prefix)
{
    util::String result = prefix;
    for (size_t i = 0; i < text.size(); ++i)
    {
        result += text[i];
        if (text[i] == '\n' && i + 1 != text.size())
            result += prefix;
    }
    return result;
}

} // namespace script
