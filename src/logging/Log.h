#pragma once

#include "logging/LogLevel.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <fstream>
#include <functional>
#include <ostream>
#include <set>
#include <string>

namespace logging
{

// A sink for log text, with the mask of the levels it wants.
class ILogger : public util::Pointee
{
public:
    explicit ILogger(unsigned mask) : m_mask(mask) {}
    virtual ~ILogger() = default;
    virtual void Log(const std::string& text) = 0;
    unsigned GetMask() const { return m_mask; }

private:
    unsigned m_mask;
};

class StreamLogger : public ILogger
{
public:
    StreamLogger(unsigned mask, std::ostream& stream) : ILogger(mask), m_stream(stream) {}
    void Log(const std::string& text) override;

private:
    std::ostream& m_stream;
};

// Writes a header when it opens the file and stamps each line with the local time.
class FileLogger : public ILogger
{
public:
    FileLogger(unsigned mask, const std::string& path, bool append);
    void Log(const std::string& text) override;
    bool IsOpen() const { return m_file.is_open(); }

private:
    std::ofstream m_file;
};

class FunctionLogger : public ILogger
{
public:
    FunctionLogger(unsigned mask, std::function<void(const std::string&)> function)
        : ILogger(mask), m_function(std::move(function))
    {
    }
    void Log(const std::string& text) override;

private:
    std::function<void(const std::string&)> m_function;
};

// Fans messages out to the sinks. Errors and warnings that repeat from frame to frame are shown once,
// and again after a frame without them.
class Logger : public util::Pointee, public util::Singleton<Logger>
{
public:
    void AddLogger(util::SharedPtr<ILogger> logger);
    void RemoveLogger(const util::SharedPtr<ILogger>& logger);
    void Log(LogLevel level, const std::string& text);
    // Called once per frame.
    void Update();

private:
    std::set<util::SharedPtr<ILogger>> m_loggers;
    std::set<std::string> m_lastFrame;
    std::set<std::string> m_thisFrame;
};

// Where "Unlogged.txt" goes: messages from before the logger exists or after it is gone. Set by the
// program as soon as it knows its work directory; empty means the current directory.
void SetWorkDirectory(const std::string& directory);
const std::string& GetWorkDirectory();

} // namespace logging

void LogWarning(const std::string& text);
