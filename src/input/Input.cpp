#include "input/Input.h"

#include "input/Clipboard.h"
#include "input/Clock.h"
#include "input/JoyDirInput.h"
#include "input/Key.h"
#include "input/KeyState.h"
#include "logging/Log.h"
#include "util/Profiler.h"

#include <cctype>
#include <sstream>

namespace input
{

const InputSettings* Input::s_settings = nullptr;

namespace
{

const int KEY_REPEAT_DELAY_MS = 500;
const int KEY_REPEAT_INTERVAL_MS = 30;
const Uint8 HAT_MASKS[] = {SDL_HAT_UP, SDL_HAT_RIGHT, SDL_HAT_DOWN, SDL_HAT_LEFT};

bool s_unicodeWarned = false;

bool IsClickButton(SDLKey key)
{
    return key == Key::MOUSE_LEFT || key == Key::MOUSE_MIDDLE || key == Key::MOUSE_RIGHT;
}

} // namespace

Input::Input()
    : InputDelegator(PRIORITY), m_mousePos(0.0f, 0.0f), m_clickState(Idle), m_pressTime(0.0),
      m_pressPos(0.0f, 0.0f), m_pressButton(static_cast<SDLKey>(0)), m_clickCount(0)
{
    KeyState::SetSource([this](SDLKey key) { return IsKeyDown(key); });
    DirInput::SetJoystickMaker(&MakeJoystickDirInput);
}

Input::~Input()
{
    KeyState::SetSource(nullptr);
    DirInput::SetJoystickMaker(nullptr);
}

bool Input::IsUp()
{
    return util::Singleton<Input>::Exists();
}

void Input::InitializeSDL()
{
    SetTextInput(true);
    LookForJoysticks();
    CalibrateJoysticks();
    SDL_WM_GrabInput(SDL_GRAB_OFF);
    SetTextInput(true);
}

void Input::PumpEvents()
{
    util::ScopeProfiler profiler("Event handling");
    {
        util::ScopeProfiler poll("Poll loop");
        SDL_Event event;
        while (SDL_PollEvent(&event))
            HandleEvent(event);
    }

    // A press held longer than a click may last becomes a drag, even without motion.
    if (m_clickState == Pressed && Clock::Now() - m_pressTime > MaxClickTime())
    {
        if (!IsKeyDown(m_pressButton))
        {
            m_clickState = Idle;
            return;
        }
        OnDragBegin(DragEvent(m_pressPos, math::Vec2(0.0f, 0.0f), m_pressPos, m_pressButton));
        if (m_mousePos.x != m_pressPos.x || m_mousePos.y != m_pressPos.y)
            OnDrag(DragEvent(m_pressPos, m_mousePos - m_pressPos, m_mousePos, m_pressButton));
        m_clickState = Dragging;
    }
}

void Input::HandleEvent(const SDL_Event& event)
{
    util::ScopeProfiler profiler("HandleEvent");
    switch (event.type)
    {
    case SDL_ACTIVEEVENT:
    case SDL_QUIT:
    case SDL_VIDEORESIZE:
    case SDL_VIDEOEXPOSE:
        OnOtherEvent(InputEvent(event));
        break;
    case SDL_SYSWMEVENT:
    {
        util::ScopeProfiler syswm("SDL_SYSWMEVENT");
        Clipboard::OnSysWMEvent(event);
        OnOtherEvent(InputEvent(event));
        break;
    }
    case SDL_USEREVENT:
    {
        util::ScopeProfiler user("SDL_USEREVENT");
        OnOtherEvent(InputEvent(event));
        break;
    }
    case SDL_KEYDOWN:
        OnKeyEvent(BuildKeyEvent(event, true));
        break;
    case SDL_KEYUP:
        OnKeyEvent(BuildKeyEvent(event, false));
        break;
    case SDL_MOUSEMOTION:
    {
        util::ScopeProfiler motionProfiler("SDL_MOUSEMOTION");
        MouseEvent motion(event);
        m_mousePos = motion.position;
        OnMouseMove(motion);
        break;
    }
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        m_mousePos = PosFromPixel(event.button.x, event.button.y);
        OnKeyEvent(KeyEvent(Key::GetMouseKey(event.button.button), 0, event.type == SDL_MOUSEBUTTONDOWN,
                            m_mousePos));
        break;
    case SDL_JOYBUTTONDOWN:
    case SDL_JOYBUTTONUP:
        OnKeyEvent(KeyEvent(Key::GetJoystickKey(event.jbutton.which, event.jbutton.button), 0,
                            event.type == SDL_JOYBUTTONDOWN, m_mousePos));
        break;
    case SDL_JOYHATMOTION:
        for (Uint8 mask : HAT_MASKS)
        {
            const SDLKey key = Key::GetJoystickHatKey(event.jhat.which, event.jhat.hat, mask);
            const bool down = (event.jhat.value & mask) != 0;
            if (IsKeyDown(key) != down)
                OnKeyEvent(KeyEvent(key, 0, down, m_mousePos));
        }
        break;
    case SDL_JOYAXISMOTION:
        OnJoyAxisEvent(JoyAxisEvent(GetJoystick(event.jaxis.which), event.jaxis.axis));
        break;
    case SDL_JOYBALLMOTION:
        break;
    default:
        Log(logging::Error, "Unknown Event from SDL");
        break;
    }
}

void Input::OnKeyEvent(const KeyEvent& event)
{
    // Before any listener: one that asks IsKeyDown inside its handler sees the new state.
    m_keyTable[event.key] = event.pressed;
    InputDelegator::OnKeyEvent(event);

    // The wheel and the further mouse buttons never click or drag.
    if (event.IsHandled() || !IsClickButton(event.key))
        return;

    if (event.pressed)
    {
        // A press during a pending click or a drag moves neither the time nor the place of the first one.
        if (m_clickState != Idle)
            return;
        m_pressTime = Clock::Now();
        m_pressPos = event.position;
        m_pressButton = event.key;
        m_clickCount = 0;
        m_clickState = Pressed;
        return;
    }

    if (event.key != m_pressButton)
        return;
    if (m_clickState == Dragging)
    {
        DragEvent end(m_pressPos, math::Vec2(0.0f, 0.0f), event.position, m_pressButton);
        OnDragEnd(end);
        if (end.IsHandled())
            event.SetHandled();
        m_clickState = Idle;
    }
    else if (m_clickState == Pressed)
    {
        // The state stays Pressed after a release, so that the time for further clicks runs from the
        // first press.
        ++m_clickCount;
        ClickEvent click(m_pressPos, m_pressButton, m_clickCount);
        OnClick(click);
        if (click.IsHandled())
            event.SetHandled();
        if (m_clickCount > MaxClickCount())
            m_clickState = Idle;
    }
}

void Input::OnMouseMove(const MouseEvent& event)
{
    util::ScopeProfiler profiler("OnMouseMove");
    InputDelegator::OnMouseMove(event);
    if (event.IsHandled())
        return;

    if (m_clickState == Pressed && math::Distance(event.position, m_pressPos) > MaxClickDistance())
    {
        // Moved away after a click: no drag.
        if (!IsKeyDown(m_pressButton))
        {
            m_clickState = Idle;
            return;
        }
        // The drag begins at the press, so that a tool sees the exact point where the button went down;
        // the first drag event then carries the whole way from there.
        DragEvent begin(m_pressPos, math::Vec2(0.0f, 0.0f), m_pressPos, m_pressButton);
        OnDragBegin(begin);
        DragEvent drag(m_pressPos, event.position - m_pressPos, event.position, m_pressButton);
        OnDrag(drag);
        if (begin.IsHandled() || drag.IsHandled())
            event.SetHandled();
        m_clickState = Dragging;
        return;
    }
    if (m_clickState == Dragging)
    {
        DragEvent drag(m_pressPos, event.delta, event.position, m_pressButton);
        OnDrag(drag);
        if (drag.IsHandled())
            event.SetHandled();
    }
}

bool Input::IsKeyDown(int key) const
{
    auto found = m_keyTable.find(key);
    return found != m_keyTable.end() && found->second;
}

bool Input::CheckModifier(Modifier modifier) const
{
    const SDLMod mod = SDL_GetModState();
    auto has = [mod](int bits) { return (mod & bits) != 0; };
    auto down = [this](SDLKey key) { return IsKeyDown(key); };

    const bool leftShift = has(KMOD_LSHIFT) && down(SDLK_LSHIFT);
    const bool rightShift = has(KMOD_RSHIFT) && down(SDLK_RSHIFT);
    const bool leftCtrl = has(KMOD_LCTRL) && down(SDLK_LCTRL);
    const bool rightCtrl = has(KMOD_RCTRL) && down(SDLK_RCTRL);
    const bool leftMeta = has(KMOD_LMETA) && down(SDLK_LMETA);
    const bool rightMeta = has(KMOD_RMETA) && down(SDLK_RMETA);
    const bool anyShiftKey = down(SDLK_LSHIFT) || down(SDLK_RSHIFT);
    const bool anyCtrlKey = down(SDLK_LCTRL) || down(SDLK_RCTRL);
    const bool anyMetaKey = down(SDLK_LMETA) || down(SDLK_RMETA);
    const bool anyAltKey = down(SDLK_LALT) || down(SDLK_RALT);
    const bool meta = has(KMOD_LMETA | KMOD_RMETA) && anyMetaKey;

    switch (modifier)
    {
    case None:
        return mod == 0;
    case Shift:
        return has(KMOD_LSHIFT | KMOD_RSHIFT) && anyShiftKey;
    case LeftShift:
        return leftShift;
    case RightShift:
        return rightShift;
    case Ctrl:
        return (has(KMOD_LCTRL | KMOD_RCTRL) && anyCtrlKey) || meta;
    case LeftCtrl:
        return leftCtrl || leftMeta;
    case RightCtrl:
        return rightCtrl || rightMeta;
    case Alt:
        return has(KMOD_LALT | KMOD_RALT) && anyAltKey;
    case LeftAlt:
        return has(KMOD_LALT) && down(SDLK_LALT);
    case RightAlt:
        return has(KMOD_RALT);
    case Meta:
        return meta;
    case LeftMeta:
        return leftMeta;
    case RightMeta:
        return rightMeta;
    case Num:
        return has(KMOD_NUM) && down(SDLK_NUMLOCK);
    case Caps:
        return has(KMOD_CAPS) && down(SDLK_CAPSLOCK);
    default:
        return has(KMOD_MODE);
    }
}

double Input::MaxClickTime() const
{
    return s_settings ? s_settings->GetClickTimeTolerance() : InputSettings::DEFAULT_CLICK_TIME_TOLERANCE;
}

float Input::MaxClickDistance() const
{
    return s_settings ? s_settings->GetClickTolerance() : InputSettings::DEFAULT_CLICK_TOLERANCE;
}

std::string Input::GetClipboardText() const
{
    return Clipboard::GetText();
}

void Input::SetClipboardText(const std::string& text)
{
    Clipboard::SetText(text);
}

void Input::SetGrabInput(bool grab)
{
    SDL_WM_GrabInput(grab ? SDL_GRAB_ON : SDL_GRAB_OFF);
}

void Input::SetShowCursor(bool show)
{
    SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

void Input::LookForJoysticks()
{
    SDL_JoystickEventState(SDL_ENABLE);
    const int count = SDL_NumJoysticks();
    if (count > 0)
        Log(logging::Info, "Found " + std::to_string(count) + " " + Plural("joystick", count) + "\n---");
    for (int i = 0; i < count; ++i)
    {
        try
        {
            util::SharedPtr<Joystick> joystick = QLEX_NEW new Joystick(i);
            m_joysticks.push_back(joystick);
            std::ostringstream text;
            text << "Opened joystick " << i << "\nName: " << joystick->GetName()
                 << "\nNumber of axes: " << joystick->GetNumAxes()
                 << "\nNumber of buttons: " << joystick->GetNumButtons()
                 << "\nNumber of balls: " << joystick->GetNumBalls()
                 << "\nNumber of hats: " << joystick->GetNumHats() << "\n--";
            Log(logging::Info, text.str());
        }
        catch (std::exception& e)
        {
            Log(logging::Warning, e.what());
        }
    }
}

void Input::CalibrateJoysticks()
{
    for (const auto& joystick : m_joysticks)
        joystick->Calibrate();
}

util::SharedPtr<Joystick> Input::GetJoystick(int index) const
{
    for (const auto& joystick : m_joysticks)
        if (joystick->GetId() == index)
            return joystick;
    return nullptr;
}

void Input::SetSettings(const InputSettings* settings)
{
    s_settings = settings;
}

math::Vec2 Input::PosFromPixel(int x, int y)
{
    if (s_settings)
        return s_settings->PosFromPixel(x, y);
    return math::Vec2(static_cast<float>(x), static_cast<float>(y));
}

void SetTextInput(bool on)
{
    SDL_EnableUNICODE(on ? 1 : 0);
    SDL_EnableKeyRepeat(on ? KEY_REPEAT_DELAY_MS : 0, KEY_REPEAT_INTERVAL_MS);
}

KeyEvent BuildKeyEvent(const SDL_Event& event, bool pressed)
{
    const SDLKey key = event.key.keysym.sym;
    char character = static_cast<char>(event.key.keysym.unicode & 0xFF);
    if (character == 0)
    {
        const int code = static_cast<int>(key);
        if (code == SDLK_SPACE)
            character = ' ';
        else if (code == SDLK_RETURN)
            character = '\n';
        else if (code == SDLK_TAB)
            character = '\t';
        else if (code >= SDLK_KP0 && code <= SDLK_KP9)
            character = static_cast<char>('0' + (code - SDLK_KP0));
        else
        {
            try
            {
                const std::string name = Key::GetKeyName(key);
                if (name.size() == 1)
                {
                    const bool shift = Input::IsUp() && Input::GetInstancePtr()->CheckModifier(Shift);
                    const unsigned char c = static_cast<unsigned char>(name[0]);
                    character = static_cast<char>(shift ? std::toupper(c) : std::tolower(c));
                }
            }
            catch (std::exception& e)
            {
                CatchException(e, QLEX_SITE);
            }
        }
        // A printable key without SDL's character means that unicode translation has been switched off.
        if (character != 0 && pressed)
        {
            if (!s_unicodeWarned)
            {
                Log(logging::Error, "SDL unicode doesn't work");
                s_unicodeWarned = true;
            }
            SetTextInput(true);
        }
    }
    const math::Vec2 position =
        Input::IsUp() ? Input::GetInstancePtr()->GetMousePos() : math::Vec2(0.0f, 0.0f);
    KeyEvent result(key, character, pressed, position);
    if (Input::IsUp())
    {
        // The modifiers as they stood when this key went down or up. SDL's present modifier state has
        // already seen every event of the queue: a quick Ctrl+Q arrives with Ctrl released by then.
        const Input& input = *Input::GetInstancePtr();
        const SDLMod mod = event.key.keysym.mod;
        auto held = [&input, mod](int bits, SDLKey left, SDLKey right)
        { return (mod & bits) != 0 && (input.IsKeyDown(left) || input.IsKeyDown(right)); };
        result.shift = held(KMOD_SHIFT, SDLK_LSHIFT, SDLK_RSHIFT);
        result.ctrl = held(KMOD_CTRL, SDLK_LCTRL, SDLK_RCTRL) || held(KMOD_META, SDLK_LMETA, SDLK_RMETA);
        result.alt = held(KMOD_ALT, SDLK_LALT, SDLK_RALT);
    }
    return result;
}

std::string Plural(std::string word, int count)
{
    if (count >= 2)
        word += "s";
    return word;
}

} // namespace input
