#pragma once
// The parser is one singleton for the whole test program: each test records the root's variables and
// the log, and removes what it added, so that tests don't see each other.

#include "logging/Log.h"
#include "script/EvalGuard.h"
#include "script/Parser.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"

#include <gtest/gtest.h>

#include <set>

class ScriptFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_parser = script::Parser::GetInstancePtr();
        for (const script::VariablePtr& var : Root()->GetVariables())
            m_rootNames.insert(var->GetName());
        m_parser->SetErrorFunction([this](const std::string& text) { m_errors.push_back(text); });
        m_logger =
            QLEX_NEW new logging::FunctionLogger(logging::Error | logging::Warning | logging::Info,
                                                 [this](const std::string& text) { m_log.push_back(text); });
        logging::Logger::GetInstancePtr()->AddLogger(m_logger);
        ForgetRepeats();
    }

    void TearDown() override
    {
        for (const script::VariablePtr& var : Root()->GetVariables())
        {
            if (!m_rootNames.count(var->GetName()))
                Root()->RemoveVariable(var->GetName());
        }
        logging::Logger::GetInstancePtr()->RemoveLogger(m_logger);
        m_parser->SetErrorFunction([](const std::string& text) { LogWarning(text); });
    }

    script::ClosurePtr Root() const { return script::Parser::GetInstancePtr()->GetRootClosure(); }

    // What the console would show for `text`.
    std::string Run(const std::string& text)
    {
        ForgetRepeats();
        return m_parser->ExecuteToString(text);
    }

    // Whether some log line or reported error contains `part`.
    bool Reported(const std::string& part) const
    {
        for (const std::string& line : m_log)
            if (line.find(part) != std::string::npos)
                return true;
        for (const std::string& line : m_errors)
            if (line.find(part) != std::string::npos)
                return true;
        return false;
    }

    // The log filters errors that repeat from frame to frame; each test step is a frame of its own.
    static void ForgetRepeats()
    {
        logging::Logger::GetInstancePtr()->Update();
        logging::Logger::GetInstancePtr()->Update();
    }

    script::Parser* m_parser = nullptr;
    std::vector<std::string> m_errors;
    std::vector<std::string> m_log;

private:
    std::set<std::string> m_rootNames;
    util::SharedPtr<logging::ILogger> m_logger;
};
