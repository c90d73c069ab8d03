#include "app/tools/PlaneTool.h"

#include "app/App.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "physics/Simulation.h"
#include "rendering/AttribPusher.h"
#include "rendering/ColorPusher.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

#include <cmath>

namespace app
{
namespace
{
// 15 degrees in radians.
constexpr float SNAP_ANGLE = 0.2617994f;
} // namespace

PlaneTool::PlaneTool()
{
    rendering::Texture::ImageType rgba = rendering::TextureManager::DefaultImageType();
    rgba.format = GL_RGBA;
    m_arrow = rendering::TextureManager::GetInstancePtr()->Load("arrow", rgba);
}

math::Vec2 PlaneTool::SnapDirection(const math::Vec2& n)
{
    const float k = std::floor(std::atan2(n.y, n.x) / SNAP_ANGLE + 0.5f);
    return math::Vec2(std::cos(k * SNAP_ANGLE), std::sin(k * SNAP_ANGLE));
}

void PlaneTool::OnDragBegin(const input::DragEvent& event)
{
    if (!MayStartShape(event))
        return;
    SetInUse(true);
    m_start = ToWorld(event.startPos);
    event.SetHandled();
}

void PlaneTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    const math::Vec2 d = ToWorld(event.position) - m_start;
    const float length = d.Length();
    if (!(length > 0))
        return;
    math::Vec2 n = d / length;
    if (IsShiftHeld())
        n = SnapDirection(n);
    util::SharedPtr<physics::Plane> plane =
        QLEX_NEW new physics::Plane(math::Plane2D::FromPointNormal(m_start, n));
    util::SharedPtr<PlaneEntity> preview = QLEX_NEW new PlaneEntity(plane);
    // One colour for the whole gesture: the first preview's random one.
    if (m_plane)
        preview->SetColor(m_plane->GetColor());
    m_plane = preview;
}

void PlaneTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    if (m_inUse && m_plane)
    {
        physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(m_plane->m_plane);
        AddUndoable(m_plane, "UndoPlane");
        event.SetHandled();
    }
    SetInUse(false);
    m_plane = nullptr;
}

bool PlaneTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    return true;
}

void PlaneTool::Draw() const
{
    if (!m_plane)
        return;
    m_plane->Draw();
    const float length = (App::GetInstancePtr()->GetMousePos() - m_start).Length();
    const math::Vec2 along = m_plane->m_plane->GetPlane().normal * length;
    const math::Vec2 across = math::Rot90CW(along);
    // The unit square's y axis runs from the drag's start to the mouse, its x axis across, as wide.
    const GLfloat columns[16] = {across.x, across.y, 0, 0, along.x,   along.y,   0, 0,
                                 0,        0,        1, 0, m_start.x, m_start.y, 0, 1};
    rendering::AttribPusher attribs(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    rendering::ColorPusher color;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    renderer.SetColor4(1, 1, 1, 1);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, m_arrow->GetName());
    glPushMatrix();
    glMultMatrixf(columns);
    renderer.DrawRect(math::Vec2(-0.5f, 0), math::Vec2(1, 1));
    glPopMatrix();
}

} // namespace app
