#pragma once

#include <functional>

namespace core
{
// Runs the whole program under the outermost handlers. Whatever escapes is logged and shown to the user,
// and the process ends at once with 1 after running out of memory or after an exception, and with 2 after
// anything else; no configuration is saved, so "config.autosave.cfg" stays for the next run to recover.
// Should the desktop want the error for a crash report, it is thrown on instead.
void RunUnderOuterHandlers(const std::function<void()>& program);
} // namespace core
