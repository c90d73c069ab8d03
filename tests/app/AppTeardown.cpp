// Linked into the app test executables: the application root and the scene go while the process is whole.
#include "app/App.h"
#include "app/Scene.h"
#include "app/tools/Tools.h"
#include "gui/GUI.h"
#include "input/Input.h"

#include <gtest/gtest.h>

namespace
{
class AppEnvironment : public ::testing::Environment
{
public:
    void TearDown() override
    {
        // The interface's tree holds the application too.
        gui::GUI::Destroy();
        app::App::Destroy();
        app::Tools::Destroy();
        app::Scene::Destroy();
        input::Input::Destroy();
    }
};

const ::testing::Environment* const s_environment = ::testing::AddGlobalTestEnvironment(new AppEnvironment);
} // namespace
