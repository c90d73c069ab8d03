#include "logging/Exception.h"

#include "logging/Log.h"

#include <cstdio>

namespace util::internal
{

std::string MakeSite(const char* file, long line, const char* function)
{
    return std::string(file) + ":" + std::to_string(line) + ": " + function;
}

void ExceptionDescriber::Describe(const char* what) const
{
    Log(logging::Debug, std::string("Exception thrown: ") + what + " from " + m_site);
}

} // namespace util::internal

void CatchException(const std::string& site) { Log(logging::Debug, "Caught an unknown exception: " + site); }

void CatchException(std::exception& exception, const std::string& site)
{
    Log(logging::Debug, std::string("Caught exception: ") + exception.what() + ", " + site);
}

void CatchException(Exception& exception, const std::string& site)
{
    Log(logging::Debug, std::string("Caught Exception: ") + exception.what() + ", " + site);
}

void AssertionFailed(const char* expression, bool isAssertion, bool isCode, const char* function, const char* file,
                     long line)
{
    char text[4096];
    std::snprintf(text, sizeof(text), "%s %s failed: \"%s\" in function %s inf %s:%i", isCode ? "Code" : "Data",
                  isAssertion ? "assertion" : "check", expression, function, file, int(line));
    if (isAssertion)
    {
        Log(logging::Debug, text);
        if (isCode)
            throw BadCoderException(text);
        throw BadDataException(text);
    }
    Log(isCode ? logging::CodeCheck : logging::DataCheck, text);
}
