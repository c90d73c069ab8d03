#include "gui/GUI.h"
#include "input/Input.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

// The state machine needs SDL's event queue and modifier state, not a display.
class SDLEnvironment : public ::testing::Environment
{
public:
    void SetUp() override
    {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        ASSERT_NE(SDL_SetVideoMode(64, 64, 0, 0), nullptr) << SDL_GetError();
    }
    void TearDown() override
    {
        // Before static destruction, which would take the trackers down under the singletons.
        gui::GUI::Destroy();
        input::Input::Destroy();
        SDL_Quit();
    }
};

const auto* const s_environment = ::testing::AddGlobalTestEnvironment(new SDLEnvironment);

} // namespace
