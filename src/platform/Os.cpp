#include "platform/Os.h"

#include <X11/Xlib.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace os
{
bool GetDisplaySize(math::TVector2<int>& size)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display)
    {
        return false;
    }
    const int screen = DefaultScreen(display);
    const int width = DisplayWidth(display, screen);
    const int height = DisplayHeight(display, screen);
    XCloseDisplay(display);
    if (width <= 0 || height <= 0)
    {
        return false;
    }
    size = math::TVector2<int>(width, height);
    return true;
}

bool ShowErrorPopup(const std::string& title, const std::string& text)
{
    std::cerr << title << ": " << text << std::endl;
    return false;
}

std::string CalcDataDir(const std::string& argv0)
{
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (error)
    {
        error.clear();
        executable = fs::absolute(argv0, error).lexically_normal();
    }
    std::string folder = executable.has_parent_path() ? executable.parent_path().string() : ".";
    if (folder.back() != '/')
    {
        folder += '/';
    }
    return folder;
}

void ExitProcess(int code)
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    _exit(code);
}
} // namespace os
