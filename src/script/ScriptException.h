#pragma once
// The three failures of script text: tokens, parsing, evaluation. All are bad data, never a fault of
// the program, so that whoever runs a script can contain them.

#include "logging/Exception.h"

namespace script
{

class ScriptException : public BadDataException
{
public:
    explicit ScriptException(const std::string& message) : BadDataException(message) {}
};

class ParseException : public BadDataException
{
public:
    explicit ParseException(const std::string& message) : BadDataException(message) {}
};

class TokenException : public BadDataException
{
public:
    explicit TokenException(const std::string& message) : BadDataException(message) {}
};

} // namespace script
