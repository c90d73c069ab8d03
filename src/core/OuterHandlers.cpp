#include "core/OuterHandlers.h"

#include "logging/Exception.h"
#include "logging/Log.h"
#include "platform/Os.h"

#include <new>
#include <string>

namespace core
{
namespace
{
const char* const OUT_OF_MEMORY_TEXT = "Out of memory! Install more RAM, or try decreasing App.maxUndo in "
                                       "config.autosave.cfg and config.cfg and restart Qlex.";

enum ExitCode
{
    EXIT_ERROR = 1,
    EXIT_UNKNOWN_FAILURE = 2,
};

// Tells the user, and ends the process unless the desktop wants the error for a crash report. Called only
// from inside a handler, where the bare throw passes the caught exception on.
void Fail(const char* title, const std::string& text, int code)
{
    if (os::ShowErrorPopup(title, text))
    {
        throw;
    }
    os::ExitProcess(code);
}
} // namespace

void RunUnderOuterHandlers(const std::function<void()>& program)
{
    try
    {
        program();
    }
    catch (std::bad_alloc&)
    {
        Log(logging::Warning, std::string("std::bad_alloc caught - ") + OUT_OF_MEMORY_TEXT);
        Fail("Out of memory!", OUT_OF_MEMORY_TEXT, EXIT_ERROR);
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, std::string("Exception caught in main: ") + e.what());
        Fail("Exception caught", e.what(), EXIT_ERROR);
    }
    catch (...)
    {
        CatchException(QLEX_SITE);
        Log(logging::Warning, "Unknown exception caught in main.");
        Fail("Badness", "Unknown exception caught", EXIT_UNKNOWN_FAILURE);
    }
}
} // namespace core
