#pragma once
// A scene in a view of 800 x 600 GUI pixels at zoom 100, with the tools at their defaults, and left drags
// made of the events a window would deliver.

#include "../scene/SceneTestSupport.h"

#include "app/App.h"
#include "app/Camera.h"
#include "app/tools/SketchTool.h"
#include "app/tools/Tools.h"
#include "input/Key.h"

#include <vector>

namespace tooltest
{

class ToolTest : public scenetest::SceneTest
{
protected:
    void SetUp() override
    {
        scenetest::SceneTest::SetUp();
        physics::Simulation::GetInstancePtr()->m_running = false;
        app::App& app = *app::App::GetInstancePtr();
        app.SetOuterSize(math::Vec2(800, 600));
        app.GetCamera().Reset();
        app.GetCamera().SetZoom(100);
        tools = app::Tools::GetInstancePtr();
        tools->Select(tools->m_sketch);
        tools->SetActive(nullptr);
        settings = app::AppSettings::GetInstancePtr();
        settings->m_freeDrawing = false;
        settings->m_autoGlue = false;
    }

    math::Vec2 GUI(math::Vec2 world) const { return scene->GetCamera()->WorldToGUI(world); }

    // A left drag through the world points, straight to the tool; returns whether the tool took its begin.
    bool Drag(app::Tool& tool, const std::vector<math::Vec2>& world)
    {
        const SDLKey left = static_cast<SDLKey>(input::Key::MOUSE_LEFT);
        const math::Vec2 none(0, 0);
        const math::Vec2 start = GUI(world.front());
        const input::DragEvent begin(start, none, start, left);
        tool.OnDragBegin(begin);
        math::Vec2 last = start;
        for (size_t i = 1; i + 1 < world.size(); ++i)
        {
            const math::Vec2 p = GUI(world[i]);
            tool.OnDrag(input::DragEvent(start, p - last, p, left));
            last = p;
        }
        const math::Vec2 end = GUI(world.back());
        tool.OnDragEnd(input::DragEvent(start, end - last, end, left));
        return begin.IsHandled();
    }

    app::Tools* tools = nullptr;
    app::AppSettings* settings = nullptr;
};

} // namespace tooltest
