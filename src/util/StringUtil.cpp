#include "util/StringUtil.h"

#include "logging/Exception.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <limits>

namespace util
{

std::vector<String> Split(const String& text, char separator)
{
    std::vector<String> parts(1);
    for (char c : text)
    {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

String Join(const std::vector<String>& parts, const String& separator)
{
    String result;
    for (size_t i = 0; i < parts.size(); ++i)
    {
        if (i != 0)
            result += separator;
        result += parts[i];
    }
    return result;
}

String ToLower(String text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

String ToUpper(String text)
{
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

bool starts_with(const String& text, const String& prefix)
{
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool ends_with(const String& text, const String& suffix)
{
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

bool istarts_with(const String& text, const String& prefix)
{
    return starts_with(ToLower(text), ToLower(prefix));
}

bool iends_with(const String& text, const String& suffix)
{
    return ends_with(ToLower(text), ToLower(suffix));
}

bool iequals(const String& a, const String& b)
{
    return ToLower(a) == ToLower(b);
}

bool WildcardMatcher(const char* text, const char* pattern)
{
    if (*text == 0 || *pattern == 0)
        return *text == 0 && *pattern == 0;
    if (*pattern == '?')
        return WildcardMatcher(text + 1, pattern + 1);
    if (*pattern == '*')
    {
        return WildcardMatcher(text + 1, pattern) || WildcardMatcher(text, pattern + 1) ||
               WildcardMatcher(text + 1, pattern + 1);
    }
    return *text == *pattern && WildcardMatcher(text + 1, pattern + 1);
}

namespace
{
template <class T> String RealToString(T x, int digits)
{
    if (x > std::numeric_limits<T>::max())
        return "+inf";
    if (x < std::numeric_limits<T>::lowest())
        return "-inf";
    if (std::isnan(x))
        return "NaN";
    std::ostringstream out;
    out << std::setprecision(digits) << x;
    return out.str();
}

// Returns true and sets `value` for the three words that streams don't know.
template <class T> bool ParseSpecialReal(const String& text, T& value)
{
    if (iequals(text, "+inf"))
        value = std::numeric_limits<T>::infinity();
    else if (iequals(text, "-inf"))
        value = -std::numeric_limits<T>::infinity();
    else if (iequals(text, "NaN"))
        value = std::numeric_limits<T>::quiet_NaN();
    else
        return false;
    return true;
}
} // namespace

String FloatToString(float x)
{
    std::ostringstream out;
    out << std::setprecision(FLOAT_TEXT_DIGITS) << x;
    return out.str();
}

String DoubleToString(double x)
{
    std::ostringstream out;
    out << std::setprecision(DOUBLE_TEXT_DIGITS) << x;
    return out.str();
}

float ParseFloat(const String& text)
{
    float value;
    if (ParseSpecialReal(text, value))
        return value;
    return util_details::FromStringImpl<float>(text);
}

double ParseDouble(const String& text)
{
    double value;
    if (ParseSpecialReal(text, value))
        return value;
    return util_details::FromStringImpl<double>(text);
}

template <> String ToString<float>(const float& value)
{
    return RealToString(value, FLOAT_TEXT_DIGITS);
}

template <> String ToString<double>(const double& value)
{
    return RealToString(value, DOUBLE_TEXT_DIGITS);
}

template <> String ToString<bool>(const bool& value)
{
    return value ? "true" : "false";
}

template <> String ToString<String>(const String& value)
{
    return value;
}

template <> float FromString<float>(const String& text)
{
    return ParseFloat(text);
}

template <> double FromString<double>(const String& text)
{
    return ParseDouble(text);
}

template <> bool FromString<bool>(const String& text)
{
    if (text == "0" || iequals(text, "false"))
        return false;
    if (text == "1" || iequals(text, "true"))
        return true;
    internal::ThrowBadLexicalCast(text, "bool");
}

template <> String FromString<String>(const String& text)
{
    return text;
}

namespace internal
{
void ThrowBadLexicalCast(const String& text, const String& typeName)
{
    throw util::internal::ExceptionDescriber(QLEX_SITE) %
        std::runtime_error("Bad lexical cast: \"" + text + "\" is not a " + typeName);
}
} // namespace internal

} // namespace util
