#pragma once
// A script as a tree. Evaluate runs it in a closure; ToCode prints it back as script text. The printed
// form is the format of configuration and scene files, so its spacing, escapes and numbers are exact.

#include "script/ScriptFwd.h"
#include "util/String.h"

namespace script
{

class Expression : public util::Pointee
{
public:
    virtual ObjectPtr Evaluate(const ClosurePtr& closure) = 0;
    virtual util::String ToCode() const = 0;
};

template <class T> class Literal : public Expression
{
public:
    explicit Literal(const T& value) : m_value(value) {}
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;
    const T& GetValue() const { return m_value; }

private:
    T m_value;
};

class Identifier : public Expression
{
public:
    Identifier(ExpressionPtr owner, const util::String& name);

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

    // The closure itself without an owner expression; else the owner's value, which must be a class
    // object.
    ClassObjectPtr GetOwner(const ClosurePtr& closure) const;
    // Searches the owner and then its owners; "Cannot find identifier <name> in <owner>" if absent.
    ObjectPtr GetValue(const ClosurePtr& closure) const;
    // Writes to the owner's own variable, making it if absent: never to an enclosing closure.
    void SetValue(const ClosurePtr& closure, ObjectPtr object) const;

    const util::String& GetName() const { return m_name; }
    ExpressionPtr GetOwnerExpression() const { return m_owner; }

private:
    ExpressionPtr m_owner;
    util::String m_name;
};

class Assignment : public Expression
{
public:
    Assignment(util::SharedPtr<Identifier> target, ExpressionPtr value);
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

    const util::SharedPtr<Identifier>& GetTarget() const { return m_target; }
    const ExpressionPtr& GetValue() const { return m_value; }

private:
    util::SharedPtr<Identifier> m_target;
    ExpressionPtr m_value;
};

class FunctionCall : public Expression
{
public:
    // `tail` is the argument list.
    FunctionCall(ExpressionPtr head, CodeBlockPtr tail);
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

private:
    ExpressionPtr m_head;
    CodeBlockPtr m_args;
};

class InfixFunctionCall : public Expression
{
public:
    InfixFunctionCall(InfixPtr infix, const std::vector<ExpressionPtr>& args);
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

private:
    InfixPtr m_infix;
    std::vector<ExpressionPtr> m_args;
};

// Statements: each is evaluated in turn, and a failing one is reported while the rest still run.
class CodeBlock : public Expression
{
public:
    void Add(ExpressionPtr expression);
    const std::vector<ExpressionPtr>& GetExpressions() const { return m_expressions; }
    std::vector<ObjectPtr> EvaluateToList(const ClosurePtr& closure);

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

protected:
    util::String JoinedCode(const char* separator) const;

private:
    std::vector<ExpressionPtr> m_expressions;
};

// Parentheses: one value stands for itself, any other count makes a list.
class Block : public CodeBlock
{
public:
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;
};

class ListDeclaration : public CodeBlock
{
public:
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;
};

class FunctionDeclaration : public Expression
{
public:
    FunctionDeclaration(const std::vector<util::String>& argNames, ExpressionPtr body);
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

private:
    std::vector<util::String> m_argNames;
    ExpressionPtr m_body;
};

class InfixDeclaration : public Expression
{
public:
    explicit InfixDeclaration(InfixPtr infix);
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    util::String ToCode() const override;

private:
    InfixPtr m_infix;
};

enum Associativity
{
    ASSOC_LEFT = 0,
    ASSOC_RIGHT = 1
};

// A user-declarable operator: a pattern of keywords and holes, and the function that the holes' values
// are passed to. A lower precedence binds looser.
class Infix : public util::Pointee
{
public:
    // An empty keyword is a hole.
    Infix(double precedence, Associativity associativity, const std::vector<util::String>& keywords,
          ExpressionPtr function);

    double GetPrecedence() const { return m_precedence; }
    Associativity GetAssociativity() const { return m_associativity; }
    const std::vector<util::String>& GetKeywords() const { return m_keywords; }
    ExpressionPtr GetFunction() const { return m_function; }
    unsigned GetArgCount() const { return m_holeCount; }
    // The keywords joined: `_ + _` is named "+".
    util::String GetName() const;
    util::String DeclarationCode() const;

private:
    double m_precedence;
    Associativity m_associativity;
    std::vector<util::String> m_keywords;
    ExpressionPtr m_function;
    unsigned m_holeCount;
};

// `prefix`, then `text` with `prefix` after each line feed but one at the very end.
util::String Indent(const util::String& text, const util::String& prefix);

// A string as a quoted literal with the escapes that read back.
util::String QuoteString(const util::String& text);

} // namespace script
