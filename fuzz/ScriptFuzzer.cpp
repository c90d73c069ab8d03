// Every byte sequence is valid input to the script interpreter: it may give an error message, never a
// crash, a hang or unbounded memory. Each input runs against the same parser, which is brought back to
// its first state afterwards, so that a failing input fails alone.

#include "FuzzTarget.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static script::Parser* parser = nullptr;
    static qlex_fuzz::ParserState state;
    if (!parser)
    {
        // A logger without sinks: messages cost nothing and nothing is written to disk.
        logging::Logger::GetInstancePtr();
        parser = script::Parser::GetInstancePtr();
        parser->SetErrorFunction([](const std::string&) {});
        parser->SetOutputFunction([](const std::string&) {});
        script::EvalGuard::SetStepBudget(qlex_fuzz::FUZZ_STEP_BUDGET);
        state = qlex_fuzz::CaptureState(*parser);
        // The process ends without static destructors, as the programs do: the order in which
        // singletons would die is no concern of a process that is going away.
        std::atexit(
            []
            {
                std::fflush(nullptr);
                _exit(0);
            });
    }
    qlex_fuzz::RunScript(*parser, std::string(reinterpret_cast<const char*>(data), size));
    qlex_fuzz::RestoreState(*parser, state);
    return 0;
}
