#pragma once

#include "logging/Log.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace physics
{
// A fresh world for each test, and the log lines it wrote.
class WorldTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testing::ResetWorld();
        m_logger = QLEX_NEW new logging::FunctionLogger(~0u, [this](const std::string& text)
                                                        { m_log.push_back(text); });
        logging::Logger::GetInstancePtr()->AddLogger(m_logger);
    }

    void TearDown() override
    {
        logging::Logger::GetInstancePtr()->RemoveLogger(m_logger);
        testing::ResetWorld();
        util::PointeeHandle::Flush();
    }

    Simulation& Sim() { return *Simulation::GetInstancePtr(); }

    // Fixed steps as a frame takes them, with the handles of dead contacts collected as the main loop does.
    void RunSteps(int steps)
    {
        for (int i = 0; i < steps; ++i)
        {
            Sim().Step(true);
            util::PointeeHandle::Flush();
        }
    }

    void RunSeconds(float seconds) { RunSteps(static_cast<int>(seconds / Sim().m_timeDelta + 0.5f)); }

    bool Logged(const std::string& text) const
    {
        for (const std::string& line : m_log)
            if (line.find(text) != std::string::npos)
                return true;
        return false;
    }

    std::vector<std::string> m_log;
    util::SharedPtr<logging::ILogger> m_logger;
};

} // namespace physics
