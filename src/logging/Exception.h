#pragma once

#include <exception>
#include <stdexcept>
#include <string>

// The exception tree. Program faults and bad input are told apart so that a catch can decide whether the
// user or the developer has to hear about it.
class Exception : public std::runtime_error
{
public:
    explicit Exception(const std::string& message) : std::runtime_error(message) {}
};

class BadCoderException : public Exception
{
public:
    explicit BadCoderException(const std::string& message) : Exception(message) {}
};

class BadDataException : public Exception
{
public:
    explicit BadDataException(const std::string& message) : Exception(message) {}
};

class FatalException : public Exception
{
public:
    explicit FatalException(const std::string& message) : Exception(message) {}
};

class FileReadException : public BadDataException
{
public:
    explicit FileReadException(const std::string& message) : BadDataException(message) {}
};

namespace util::internal
{

// "<file>:<line>: <signature>", the text that tells a developer where something was thrown or caught.
std::string MakeSite(const char* file, long line, const char* function);

// Every throw goes through here so that each exception leaves a trace in the log on its way out.
class ExceptionDescriber
{
public:
    explicit ExceptionDescriber(std::string site) : m_site(std::move(site)) {}

    template <class E> const E& operator%(const E& exception) const
    {
        Describe(exception.what());
        return exception;
    }

private:
    void Describe(const char* what) const;

    std::string m_site;
};

} // namespace util::internal

void CatchException(const std::string& site);
void CatchException(std::exception& exception, const std::string& site);
void CatchException(Exception& exception, const std::string& site);

// Called by the assertion macros with a false expression. Assertions throw (a code or a data exception);
// checks log and return, so the code after them still runs.
void AssertionFailed(const char* expression, bool isAssertion, bool isCode, const char* function, const char* file,
                     long line);

#define QLEX_SITE ::util::internal::MakeSite(__FILE__, __LINE__, __PRETTY_FUNCTION__)
#define QLEX_THROW(exception) throw ::util::internal::ExceptionDescriber(QLEX_SITE) % (exception)

#define QLEX_ASSERT_IMPL(expr, isAssertion, isCode)                                                          \
    do                                                                                                       \
    {                                                                                                        \
        if (!(expr))                                                                                         \
            ::AssertionFailed(#expr, isAssertion, isCode, __PRETTY_FUNCTION__, __FILE__, __LINE__);          \
    } while (0)

#define QLEX_ASSERT(expr) QLEX_ASSERT_IMPL(expr, true, true)
#define QLEX_DATA_ASSERT(expr) QLEX_ASSERT_IMPL(expr, true, false)
#define QLEX_CHECK(expr) QLEX_ASSERT_IMPL(expr, false, true)
#define QLEX_DATA_CHECK(expr) QLEX_ASSERT_IMPL(expr, false, false)
