#pragma once
// The interpreter of the system's script language. Scene files, configuration files and the console
// all pass through it. Text is tokenized, read as a flat list of terms per expression, split by the
// infix functions declared in scope, and evaluated in the root closure.

#include "script/Expressions.h"
#include "script/Reflected.h"
#include "script/Tokenizer.h"
#include "util/Singleton.h"

#include <functional>
#include <set>

namespace script
{

class Parser : public util::Pointee, public util::Singleton<Parser>
{
public:
    typedef std::function<void(const util::String&)> TextFunction;

    Parser();
    ~Parser() override;

    // Null after reporting an error through the error function.
    CodeBlockPtr Parse(const util::String& text);
    CodeBlockPtr Parse(const TokenList& tokens);

    // Evaluates in the root closure, then Update(). Errors are reported and give an ErrorObject.
    ObjectPtr Execute(ExpressionPtr expression);
    ObjectPtr Execute(const TokenList& tokens);
    ObjectPtr Execute(const util::String& text);
    // What the console shows: empty for nothing or a bad object, else the value's text.
    util::String ExecuteToString(const util::String& text);

    // Runs a configuration file; a file that can't be read is a warning, never a failure.
    void LoadConfig(const util::String& path);
    // Writes the whole namespace as assignments; writes nothing when there is nothing to save.
    void SaveConfig(const util::String& path);
    util::String ToCode();

    // Recalculates bound attributes, then polls those tied to outside values.
    void Update();

    void AddInfix(InfixPtr infix);
    ClosurePtr GetRootClosure() const { return m_rootClosure; }
    util::SharedPtr<Scope> GetRootScope() const { return m_rootScope; }

    // Console completion of the dotted name at the end of `text`; returns the candidates.
    std::vector<util::String> Expand(util::String& text);

    // Receives the text of each parse and evaluation error; logs at level Error unless replaced.
    void SetErrorFunction(const TextFunction& function) { m_errorFunction = function; }
    // Receives what scripts print; logs at level Info unless replaced.
    void SetOutputFunction(const TextFunction& function) { m_outputFunction = function; }
    void Print(const util::String& text);

private:
    typedef std::vector<ExpressionPtr> TermList;
    typedef TermList::const_iterator TermIt;

    CodeBlockPtr ParseCodeBlock(const util::SharedPtr<Scope>& scope, TokenIt& it);
    std::vector<ExpressionPtr> ParseExpressionList(const util::SharedPtr<Scope>& scope, TokenIt& it);
    ExpressionPtr ParseExpression(const util::SharedPtr<Scope>& scope, TokenIt& it);
    ExpressionPtr ParseExpression(TokenPos pos, const util::SharedPtr<Scope>& scope, TermIt begin,
                                  TermIt end);
    ExpressionPtr ParseInfixDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it);
    ExpressionPtr ParseFunctionDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it);
    ExpressionPtr ParseBlock(const util::SharedPtr<Scope>& scope, TokenIt& it);
    ExpressionPtr ParseListDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it);
    void FindFunctionOpeners(const TokenList& tokens);
    bool IsFunctionDeclaration(TokenIt it) const;
    void SwallowToken(TokenIt& it, const char* text);
    bool AtEnd(TokenIt it) const { return it == m_tokenEnd; }
    bool AtBlockEnder(TokenIt it) const;
    bool AtStatementEnder(TokenIt it) const;

    void ReportError(const util::String& text);

    ClosurePtr m_rootClosure;
    util::SharedPtr<Scope> m_rootScope;
    TextFunction m_errorFunction;
    TextFunction m_outputFunction;
    TokenIt m_tokenEnd;
    TokenIt m_tokenBegin;
    unsigned m_parseDepth = 0;
    // For each token of the text being parsed: an opening bracket whose closing one is followed by "=>".
    std::vector<bool> m_functionOpeners;
};

} // namespace script
