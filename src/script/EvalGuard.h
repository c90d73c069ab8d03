#pragma once
// Keeps every script finite. The language has no loops, but recursion and list arithmetic can ask for
// unbounded depth or exponential work; these limits turn that into a ScriptException like any other
// error, so that a bad text never exhausts the stack or hangs the program.

namespace script
{

class EvalGuard
{
public:
    // Nesting of script function calls, and of brackets and operators in parsed text.
    static constexpr unsigned MAX_CALL_DEPTH = 400;
    static constexpr unsigned MAX_PARSE_DEPTH = 400;
    // Nesting of lists inside lists.
    static constexpr unsigned MAX_LIST_DEPTH = 400;
    // Longest string that arithmetic may build, in bytes.
    static constexpr unsigned long MAX_STRING_LENGTH = 1UL << 24;
    // Work units (calls, statements, list elements, printed elements) that one top-level statement may
    // spend: about a second of work.
    static constexpr unsigned long DEFAULT_STEP_BUDGET = 1000000UL;
    // What a contained failure costs: exceptions and their log lines are the dearest work there is, so a
    // runaway script ends after some hundreds of them, not after millions.
    static constexpr unsigned long FAILURE_COST = 500UL;
    // Bytes of text copied per work unit.
    static constexpr unsigned long BYTES_PER_STEP = 64UL;

    // One unit of work that may be limited: the outermost session starts a fresh budget.
    class Session
    {
    public:
        Session();
        ~Session();
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;
    };

    // One level of script call; throws "Stack overflow in script" beyond MAX_CALL_DEPTH.
    class CallDepth
    {
    public:
        CallDepth();
        ~CallDepth();
        CallDepth(const CallDepth&) = delete;
        CallDepth& operator=(const CallDepth&) = delete;

    private:
        Session m_session;
    };

    // Spends work units; throws when the session's budget is used up. Outside a session nothing is
    // limited.
    static void Tick(unsigned long units = 1);
    // Whether evaluation is outside any script function: a statement of the program text itself.
    static bool IsTopLevel() { return s_callDepth == 0; }
    // A top-level statement starts with the whole budget.
    static void NewStatement() { s_stepsUsed = 0; }
    static void SetStepBudget(unsigned long units);
    static unsigned long GetStepBudget();

private:
    static unsigned s_sessionDepth;
    static unsigned s_callDepth;
    static unsigned long s_stepsUsed;
    static unsigned long s_stepBudget;
};

} // namespace script
