#pragma once

#include "math/Math.h"

#include <string>

// The desktop layer: what the rest of the program needs to know about the machine it runs on.
namespace os
{
// Size of the main screen in pixels. False when no display answers or it reports 0 x 0.
bool GetDisplaySize(math::TVector2<int>& size);

// Tells the user about a fatal error. Returns whether the caller should pass the error on to the default
// crash handling; on Linux the text goes to standard error and the answer is always false, so that an
// unattended run never waits for a click.
bool ShowErrorPopup(const std::string& title, const std::string& text);

// The work directory: the folder of the running executable, ending in "/". `argv0` is the fallback for
// systems without /proc.
std::string CalcDataDir(const std::string& argv0);

// Ends the process at once with `code`, without static destructors. Standard streams are flushed first.
[[noreturn]] void ExitProcess(int code);
} // namespace os
