#include "app/tools/Tools.h"

#include "app/Camera.h"
#include "app/Scene.h"
#include "app/tools/BoxTool.h"
#include "app/tools/BrushTool.h"
#include "app/tools/ChainTool.h"
#include "app/tools/CircleTool.h"
#include "app/tools/CloneTool.h"
#include "app/tools/DragTool.h"
#include "app/tools/JointTools.h"
#include "app/tools/MoveTool.h"
#include "app/tools/PanTool.h"
#include "app/tools/PlaneTool.h"
#include "app/tools/RotateTool.h"
#include "app/tools/ScaleTool.h"
#include "app/tools/SketchTool.h"
#include "app/tools/SpringTool.h"
#include "gui/GUI.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Timer.h"

namespace app
{
Tools::Tools()
    : input::InputListener(Tool::PRIORITY), m_move(QLEX_NEW new MoveTool()),
      m_clone(QLEX_NEW new CloneTool()), m_rotate(QLEX_NEW new RotateTool()), m_pan(QLEX_NEW new PanTool()),
      m_sketch(QLEX_NEW new SketchTool()), m_brush(QLEX_NEW new BrushTool()), m_drag(QLEX_NEW new DragTool()),
      m_plane(QLEX_NEW new PlaneTool()), m_circle(QLEX_NEW new CircleTool()), m_box(QLEX_NEW new BoxTool()),
      m_chain(QLEX_NEW new ChainTool()), m_spring(QLEX_NEW new SpringTool()),
      m_fixJoint(QLEX_NEW new FixJointTool()), m_hinge(QLEX_NEW new HingeTool()),
      m_pen(QLEX_NEW new PenTool()), m_scale(QLEX_NEW new ScaleTool()), m_selected(m_sketch)
{
    const std::pair<SDLKey, ToolPtr> shortcuts[] = {
        {SDLK_b, m_brush},    {SDLK_k, m_sketch}, {SDLK_d, m_drag},  {SDLK_p, m_plane},
        {SDLK_c, m_circle},   {SDLK_x, m_box},    {SDLK_n, m_chain}, {SDLK_s, m_spring},
        {SDLK_f, m_fixJoint}, {SDLK_h, m_hinge},  {SDLK_e, m_pen},   {SDLK_r, m_scale},
    };
    m_shortcuts.insert(std::begin(shortcuts), std::end(shortcuts));
    // A cleared scene leaves no gesture half done on entities that are gone.
    Scene::GetInstancePtr()->AddOnClearCallback(util::MakeCallback(&Tools::DisbandCurrent, this));
}

Tools::ToolPtr Tools::GetTool() const
{
    if (m_pending)
        return m_pending;
    if (m_active)
        return m_active;
    return m_selected;
}

void Tools::Select(const ToolPtr& tool)
{
    if (m_selected)
        m_selected->Disband();
    m_selected = tool;
    m_active = nullptr;
}

void Tools::SetActive(const ToolPtr& tool)
{
    GetTool()->Disband();
    m_active = tool;
}

SDLKey Tools::KeyFromTool(const ToolPtr& tool) const
{
    for (const auto& [key, candidate] : m_shortcuts)
    {
        if (candidate == tool)
            return key;
    }
    return SDLK_UNKNOWN;
}

Tools::ToolPtr Tools::ToolFromKey(SDLKey key) const
{
    for (const auto& [candidate, tool] : m_shortcuts)
    {
        if (candidate == key)
            return tool;
    }
    return nullptr;
}

void Tools::OnKeyEvent(const input::KeyEvent& event)
{
    input::InputListener::OnKeyEvent(event);
    if (event.IsHandled())
        return;
    const double now = util::Timer::GetCurrentTime();
    if (!event.pressed && m_pending && event.key == m_heldKey)
    {
        const double held = now - m_pressTime;
        if (held > gui::GUI::GetInstancePtr()->GetClickTimeTolerance())
            m_pending->Disband();
        else
            Select(m_pending);
        m_pending = nullptr;
        m_heldKey = SDLK_UNKNOWN;
        event.SetHandled();
        return;
    }
    if (event.pressed && m_heldKey == SDLK_UNKNOWN && !event.ctrl)
    {
        const ToolPtr tool = ToolFromKey(event.key);
        if (!tool || tool == GetTool())
            return;
        GetTool()->Disband();
        m_heldKey = event.key;
        m_pressTime = now;
        m_pending = tool;
        event.SetHandled();
    }
}

void Tools::DisbandCurrent()
{
    GetTool()->Disband();
}

void Tools::Update(float dt)
{
    const ToolPtr tool = GetTool();
    tool->Update(dt);
    Scene::GetInstancePtr()->GetCamera()->SetPanToolActive(tool == m_pan);
    UpdateCursor();
}

void Tools::UpdateCursor()
{
    const util::String name = GetTool()->GetCursorName();
    // Loaded once per change: the texture manager keeps what it made, the GUI only its proxy.
    if (m_cursorSet && name == m_cursorName)
        return;
    m_cursorSet = true;
    m_cursorName = name;
    gui::GUI& gui = *gui::GUI::GetInstancePtr();
    if (name.empty())
    {
        gui.SetCursor(gui.GetDefaultCursor());
        return;
    }
    rendering::Texture::ImageType rgba = rendering::TextureManager::DefaultImageType();
    rgba.format = GL_RGBA;
    gui.SetCursor(rendering::TextureManager::GetInstancePtr()->Load(
        util::FileSystem::GetInstancePtr()->CursorDir() + name, rgba));
}

} // namespace app
