#include "script/EvalGuard.h"

#include "script/ScriptException.h"
#include "util/StringUtil.h"

namespace script
{

unsigned EvalGuard::s_sessionDepth = 0;
unsigned EvalGuard::s_callDepth = 0;
unsigned long EvalGuard::s_stepsUsed = 0;
unsigned long EvalGuard::s_stepBudget = EvalGuard::DEFAULT_STEP_BUDGET;

EvalGuard::Session::Session()
{
    if (s_sessionDepth++ == 0)
        s_stepsUsed = 0;
}

EvalGuard::Session::~Session()
{
    --s_sessionDepth;
}

EvalGuard::CallDepth::CallDepth()
{
    if (s_callDepth >= MAX_CALL_DEPTH)
        throw util::internal::ExceptionDescriber(QLEX_SITE) %
            ScriptException("Stack overflow in script: more than " + util::ToString(MAX_CALL_DEPTH) +
                            " nested calls");
    ++s_callDepth;
}

EvalGuard::CallDepth::~CallDepth()
{
    --s_callDepth;
}

void EvalGuard::Tick(unsigned long units)
{
    s_stepsUsed += units;
    if (s_sessionDepth > 0 && s_stepsUsed > s_stepBudget)
    {
        throw util::internal::ExceptionDescriber(QLEX_SITE) %
            ScriptException("Script took too many steps (more than " + util::ToString(s_stepBudget) + ")");
    }
}

void EvalGuard::SetStepBudget(unsigned long units)
{
    s_stepBudget = units;
}

unsigned long EvalGuard::GetStepBudget()
{
    return s_stepBudget;
}

} // namespace script
