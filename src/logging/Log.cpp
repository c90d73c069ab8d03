#include "logging/Log.h"

#include "logging/Exception.h"
#include "util/FileSystem.h"

#include <ctime>
#include <iostream>

namespace logging
{
namespace
{

std::string& WorkDirectory()
{
    static std::string s_directory;
    return s_directory;
}

std::string LocalTime(const char* format)
{
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buffer[128];
    const size_t n = std::strftime(buffer, sizeof(buffer), format, &local);
    return std::string(buffer, n);
}

void ReportFailedSink(const std::string& text, const std::string& site)
{
    CatchException(site);
    std::cerr << "ERROR - Failed to log text: " << text << std::endl;
}

} // namespace

void SetWorkDirectory(const std::string& directory) { WorkDirectory() = directory; }
const std::string& GetWorkDirectory() { return WorkDirectory(); }

void StreamLogger::Log(const std::string& text) { m_stream << text << std::endl; }

FileLogger::FileLogger(unsigned mask, const std::string& path, bool append) : ILogger(mask)
{
    std::ifstream existing(path);
    const bool exists = existing.good();
    existing.close();
    if (append && exists)
    {
        m_file.open(path, std::ios::out | std::ios::app);
        m_file << "\n\n";
    }
    else
    {
        m_file.open(path, std::ios::out | std::ios::trunc);
    }
    m_file << "-----------------------------\n"
           << "  " << util::FileSystem::NameAndVersion() << "\n"
           << "  " << LocalTime("%B %d %Y, %X") << "\n"
           << "-----------------------------\n";
    m_file.flush();
}

void FileLogger::Log(const std::string& text)
{
    m_file << LocalTime("%H:%M:%S: ") << text << std::endl;
}

void FunctionLogger::Log(const std::string& text)
{
    try
    {
        m_function(text);
    }
    catch (...)
    {
        ReportFailedSink(text, QLEX_SITE);
    }
}

void Logger::AddLogger(util::SharedPtr<ILogger> logger)
{
    if (logger)
        m_loggers.insert(logger);
}

void Logger::RemoveLogger(const util::SharedPtr<ILogger>& logger) { m_loggers.erase(logger); }

void Logger::Log(LogLevel level, const std::string& text)
{
    // A sink that fails reports its failure through the log again; past a few levels of that, the text
    // goes to standard error instead of round and round.
    static int s_depth = 0;
    if (s_depth > 2)
    {
        std::cerr << text << std::endl;
        return;
    }
    struct DepthGuard
    {
        DepthGuard() { ++s_depth; }
        ~DepthGuard() { --s_depth; }
    } guard;

    const bool repeatable = level != Error && level != Warning;
    if (!repeatable && m_thisFrame.count(text))
        return;
    m_thisFrame.insert(text);
    if (!repeatable && m_lastFrame.count(text))
        return;
    // A sink may log in turn; walk a copy so that its changes can't invalidate the walk.
    const std::set<util::SharedPtr<ILogger>> loggers = m_loggers;
    for (const util::SharedPtr<ILogger>& logger : loggers)
    {
        if ((logger->GetMask() & level) == 0)
            continue;
        try
        {
            logger->Log(text);
        }
        catch (...)
        {
            ReportFailedSink(text, QLEX_SITE);
        }
    }
}

void Logger::Update()
{
    m_lastFrame.swap(m_thisFrame);
    m_thisFrame.clear();
}

} // namespace logging

void Log(logging::LogLevel level, const std::string& text)
{
    std::string line;
    if (level == logging::Error)
        line = "!! ERROR: " + text;
    else if (level == logging::Warning)
        line = "-- Warning: " + text;
    else
        line = text;

    if (logging::Logger::Exists())
    {
        logging::Logger::GetInstancePtr()->Log(level, line);
        return;
    }
    std::cout << line << std::endl;
    std::ofstream unlogged(logging::GetWorkDirectory() + "Unlogged.txt", std::ios::out | std::ios::app);
    unlogged << line << std::endl;
}

void LogWarning(const std::string& text) { Log(logging::Error, text); }
