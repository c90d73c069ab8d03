#include "app/tools/Tool.h"

namespace app
{

void Tool::OnKeyEvent(const input::KeyEvent& event)
{
    input::InputListener::OnKeyEvent(event);
    if (!event.IsHandled() && event.pressed && event.key == SDLK_ESCAPE && Disband())
        event.SetHandled();
}

} // namespace app
