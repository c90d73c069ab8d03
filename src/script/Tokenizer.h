#pragma once
// One pass over script text that yields tokens. Words, operators and punctuation are all tokens of one
// kind; what they mean is the parser's business.

#include "util/String.h"

#include <vector>

namespace script
{

struct TokenPos
{
    unsigned line = 1;

    TokenPos() = default;
    explicit TokenPos(unsigned l) : line(l) {}
    util::String ToString() const;
};

enum TokenType
{
    TOKEN_BOOL = 0,
    TOKEN_FLOAT = 1,
    TOKEN_INT = 2,
    TOKEN_STRING = 3,
    TOKEN_WORD = 4
};

struct Token
{
    util::String text;
    TokenPos pos;
    TokenType type = TOKEN_WORD;

    Token() = default;
    Token(const util::String& t, TokenPos p, TokenType ty) : text(t), pos(p), type(ty) {}
    // A word token with exactly this text; strings never count as punctuation.
    bool Is(const char* word) const { return type == TOKEN_WORD && text == word; }
};

typedef std::vector<Token> TokenList;
typedef TokenList::const_iterator TokenIt;

class Tokenizer
{
public:
    typedef util::String::const_iterator CharIt;

    // Throws TokenException "Line N: <message>" for a bad string literal; returns no partial list.
    static TokenList Tokenize(const util::String& text);

    static void SkipWhite(CharIt& it, CharIt end, unsigned& line);
    static bool IsIDChar(char c);
    static bool IsNumBeginner(CharIt it, CharIt end);
    static Token ReadNum(TokenPos pos, CharIt& it, CharIt end);
};

} // namespace script
