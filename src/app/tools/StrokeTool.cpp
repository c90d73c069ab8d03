#include "app/tools/StrokeTool.h"

#include "app/Action.h"
#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/PlaneEntity.h"
#include "app/tools/StrokeShapes.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "logging/Log.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"

namespace app
{
namespace
{
Scene& TheScene()
{
    return *Scene::GetInstancePtr();
}
} // namespace

void StrokeTool::AddPoint(const math::Vec2& guiPos)
{
    const math::Vec2 p = TheScene().GetCamera()->GUIToWorld(guiPos);
    if (m_line.IsEmpty() ||
        (p - m_line.Back()).Length() >= AppSettings::GetInstancePtr()->GetMinimumPointDist())
        m_line.Add(p);
}

void StrokeTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    SetInUse(true);
    event.SetHandled();
    m_line = Line();
    m_line.Add(TheScene().GetCamera()->GUIToWorld(event.startPos));
}

void StrokeTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    if (!IsShiftHeld())
        AddPoint(event.position);
    event.SetHandled();
}

void StrokeTool::OnKeyEvent(const input::KeyEvent& event)
{
    Tool::OnKeyEvent(event);
    if (event.IsHandled() || !m_inUse || event.pressed)
        return;
    if (event.key == SDLK_RSHIFT || event.key == SDLK_LSHIFT)
        AddPoint(event.position);
}

void StrokeTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !m_inUse)
        return;
    AddPoint(event.position);
    if (m_line.Size() > 1)
        AnalyzeDrawing();
    event.SetHandled();
    m_line = Line();
    SetInUse(false);
}

bool StrokeTool::Disband()
{
    m_line = Line();
    if (!m_inUse)
        return false;
    SetInUse(false);
    return true;
}

void StrokeTool::Draw() const
{
    if (!m_inUse)
        return;
    rendering::ColorPusher color;
    rendering::Renderer::GetInstancePtr()->SetColor4(0.85f, 1, 0.85f, 1);
    Line line = m_line;
    line.Add(App::GetInstancePtr()->GetMousePos());
    DrawLine(line);
}

bool StrokeTool::TestEraseLine()
{
    const std::vector<physics::Linesegment> segments = m_line.GetSegments();
    const GroupPtr& selection = TheScene().GetSelection();
    EntitySet struck;
    bool selectedStruck = false;
    for (const EntityPtr& entity : TheScene().GetEntities())
    {
        if (!entity->ErasedBy(segments))
            continue;
        struck.insert(entity);
        selectedStruck = selectedStruck || selection->Contains(entity);
    }
    // Striking through one selected entity erases the whole selection.
    if (selectedStruck)
    {
        for (const EntityPtr& entity : selection->GetEntities())
            struck.insert(entity);
    }
    // The ground goes only when it is struck out alone.
    if (struck.size() > 1)
    {
        EntitySet withoutPlanes;
        for (const EntityPtr& entity : struck)
        {
            if (!dynamic_cast<const PlaneEntity*>(entity.get()))
                withoutPlanes.insert(entity);
        }
        struck = withoutPlanes;
    }
    if (struck.empty())
        return false;
    Undoer::GetInstancePtr()->Do(QLEX_NEW new EraseEntities(struck));
    return true;
}

util::SharedPtr<physics::Polygon> StrokeTool::IsPolygon()
{
    const std::optional<std::vector<math::Vec2>> outline =
        FindPolygonOutline(m_line, AppSettings::GetInstancePtr()->GetMaximumPointDist());
    if (!outline || outline->size() <= 2)
        return nullptr;
    try
    {
        return QLEX_NEW new physics::Polygon(*outline);
    }
    catch (std::exception& e)
    {
        CatchException(e, util::String(__FILE__) + ":" + std::to_string(__LINE__) + " " + __func__);
        Log(logging::Debug, "Bad polygon");
        return nullptr;
    }
}

} // namespace app
