#include "app/tools/BoxTool.h"

#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "physics/Box.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"

#include <algorithm>
#include <cmath>

namespace app
{
namespace
{
float Sign(float v)
{
    return float((v > 0) - (v < 0));
}
} // namespace

math::Vec2 BoxTool::SquareCorner(const math::Vec2& start, const math::Vec2& p)
{
    const math::Vec2 d = p - start;
    const float side = std::max(std::fabs(d.x), std::fabs(d.y));
    return start + math::Vec2(Sign(d.x) * side, Sign(d.y) * side);
}

math::Vec2 BoxTool::GetEndPos(const math::Vec2& p) const
{
    return IsShiftHeld() ? SquareCorner(m_start, p) : p;
}

void BoxTool::OnDragBegin(const input::DragEvent& event)
{
    if (!MayStartShape(event))
        return;
    m_start = ToWorld(event.startPos);
    m_dragging = true;
    event.SetHandled();
}

void BoxTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !m_dragging)
        return;
    const math::Vec2 e = GetEndPos(ToWorld(event.position));
    const math::Vec2 size(std::fabs(e.x - m_start.x), std::fabs(e.y - m_start.y));
    // A box without area has no mass and no outline to select by: such a drag makes nothing.
    if (size.x > 0 && size.y > 0)
    {
        const AppSettings& settings = *AppSettings::GetInstancePtr();
        Scene& scene = *Scene::GetInstancePtr();
        const bool selected =
            !settings.m_freeDrawing && scene.IsSelection(*physics::Polygon::CreateBox(m_start, e));
        if (!selected)
        {
            util::SharedPtr<physics::Box> box = QLEX_NEW new physics::Box(size, (m_start + e) * 0.5f);
            if (settings.m_autoGlue)
                physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(box);
            AddUndoable(QLEX_NEW new BoxEntity(box), "UndoBox");
        }
    }
    event.SetHandled();
    Disband();
}

bool BoxTool::Disband()
{
    if (!m_dragging)
        return false;
    m_dragging = false;
    return true;
}

void BoxTool::Draw() const
{
    if (!m_dragging)
        return;
    const math::Vec2 e = GetEndPos(App::GetInstancePtr()->GetMousePos());
    DrawLine(Line({m_start, math::Vec2(m_start.x, e.y), e, math::Vec2(e.x, m_start.y), m_start}));
}

} // namespace app
