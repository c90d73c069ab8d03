// Linked into every test executable that makes textures or images.
#include "rendering/ImageManager.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"
#include "util/Mentor.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

namespace
{
// Every GL object goes while its context still exists, and SDL closes before static destructors run. The
// program itself never runs static destructors; a test does, and their order is not ours to choose.
class GLEnvironment : public ::testing::Environment
{
public:
    void TearDown() override
    {
        for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
            mentor->Unload();
        // The managers hold mentors, which must go while the tracker of all mentors still exists.
        rendering::ShaderManager::Destroy();
        rendering::TextureManager::Destroy();
        rendering::ImageManager::Destroy();
        if (SDL_WasInit(SDL_INIT_VIDEO))
            SDL_Quit();
    }
};

const ::testing::Environment* const s_environment = ::testing::AddGlobalTestEnvironment(new GLEnvironment);
} // namespace
