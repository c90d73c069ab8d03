#pragma once
// What the tests that start the real qlex wait for: a condition within a minute, and the program's window
// by its title.

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace program_window
{
constexpr auto PATIENCE = std::chrono::seconds(60);
constexpr auto POLL_STEP = std::chrono::milliseconds(20);

inline bool WaitFor(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(POLL_STEP);
    }
    return true;
}

// The window with this title below `window` on the X display, or None.
inline Window WindowTitled(Display* display, Window window, const std::string& title)
{
    char* name = nullptr;
    if (XFetchName(display, window, &name) && name)
    {
        const bool match = title == name;
        XFree(name);
        if (match)
            return window;
    }
    Window root, parent;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, window, &root, &parent, &children, &count))
        return None;
    Window found = None;
    for (unsigned i = 0; i < count && found == None; ++i)
        found = WindowTitled(display, children[i], title);
    if (children)
        XFree(children);
    return found;
}
} // namespace program_window
