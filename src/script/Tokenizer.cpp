#include "script/Tokenizer.h"

#include "script/ScriptException.h"
#include "util/StringUtil.h"

#include <cctype>
#include <cstring>

namespace script
{

namespace
{
bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsSign(char c)
{
    return c == '-' || c == '+';
}

bool IsPunctuation(char c)
{
    return c != 0 && std::strchr("{}()[],", c) != nullptr;
}

// Whether the next three characters spell `word` (lower case), ignoring case.
bool Spells(Tokenizer::CharIt it, Tokenizer::CharIt end, const char* word)
{
    for (int i = 0; i < 3; ++i, ++it)
    {
        if (it == end || std::tolower(static_cast<unsigned char>(*it)) != word[i])
            return false;
    }
    return true;
}

void SkipDigits(Tokenizer::CharIt& it, Tokenizer::CharIt end)
{
    while (it != end && IsDigit(*it))
        ++it;
}

[[noreturn]] void ThrowTokenError(unsigned line, const char* message)
{
    throw util::internal::ExceptionDescriber(QLEX_SITE) %
        TokenException("Line " + util::ToString(line) + ": " + message);
}

Token ReadString(TokenPos pos, Tokenizer::CharIt& it, Tokenizer::CharIt end)
{
    ++it; // the opening quote
    util::String text;
    while (true)
    {
        if (it == end)
            ThrowTokenError(pos.line, "Unmatched quote (\")");
        char c = *it++;
        if (c == '"')
            break;
        if (c == '\n')
            ThrowTokenError(pos.line, "Newline in string literal");
        if (c == '\\')
        {
            if (it == end)
                ThrowTokenError(pos.line, "Bad \\-escape in string");
            char escaped = *it++;
            if (escaped == 'n')
                c = '\n';
            else if (escaped == 't')
                c = '\t';
            else
                c = escaped;
        }
        text += c;
    }
    return Token(text, pos, TOKEN_STRING);
}
} // namespace

util::String TokenPos::ToString() const
{
    return "line " + util::ToString(line);
}

void Tokenizer::SkipWhite(CharIt& it, CharIt end, unsigned& line)
{
    for (; it != end && IsSpace(*it); ++it)
    {
        if (*it == '\n')
            ++line;
    }
}

bool Tokenizer::IsIDChar(char c)
{
    return IsLetter(c) || IsDigit(c) || c == '_';
}

bool Tokenizer::IsNumBeginner(CharIt it, CharIt end)
{
    // A run of signs belongs to the number behind it; walked, not recursed, so that a long run of
    // signs costs neither stack nor more than one pass.
    while (it != end && IsSign(*it))
        ++it;
    if (it == end)
        return false;
    if (IsDigit(*it))
        return true;
    if (Spells(it, end, "inf"))
        return true;
    if (*it == '.')
    {
        CharIt next = it + 1;
        return next == end || IsDigit(*next);
    }
    return false;
}

Token Tokenizer::ReadNum(TokenPos pos, CharIt& it, CharIt end)
{
    CharIt begin = it;
    if (Spells(it, end, "nan"))
    {
        it += 3;
        return Token(util::String(begin, it), pos, TOKEN_FLOAT);
    }
    if (it != end && IsSign(*it))
        ++it;
    if (Spells(it, end, "inf"))
    {
        it += 3;
        return Token(util::String(begin, it), pos, TOKEN_FLOAT);
    }
    SkipDigits(it, end);
    if (it == end || (*it != '.' && *it != 'e' && *it != 'E'))
        return Token(util::String(begin, it), pos, TOKEN_INT);
    if (*it == '.')
    {
        ++it;
        SkipDigits(it, end);
    }
    if (it != end && (*it == 'e' || *it == 'E'))
    {
        ++it;
        if (it != end && IsSign(*it))
            ++it;
        SkipDigits(it, end);
        if (it != end && *it == '.')
        {
            ++it;
            SkipDigits(it, end);
        }
    }
    return Token(util::String(begin, it), pos, TOKEN_FLOAT);
}

TokenList Tokenizer::Tokenize(const util::String& text)
{
    TokenList tokens;
    unsigned line = 1;
    CharIt it = text.begin();
    const CharIt end = text.end();

    // Within a run of signs the number test has one answer, settled by what follows the run; remember
    // it, so that a long run costs one pass and not one pass per sign.
    CharIt runBegin = end;
    CharIt runEnd = end;
    bool runIsNumber = false;
    auto numBeginner = [&](CharIt p)
    {
        if (p == end || !IsSign(*p))
            return IsNumBeginner(p, end);
        if (runBegin == end || p < runBegin || p >= runEnd)
        {
            runBegin = p;
            runEnd = p;
            while (runEnd != end && IsSign(*runEnd))
                ++runEnd;
            runIsNumber = IsNumBeginner(p, end);
        }
        return runIsNumber;
    };

    while (true)
    {
        SkipWhite(it, end, line);
        if (it == end)
            return tokens;
        TokenPos pos(line);
        char c = *it;
        if (c == '"')
        {
            tokens.push_back(ReadString(pos, it, end));
        }
        else if (IsLetter(c) || c == '_')
        {
            CharIt begin = it;
            while (it != end && IsIDChar(*it))
                ++it;
            util::String word(begin, it);
            tokens.push_back(Token(word, pos, (word == "true" || word == "false") ? TOKEN_BOOL : TOKEN_WORD));
        }
        else if (numBeginner(it))
        {
            tokens.push_back(ReadNum(pos, it, end));
        }
        else if (IsPunctuation(c))
        {
            tokens.push_back(Token(util::String(1, c), pos, TOKEN_WORD));
            ++it;
        }
        else if (c == '/' && it + 1 != end && it[1] == '/')
        {
            while (it != end && *it != '\n')
                ++it;
        }
        else
        {
            CharIt begin = it++;
            while (it != end)
            {
                char d = *it;
                if (IsSpace(d) || IsLetter(d) || d == '_' || d == '"' || IsPunctuation(d) || numBeginner(it))
                    break;
                ++it;
            }
            tokens.push_back(Token(util::String(begin, it), pos, TOKEN_WORD));
        }
    }
}

} // namespace script
