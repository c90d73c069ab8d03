#include "core/interim/StandIns.h"

#include "core/Subsystem.h"

namespace core::interim
{
void PumpEvents(Subsystem& subsystem)
{
    InputEvent input;
    while (SDL_PollEvent(&input.event))
    {
        switch (input.event.type)
        {
        case SDL_KEYDOWN:
        case SDL_KEYUP:
        case SDL_MOUSEMOTION:
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            break;
        default:
            input.handled = false;
            subsystem.OnOtherEvent(input);
            break;
        }
    }
}
} // namespace core::interim
