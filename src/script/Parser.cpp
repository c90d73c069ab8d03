#include "script/Parser.h"

#include "logging/Log.h"
#include "script/Attributes.h"
#include "script/EvalGuard.h"
#include "script/Intrinsics.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <cctype>

namespace script
{

namespace
{
const char* const FUNCTION_SCOPE_NAME = "[function scope]";

[[noreturn]] void ParserAssert(const Token& token, const util::String& message)
{
    QLEX_THROW(
        ParseException("line " + util::ToString(token.pos.line) + " '" + token.text + "': " + message));
}

[[noreturn]] void ParserAssert(TokenPos pos, const util::String& message)
{
    QLEX_THROW(ParseException("line " + util::ToString(pos.line) + ": " + message));
}

[[noreturn]] void ParserAssert(const util::String& message)
{
    QLEX_THROW(ScriptException(message));
}

// Counts one level of nesting for as long as it lives; deep text is refused before the stack runs out.
class DepthGuard
{
public:
    DepthGuard(unsigned& depth, TokenPos pos) : m_depth(depth)
    {
        if (m_depth >= EvalGuard::MAX_PARSE_DEPTH)
            ParserAssert(pos, "Expression nested too deeply");
        ++m_depth;
    }
    ~DepthGuard() { --m_depth; }

private:
    unsigned& m_depth;
};

bool IsIdentifierChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.';
}
} // namespace

Parser::Parser()
    : m_rootClosure(QLEX_NEW new Closure(Reflected::RootName)),
      m_rootScope(QLEX_NEW new Scope(RootScopeName)),
      m_errorFunction([](const util::String& text) { LogWarning(text); }),
      m_outputFunction([](const util::String& text) { Log(logging::Info, text); })
{
    AddIntrinsics(*this);
}

Parser::~Parser() = default;

void Parser::ReportError(const util::String& text)
{
    if (m_errorFunction)
        m_errorFunction(text);
}

void Parser::Print(const util::String& text)
{
    if (m_outputFunction)
        m_outputFunction(text);
}

// ---------------------------------------------------------------------------------------------------
// Parsing

CodeBlockPtr Parser::Parse(const util::String& text)
{
    TokenList tokens;
    try
    {
        tokens = Tokenizer::Tokenize(text);
    }
    catch (TokenException& e)
    {
        CatchException(e, QLEX_SITE);
        ReportError(util::String("Tokenizer error: ") + e.what());
        return nullptr;
    }
    return Parse(tokens);
}

CodeBlockPtr Parser::Parse(const TokenList& tokens)
{
    try
    {
        m_tokenBegin = tokens.begin();
        m_tokenEnd = tokens.end();
        m_parseDepth = 0;
        FindFunctionOpeners(tokens);
        TokenIt it = tokens.begin();
        CodeBlockPtr block = ParseCodeBlock(m_rootScope, it);
        if (it != m_tokenEnd)
            ParserAssert(tokens.front().pos, "Unexpected token: " + it->text);
        return block;
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        ReportError(util::String("Parse error: ") + e.what());
        return nullptr;
    }
}

bool Parser::AtBlockEnder(TokenIt it) const
{
    return !AtEnd(it) && (it->Is(")") || it->Is("}") || it->Is("]"));
}

bool Parser::AtStatementEnder(TokenIt it) const
{
    return AtBlockEnder(it) || (!AtEnd(it) && (it->Is(";") || it->Is(",")));
}

void Parser::SwallowToken(TokenIt& it, const char* text)
{
    if (AtEnd(it) || !it->Is(text))
    {
        TokenPos pos = AtEnd(it) ? (it == m_tokenBegin ? TokenPos() : (it - 1)->pos) : it->pos;
        ParserAssert(pos, util::String("Missing ") + text);
    }
    ++it;
}

CodeBlockPtr Parser::ParseCodeBlock(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    CodeBlockPtr block = QLEX_NEW new CodeBlock();
    while (!AtEnd(it) && !AtBlockEnder(it))
    {
        block->Add(ParseExpression(scope, it));
        if (!AtEnd(it) && !AtBlockEnder(it))
            SwallowToken(it, ";");
    }
    return block;
}

std::vector<ExpressionPtr> Parser::ParseExpressionList(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    std::vector<ExpressionPtr> list;
    while (!AtEnd(it) && !AtBlockEnder(it))
    {
        list.push_back(ParseExpression(scope, it));
        if (!AtEnd(it) && !AtBlockEnder(it))
            SwallowToken(it, ",");
    }
    return list;
}

ExpressionPtr Parser::ParseBlock(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    SwallowToken(it, "(");
    util::SharedPtr<Block> block = QLEX_NEW new Block();
    for (const ExpressionPtr& expression : ParseExpressionList(scope, it))
        block->Add(expression);
    SwallowToken(it, ")");
    return block;
}

ExpressionPtr Parser::ParseListDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    SwallowToken(it, "[");
    util::SharedPtr<ListDeclaration> list = QLEX_NEW new ListDeclaration();
    for (const ExpressionPtr& expression : ParseExpressionList(scope, it))
        list->Add(expression);
    SwallowToken(it, "]");
    return list;
}

void Parser::FindFunctionOpeners(const TokenList& tokens)
{
    // One pass with a stack of open brackets: asking at each bracket would rescan the rest of the text, and
    // deeply nested text would cost the square of its length.
    m_functionOpeners.assign(tokens.size(), false);
    std::vector<size_t> open;
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        if (tokens[i].Is("("))
            open.push_back(i);
        else if (tokens[i].Is(")") && !open.empty())
        {
            m_functionOpeners[open.back()] = i + 1 < tokens.size() && tokens[i + 1].Is("=>");
            open.pop_back();
        }
    }
}

bool Parser::IsFunctionDeclaration(TokenIt it) const
{
    if (AtEnd(it) || !it->Is("("))
        return false;
    const size_t index = static_cast<size_t>(it - m_tokenBegin);
    return index < m_functionOpeners.size() && m_functionOpeners[index];
}

ExpressionPtr Parser::ParseFunctionDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    util::SharedPtr<Scope> functionScope = QLEX_NEW new Scope(FUNCTION_SCOPE_NAME, scope);
    std::vector<util::String> argNames;
    if (!AtEnd(it) && it->Is("("))
    {
        ++it;
        while (m_tokenEnd - it >= 2 && !it->Is(")"))
        {
            if (it->type != TOKEN_WORD)
                ParserAssert(*it, "Argument list must consist of Identifiers");
            argNames.push_back(it->text);
            if (!functionScope->HasVariable(it->text))
                functionScope->AddVariable2(it->text, QLEX_NEW new Unbound());
            ++it;
            if (!AtEnd(it) && it->Is(","))
                ++it;
            else
                break;
        }
        SwallowToken(it, ")");
        SwallowToken(it, "=>");
    }
    SwallowToken(it, "{");
    CodeBlockPtr body = ParseCodeBlock(functionScope, it);
    SwallowToken(it, "}");
    return QLEX_NEW new FunctionDeclaration(argNames, body);
}

ExpressionPtr Parser::ParseInfixDeclaration(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    SwallowToken(it, "infix");
    if (AtEnd(it))
        ParserAssert("Unexpected end of expression");
    double precedence = util::FromString<float>(it->text);
    ++it;
    if (AtEnd(it) || (!it->Is("left") && !it->Is("right")))
        ParserAssert(AtEnd(it) ? (it - 1)->pos : it->pos, "Bad infix function");
    Associativity associativity = it->Is("left") ? ASSOC_LEFT : ASSOC_RIGHT;
    TokenPos pos = it->pos;
    ++it;
    SwallowToken(it, ":");

    std::vector<util::String> keywords;
    bool hasKeyword = false;
    for (; !AtEnd(it) && !it->Is("=>"); ++it)
    {
        bool hole = it->Is("_");
        // Two holes side by side could never be told apart, and a pattern without a keyword would match
        // every expression.
        if (hole && !keywords.empty() && keywords.back().empty())
            ParserAssert(*it, "Bad infix function");
        hasKeyword = hasKeyword || !hole;
        keywords.push_back(hole ? util::String() : it->text);
    }
    if (!hasKeyword)
        ParserAssert(pos, "Bad infix function");
    SwallowToken(it, "=>");
    ExpressionPtr function = ParseExpression(scope, it);

    InfixPtr infix = QLEX_NEW new Infix(precedence, associativity, keywords, function);
    scope->AddInfix(infix);
    return QLEX_NEW new InfixDeclaration(infix);
}

ExpressionPtr Parser::ParseExpression(const util::SharedPtr<Scope>& scope, TokenIt& it)
{
    if (AtEnd(it))
        ParserAssert("Unexpected end of expression");
    DepthGuard depth(m_parseDepth, it->pos);
    if (it->Is("infix"))
        return ParseInfixDeclaration(scope, it);

    const Token& first = *it;
    TermList terms;
    // Each term of a chain and each member access nests the tree one level deeper; evaluating, printing
    // and freeing it recurse that deep.
    unsigned links = 0;
    while (!AtEnd(it))
    {
        const Token& token = *it;
        if (++links + m_parseDepth > EvalGuard::MAX_PARSE_DEPTH)
            ParserAssert(token.pos, "Expression nested too deeply");
        switch (token.type)
        {
        case TOKEN_STRING:
            terms.push_back(script::ParseString(token.text));
            ++it;
            continue;
        case TOKEN_INT:
            terms.push_back(script::ParseInt(token.text));
            ++it;
            continue;
        case TOKEN_FLOAT:
            terms.push_back(script::ParseFloat(token.text));
            ++it;
            continue;
        case TOKEN_BOOL:
            terms.push_back(script::ParseBool(token.text));
            ++it;
            continue;
        case TOKEN_WORD:
            break;
        }
        if (AtStatementEnder(it))
            break;
        if (token.Is("."))
        {
            if (terms.empty())
                ParserAssert(token, "General parse error");
            ++it;
            if (AtEnd(it) || it->type != TOKEN_WORD ||
                !(std::isalpha(static_cast<unsigned char>(it->text[0])) || it->text[0] == '_'))
                ParserAssert(token, "General parse error");
            ExpressionPtr owner = terms.back();
            terms.back() = QLEX_NEW new Identifier(owner, it->text);
            ++it;
        }
        else if (token.Is("="))
        {
            util::SharedPtr<Identifier> target =
                terms.size() == 1 ? util::dynamic_pointer_cast<Identifier>(terms.front()) : nullptr;
            if (terms.size() != 1)
            {
                TokenIt next = it + 1;
                ParserAssert(
                    token, "Bad placement of = (info: " + (AtEnd(next) ? util::String() : next->text) + ")");
            }
            if (!target)
                ParserAssert(token, "You can only assign to an identifier");
            ++it;
            ExpressionPtr value = ParseExpression(scope, it);
            if (!value)
                ParserAssert(token, "Bad right hand side of assignment");
            return QLEX_NEW new Assignment(target, value);
        }
        else if (token.Is("("))
        {
            terms.push_back(IsFunctionDeclaration(it) ? ParseFunctionDeclaration(scope, it)
                                                      : ParseBlock(scope, it));
        }
        else if (token.Is("["))
        {
            terms.push_back(ParseListDeclaration(scope, it));
        }
        else if (token.Is("{"))
        {
            terms.push_back(ParseFunctionDeclaration(scope, it));
        }
        else
        {
            terms.push_back(QLEX_NEW new Identifier(nullptr, token.text));
            ++it;
        }
    }
    if (terms.empty())
        ParserAssert(AtEnd(it) ? first.pos : it->pos, "Empty expression");
    return ParseExpression(first.pos, scope, terms.begin(), terms.end());
}

ExpressionPtr Parser::ParseExpression(TokenPos pos, const util::SharedPtr<Scope>& scope, TermIt begin,
                                      TermIt end)
{
    if (begin == end)
        return nullptr;
    DepthGuard depth(m_parseDepth, pos);

    std::set<util::String> words;
    for (TermIt term = begin; term != end; ++term)
    {
        if (Identifier* identifier = dynamic_cast<Identifier*>(term->get()))
            words.insert(identifier->GetName());
    }
    InfixPtr infix = scope->GetInfix(words);

    if (!infix)
    {
        // A chain of calls: `f x y` is (f(x))(y), and a block term is the argument list as it stands.
        ExpressionPtr head = *begin;
        for (TermIt term = begin + 1; term != end; ++term)
        {
            CodeBlockPtr args = util::dynamic_pointer_cast<Block>(*term);
            if (!args)
            {
                args = QLEX_NEW new Block();
                args->Add(*term);
            }
            head = QLEX_NEW new FunctionCall(head, args);
        }
        return head;
    }

    auto isKeyword = [](const ExpressionPtr& term, const util::String& keyword)
    {
        Identifier* identifier = dynamic_cast<Identifier*>(term.get());
        return identifier && identifier->GetName() == keyword;
    };

    const std::vector<util::String>& pattern = infix->GetKeywords();
    std::vector<ExpressionPtr> args;
    TermIt cur = begin;
    for (size_t i = 0; i < pattern.size(); ++i)
    {
        if (!pattern[i].empty())
        {
            if (cur == end || !isKeyword(*cur, pattern[i]))
                ParserAssert(pos, "Missing keyword " + pattern[i]);
            ++cur;
            continue;
        }
        TermIt holeEnd = end;
        if (i + 1 < pattern.size())
        {
            const util::String& next = pattern[i + 1];
            holeEnd =
                std::find_if(cur, end, [&](const ExpressionPtr& term) { return isKeyword(term, next); });
            if (holeEnd == end)
                ParserAssert(pos, "Could not find infix function keyword " + next);
        }
        args.push_back(ParseExpression(pos, scope, cur, holeEnd));
        cur = holeEnd;
    }
    if (cur != end)
        ParserAssert(pos, "Bad parse");
    return QLEX_NEW new InfixFunctionCall(infix, args);
}

// ---------------------------------------------------------------------------------------------------
// Running

ObjectPtr Parser::Execute(ExpressionPtr expression)
{
    if (!expression)
        return nullptr;
    ObjectPtr result;
    {
        EvalGuard::Session session;
        try
        {
            result = expression->Evaluate(m_rootClosure);
        }
        catch (std::exception& e)
        {
            CatchException(e, QLEX_SITE);
            ReportError(util::String("Tree evaluation error: ") + e.what());
            result = QLEX_NEW new ErrorObject();
        }
        catch (...)
        {
            CatchException(QLEX_SITE);
            ReportError("Parser threw unknown excpetion.");
            result = QLEX_NEW new ErrorObject();
        }
    }
    Update();
    return result;
}

ObjectPtr Parser::Execute(const TokenList& tokens)
{
    return Execute(ExpressionPtr(Parse(tokens)));
}

ObjectPtr Parser::Execute(const util::String& text)
{
    return Execute(ExpressionPtr(Parse(text)));
}

util::String Parser::ExecuteToString(const util::String& text)
{
    EvalGuard::Session session;
    ObjectPtr result = Execute(text);
    if (!result || dynamic_cast<BadObject*>(result.get()))
        return "";
    try
    {
        return result->ToText();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        ReportError(util::String("Tree evaluation error: ") + e.what());
        return "";
    }
}

void Parser::Update()
{
    util::ScopeProfiler profile("Parser::Update");
    AbstractAttrib::CalcAll();
    PokeMeOncePerFrame::PokeAll();
}

void Parser::AddInfix(InfixPtr infix)
{
    m_rootScope->AddInfix(infix);
    m_rootClosure->AddInfix(infix);
}

void Parser::LoadConfig(const util::String& path)
{
    Log(logging::Info, "Parsing " + path + "...");
    Update();
    try
    {
        util::String text = util::FileSystem::ReadWholeFile(path);
        Execute(text);
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, util::String("Failed loading config file: ") + e.what());
    }
    Update();
}

util::String Parser::ToCode()
{
    EvalGuard::Session session;
    return m_rootClosure->ToExpression()->ToCode();
}

void Parser::SaveConfig(const util::String& path)
{
    util::String code = ToCode();
    if (code.empty())
        return;
    util::FileSystem::WriteFile(path,
                                "// Generated by " + util::FileSystem::NameAndVersion() + "\n\n" + code);
}

// ---------------------------------------------------------------------------------------------------
// Completion

std::vector<util::String> Parser::Expand(util::String& text)
{
    size_t start = text.size();
    while (start > 0 && IsIdentifierChar(text[start - 1]))
        --start;
    std::vector<util::String> pieces = util::Split(text.substr(start), '.');
    util::String last = pieces.back();
    pieces.pop_back();

    ClassObjectPtr object = m_rootClosure;
    for (const util::String& piece : pieces)
    {
        object = util::dynamic_pointer_cast<ClassObject>(object->GetObject(piece));
        if (!object)
            return {};
    }

    std::vector<util::String> candidates;
    for (const VariablePtr& var : object->GetVariables())
    {
        if (util::istarts_with(var->GetName(), last))
            candidates.push_back(var->GetName());
    }
    if (candidates.empty())
        return candidates;

    util::String completed;
    if (candidates.size() == 1)
    {
        completed = candidates.front();
        ClassObject* child = dynamic_cast<ClassObject*>(object->GetObject(completed).get());
        if (child && !child->GetVariables().empty())
            completed += ".";
    }
    else
    {
        // The common prefix, ignoring case; each letter takes the case that the candidates agree on, else
        // the case typed.
        size_t length = candidates.front().size();
        for (const util::String& candidate : candidates)
        {
            size_t n = 0;
            while (n < length && n < candidate.size() &&
                   std::tolower(static_cast<unsigned char>(candidate[n])) ==
                       std::tolower(static_cast<unsigned char>(candidates.front()[n])))
                ++n;
            length = n;
        }
        for (size_t i = 0; i < length; ++i)
        {
            char c = candidates.front()[i];
            bool agree = std::all_of(candidates.begin(), candidates.end(),
                                     [&](const util::String& candidate) { return candidate[i] == c; });
            completed += agree ? c : (i < last.size() ? last[i] : c);
        }
    }
    text = text.substr(0, text.size() - last.size()) + completed;
    return candidates;
}

} // namespace script
