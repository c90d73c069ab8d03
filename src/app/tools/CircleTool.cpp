#include "app/tools/CircleTool.h"

#include "app/AppSettings.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "physics/Simulation.h"

#include <cmath>

namespace app
{

void CircleTool::OnDragBegin(const input::DragEvent& event)
{
    if (!MayStartShape(event))
        return;
    SetInUse(true);
    m_center = ToWorld(event.startPos);
    event.SetHandled();
}

void CircleTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    const math::Vec2 toMouse = ToWorld(event.position) - m_center;
    const float r = toMouse.Length();
    if (r > 0)
    {
        util::SharedPtr<physics::Circle> circle = QLEX_NEW new physics::Circle(m_center, r);
        circle->SetWorldPose(math::Mat2D::TranslationRotation(m_center, std::atan2(toMouse.y, toMouse.x)));
        util::SharedPtr<CircleEntity> preview = QLEX_NEW new CircleEntity(circle);
        // One colour for the whole gesture: the first preview's random one.
        if (m_circle)
            preview->SetColor(m_circle->GetColor());
        m_circle = preview;
    }
    event.SetHandled();
}

void CircleTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !m_inUse)
        return;
    if (m_circle)
    {
        if (AppSettings::GetInstancePtr()->m_autoGlue)
            physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(m_circle->m_circle);
        AddUndoable(m_circle, "UndoCircle");
        event.SetHandled();
    }
    SetInUse(false);
    m_circle = nullptr;
}

bool CircleTool::Disband()
{
    const bool hadPreview = bool(m_circle);
    m_circle = nullptr;
    return hadPreview;
}

void CircleTool::Draw() const
{
    if (m_inUse && m_circle)
        m_circle->Draw();
}

} // namespace app
