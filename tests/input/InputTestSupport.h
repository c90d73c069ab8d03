#pragma once

#include "input/Clock.h"
#include "input/Input.h"

#include <functional>
#include <string>
#include <vector>

namespace input::test
{

// A clock the test sets by hand: click timing without waiting.
struct ManualClock
{
    ManualClock()
    {
        Clock::SetSource([this] { return now; });
    }
    ~ManualClock() { Clock::SetSource(nullptr); }
    double now = 100.0;
};

// Records every event it receives as a line of text; optional hooks act on some of them.
class Recorder : public InputListener
{
public:
    explicit Recorder(int priority = 50, std::string name = "")
        : InputListener(priority), m_name(std::move(name))
    {
    }

    void OnKeyEvent(const KeyEvent& e) override
    {
        InputListener::OnKeyEvent(e);
        log.push_back(m_name + (e.pressed ? "press " : "release ") + std::to_string(int(e.key)));
        if (onKey)
            onKey(e);
    }
    void OnMouseMove(const MouseEvent& e) override { log.push_back(m_name + "move " + Pos(e.position)); }
    void OnDragBegin(const DragEvent& e) override
    {
        log.push_back(m_name + "begin " + Pos(e.startPos) + " " + Pos(e.position) + " " + Pos(e.delta));
    }
    void OnDrag(const DragEvent& e) override
    {
        log.push_back(m_name + "drag " + Pos(e.startPos) + " " + Pos(e.position) + " " + Pos(e.delta));
    }
    void OnDragEnd(const DragEvent& e) override
    {
        log.push_back(m_name + "end " + Pos(e.startPos) + " " + Pos(e.position));
        if (onDragEnd)
            onDragEnd(e);
    }
    void OnClick(const ClickEvent& e) override
    {
        log.push_back(m_name + "click " + Pos(e.position) + " x" + std::to_string(e.clickCount));
        if (onClick)
            onClick(e);
    }
    void OnOtherEvent(const InputEvent& e) override
    {
        log.push_back(m_name + "other " + std::to_string(e.event.type));
    }

    static std::string Pos(const math::Vec2& p)
    {
        auto text = [](float v)
        {
            std::string s = std::to_string(v);
            s.erase(s.find_last_not_of('0') + 1);
            if (s.back() == '.')
                s.pop_back();
            return s;
        };
        return "(" + text(p.x) + "," + text(p.y) + ")";
    }

    // Lines of the given kinds only ("click", "begin", ...).
    std::vector<std::string> Only(std::initializer_list<std::string> kinds) const
    {
        std::vector<std::string> result;
        for (const std::string& line : log)
            for (const std::string& kind : kinds)
                if (line.compare(m_name.size(), kind.size() + 1, kind + " ") == 0)
                    result.push_back(line);
        return result;
    }

    std::vector<std::string> log;
    std::function<void(const KeyEvent&)> onKey;
    std::function<void(const ClickEvent&)> onClick;
    std::function<void(const DragEvent&)> onDragEnd;

private:
    std::string m_name;
};

inline SDL_Event ButtonEvent(bool down, int x, int y, Uint8 button = SDL_BUTTON_LEFT)
{
    SDL_Event e = {};
    e.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    e.button.type = e.type;
    e.button.button = button;
    e.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    e.button.x = static_cast<Uint16>(x);
    e.button.y = static_cast<Uint16>(y);
    return e;
}

inline SDL_Event MotionEvent(int x, int y, int xrel, int yrel)
{
    SDL_Event e = {};
    e.type = SDL_MOUSEMOTION;
    e.motion.type = SDL_MOUSEMOTION;
    e.motion.x = static_cast<Uint16>(x);
    e.motion.y = static_cast<Uint16>(y);
    e.motion.xrel = static_cast<Sint16>(xrel);
    e.motion.yrel = static_cast<Sint16>(yrel);
    return e;
}

inline SDL_Event KeyboardEvent(bool down, SDLKey key, Uint16 unicode = 0)
{
    SDL_Event e = {};
    e.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    e.key.type = e.type;
    e.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    e.key.keysym.sym = key;
    e.key.keysym.unicode = unicode;
    // As SDL does: the modifiers as they stand when the event is queued.
    e.key.keysym.mod = SDL_GetModState();
    return e;
}

} // namespace input::test
