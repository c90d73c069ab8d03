// Linked into the app test executables: the application root and the scene go while the process is whole.
#include "app/App.h"
#include "app/Scene.h"

#include <gtest/gtest.h>

namespace
{
class AppEnvironment : public ::testing::Environment
{
public:
    void TearDown() override
    {
        app::App::Destroy();
        app::Scene::Destroy();
    }
};

const ::testing::Environment* const s_environment = ::testing::AddGlobalTestEnvironment(new AppEnvironment);
} // namespace
