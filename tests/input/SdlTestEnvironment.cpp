#include "SdlTestEnvironment.h"

#include "input/Input.h"

#include <SDL/SDL.h>

#include <cstdlib>

namespace input::test
{
namespace
{
// The smallest window SDL sets a mode for; nothing is drawn into it.
const int WINDOW_SIZE = 64;
} // namespace

SdlEnvironment::SdlEnvironment(std::function<void()> destroyAbove) : m_destroyAbove(std::move(destroyAbove))
{
}

void SdlEnvironment::SetUp()
{
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
    ASSERT_NE(SDL_SetVideoMode(WINDOW_SIZE, WINDOW_SIZE, 0, 0), nullptr) << SDL_GetError();
}

void SdlEnvironment::TearDown()
{
    if (m_destroyAbove)
        m_destroyAbove();
    input::Input::Destroy();
    SDL_Quit();
}

} // namespace input::test
