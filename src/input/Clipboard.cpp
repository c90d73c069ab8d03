#include "input/Clipboard.h"

#include "logging/Log.h"

#include <SDL/SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <climits>

namespace input
{

std::string Clipboard::s_text;

namespace
{

// How long a paste waits for the owner of the selection; a hung owner must not hang the program.
const int REPLY_WAIT_MS = 500;
const int REPLY_POLL_MS = 5;
const char* const PROPERTY_NAME = "QLEX_CLIPBOARD";

// The display and window that SDL opened, locked for the length of this object's life.
class XAccess
{
public:
    XAccess()
    {
        SDL_SysWMinfo info;
        SDL_VERSION(&info.version);
        if (SDL_GetWMInfo(&info) <= 0 || info.subsystem != SDL_SYSWM_X11 || !info.info.x11.display ||
            !info.info.x11.window)
            return;
        m_display = info.info.x11.display;
        m_window = info.info.x11.window;
        m_unlock = info.info.x11.unlock_func;
        if (info.info.x11.lock_func)
            info.info.x11.lock_func();
        m_clipboard = XInternAtom(m_display, "CLIPBOARD", False);
        m_utf8 = XInternAtom(m_display, "UTF8_STRING", False);
        m_targets = XInternAtom(m_display, "TARGETS", False);
        m_text = XInternAtom(m_display, "TEXT", False);
    }
    ~XAccess()
    {
        if (m_display && m_unlock)
            m_unlock();
    }
    XAccess(const XAccess&) = delete;
    XAccess& operator=(const XAccess&) = delete;

    bool IsValid() const { return m_display != nullptr; }

    Display* m_display = nullptr;
    Window m_window = 0;
    void (*m_unlock)() = nullptr;
    Atom m_clipboard = 0;
    Atom m_utf8 = 0;
    Atom m_targets = 0;
    Atom m_text = 0;
};

// Asks the owner for the selection as target and waits for its answer. False if the owner refused, or
// did not answer in time.
bool RequestSelection(const XAccess& x, Atom target, std::string& result)
{
    const Atom property = XInternAtom(x.m_display, PROPERTY_NAME, False);
    XDeleteProperty(x.m_display, x.m_window, property);
    XConvertSelection(x.m_display, x.m_clipboard, target, property, x.m_window, CurrentTime);
    XFlush(x.m_display);

    XEvent event;
    bool answered = false;
    for (int waited = 0; waited <= REPLY_WAIT_MS; waited += REPLY_POLL_MS)
    {
        if (XCheckTypedWindowEvent(x.m_display, x.m_window, SelectionNotify, &event))
        {
            answered = true;
            break;
        }
        SDL_Delay(REPLY_POLL_MS);
    }
    if (!answered || event.xselection.property == None)
        return false;

    Atom type = None;
    int format = 0;
    unsigned long count = 0, remaining = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(x.m_display, x.m_window, property, 0, LONG_MAX / 4, True, AnyPropertyType, &type,
                           &format, &count, &remaining, &data) != Success)
        return false;
    const bool ok = data && format == 8 && (type == x.m_utf8 || type == XA_STRING || type == x.m_text);
    if (ok)
        result.assign(reinterpret_cast<const char*>(data), count);
    if (data)
        XFree(data);
    return ok;
}

} // namespace

std::string Clipboard::GetText()
{
    XAccess x;
    if (!x.IsValid())
        return s_text;
    const Window owner = XGetSelectionOwner(x.m_display, x.m_clipboard);
    // Our own selection, or nobody's: the text of this run is the answer. Asking ourselves through the
    // server would wait for a reply that only the event pump could give.
    if (owner == None || owner == x.m_window)
        return s_text;
    std::string text;
    if (RequestSelection(x, x.m_utf8, text) || RequestSelection(x, XA_STRING, text))
        return text;
    Log(logging::Warning, "The clipboard's owner did not answer; pasting this program's own clipboard");
    return s_text;
}

void Clipboard::SetText(const std::string& text)
{
    s_text = text;
    XAccess x;
    if (!x.IsValid())
        return;
    // Requests of other programs reach us as window-manager events.
    SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
    XSetSelectionOwner(x.m_display, x.m_clipboard, x.m_window, CurrentTime);
    XFlush(x.m_display);
}

void Clipboard::OnSysWMEvent(const SDL_Event& event)
{
    const SDL_SysWMmsg* message = event.syswm.msg;
    if (!message || message->subsystem != SDL_SYSWM_X11 || message->event.xevent.type != SelectionRequest)
        return;
    XAccess x;
    if (!x.IsValid())
        return;
    const XSelectionRequestEvent& request = message->event.xevent.xselectionrequest;
    // Old clients name no property; the target then serves as one.
    const Atom property = request.property == None ? request.target : request.property;

    XEvent reply = {};
    reply.xselection.type = SelectionNotify;
    reply.xselection.display = request.display;
    reply.xselection.requestor = request.requestor;
    reply.xselection.selection = request.selection;
    reply.xselection.target = request.target;
    reply.xselection.property = property;
    reply.xselection.time = request.time;

    if (request.selection != x.m_clipboard)
        reply.xselection.property = None;
    else if (request.target == x.m_targets)
    {
        Atom supported[] = {x.m_targets, x.m_utf8, XA_STRING, x.m_text};
        XChangeProperty(x.m_display, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<unsigned char*>(supported), 4);
    }
    else if (request.target == x.m_utf8 || request.target == XA_STRING || request.target == x.m_text)
    {
        XChangeProperty(x.m_display, request.requestor, property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(s_text.data()),
                        static_cast<int>(s_text.size()));
    }
    else
        reply.xselection.property = None;

    XSendEvent(x.m_display, request.requestor, False, NoEventMask, &reply);
    XFlush(x.m_display);
}

} // namespace input
