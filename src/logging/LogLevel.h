#pragma once
#include <string>

namespace logging
{

// A bit mask: sinks select the levels they want by mask, and a warning is the union of the two kinds of
// failed checks.
enum LogLevel : unsigned
{
    Error = 1,
    CodeCheck = 2,
    DataCheck = 4,
    Warning = 6,
    Debug = 8,
    Info = 16,
};

} // namespace logging

void Log(logging::LogLevel level, const std::string& text);
