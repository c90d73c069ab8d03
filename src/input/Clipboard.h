#pragma once

#include <SDL/SDL.h>

#include <string>

namespace input
{

// The text clipboard: the X CLIPBOARD selection, reached through the X display and window that SDL
// opened. Where there is no X window (no video mode yet, another video driver), or X doesn't answer in
// time, an in-process clipboard stands in, so that copy and paste inside one run always work.
class Clipboard
{
public:
    static std::string GetText();
    static void SetText(const std::string& text);
    // Answers other programs' requests for the text while we own the selection. Fed with the SDL
    // window-manager events by the event pump.
    static void OnSysWMEvent(const SDL_Event& event);

private:
    static std::string s_text;
};

} // namespace input
