// Replays the inputs kept in fuzz_regressions/: texts that once broke the interpreter, or that stand for
// a way of breaking it (deep nesting, endless recursion, exponential work). Each must end with error
// messages at most, and leave the interpreter working.

#include "FuzzTarget.h"
#include "ScriptFixture.h"

#include "util/FileSystem.h"

#include <cstdlib>
#include <filesystem>

TEST_F(ScriptFixture, FuzzRegressionInputsEndCleanly)
{
    const char* source = std::getenv("QLEX_SOURCE");
    ASSERT_TRUE(source) << "QLEX_SOURCE names the source tree";
    std::filesystem::path dir = std::filesystem::path(source) / "tests/script/fuzz_regressions";
    ASSERT_TRUE(std::filesystem::is_directory(dir));

    unsigned long budget = script::EvalGuard::GetStepBudget();
    script::EvalGuard::SetStepBudget(qlex_fuzz::FUZZ_STEP_BUDGET);
    qlex_fuzz::ParserState state = qlex_fuzz::CaptureState(*m_parser);
    size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
    {
        SCOPED_TRACE(entry.path().filename().string());
        qlex_fuzz::RunScript(*m_parser, util::FileSystem::ReadWholeFile(entry.path().string()));
        qlex_fuzz::RestoreState(*m_parser, state);
        EXPECT_EQ("3", Run("1 + 2"));
        EXPECT_EQ(0u, script::AbstractAttrib::GetDynamicAttributeCount());
        ++inputs;
    }
    script::EvalGuard::SetStepBudget(budget);
    EXPECT_GT(inputs, 0u);
}
