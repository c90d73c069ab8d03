#pragma once
// Text helpers and the number <-> text conversions. The conversions define the numeric format of all
// script text, configuration and scene files: floats carry 9 significant digits, doubles 18, and the
// infinite values and NaN have words of their own.

#include "util/String.h"
#include "util/TypeName.h"

#include <sstream>
#include <stdexcept>
#include <typeinfo>
#include <vector>

namespace util
{

// Significant digits that make every float (double) read back to the same value.
const int FLOAT_TEXT_DIGITS = 9;
const int DOUBLE_TEXT_DIGITS = 18;

std::vector<String> Split(const String& text, char separator);
String Join(const std::vector<String>& parts, const String& separator);

String ToLower(String text);
String ToUpper(String text);
bool starts_with(const String& text, const String& prefix);
bool ends_with(const String& text, const String& suffix);
bool istarts_with(const String& text, const String& prefix);
bool iends_with(const String& text, const String& suffix);
bool iequals(const String& a, const String& b);

// `?` takes exactly one character, `*` any run; text used up before a trailing `*` doesn't match.
bool WildcardMatcher(const char* text, const char* pattern);

String FloatToString(float x);
String DoubleToString(double x);

// "+inf", "-inf" and "NaN" in any case; anything else through a stream.
float ParseFloat(const String& text);
double ParseDouble(const String& text);

template <class T> String ToString(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}
template <> String ToString<float>(const float& value);
template <> String ToString<double>(const double& value);
template <> String ToString<bool>(const bool& value);
template <> String ToString<String>(const String& value);

namespace internal
{
[[noreturn]] void ThrowBadLexicalCast(const String& text, const String& typeName);
}

} // namespace util

namespace util_details
{
// Stream conversion after which only white space may remain.
template <class T> T FromStringImpl(const util::String& text)
{
    std::istringstream in(text);
    T value{};
    if (!(in >> value))
        util::internal::ThrowBadLexicalCast(text, util::TypeName<T>());
    in >> std::ws;
    if (!in.eof())
        util::internal::ThrowBadLexicalCast(text, util::TypeName<T>());
    return value;
}
} // namespace util_details

namespace util
{
template <class T> T FromString(const String& text)
{
    return util_details::FromStringImpl<T>(text);
}
template <> float FromString<float>(const String& text);
template <> double FromString<double>(const String& text);
template <> bool FromString<bool>(const String& text);
template <> String FromString<String>(const String& text);
} // namespace util
