#pragma once

#include "logging/Log.h"

#include <algorithm>
#include <string>
#include <vector>

namespace logtest
{

// Collects the lines the log gives at the levels of `mask` for as long as it lives. The log holds back a
// warning or an error that repeats one of the frame before, so the capture starts on two clean frames.
class LogCapture
{
public:
    explicit LogCapture(unsigned mask)
        : m_sink(QLEX_NEW new logging::FunctionLogger(mask, [this](const std::string& line)
                                                      { lines.push_back(line); }))
    {
        logging::Logger::GetInstancePtr()->Update();
        logging::Logger::GetInstancePtr()->Update();
        logging::Logger::GetInstancePtr()->AddLogger(m_sink);
    }
    ~LogCapture() { logging::Logger::GetInstancePtr()->RemoveLogger(m_sink); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // The lines that hold `part`.
    size_t Count(const std::string& part) const
    {
        return size_t(std::count_if(lines.begin(), lines.end(),
                                    [&](const std::string& line)
                                    { return line.find(part) != std::string::npos; }));
    }
    bool Has(const std::string& part) const { return Count(part) > 0; }

    std::vector<std::string> lines;

private:
    util::SharedPtr<logging::ILogger> m_sink;
};

} // namespace logtest
