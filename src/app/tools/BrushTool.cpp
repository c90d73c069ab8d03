#include "app/tools/BrushTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Snapshot.h"
#include "app/Undoer.h"
#include "app/entities/PolyEntity.h"
#include "app/tools/StrokeShapes.h"
#include "app/tools/ToolActions.h"
#include "physics/Simulation.h"

namespace app
{
namespace
{
// How far the brush's straight line may wander from its chord, as a share of the chord.
constexpr float BRUSH_LINE_TOLERANCE = 0.2f;
} // namespace

void BrushTool::OnDragBegin(const input::DragEvent& event)
{
    if (MayStartShape(event))
        StrokeTool::OnDragBegin(event);
}

bool BrushTool::IsLine() const
{
    return KeepsToChord(m_line, BRUSH_LINE_TOLERANCE);
}

void BrushTool::AnalyzeDrawing()
{
    if (m_line.Size() < 2)
    {
        m_line = Line();
        return;
    }
    if (IsLine())
    {
        TestEraseLine();
        return;
    }
    const util::SharedPtr<physics::Polygon> polygon = IsPolygon();
    if (!polygon)
        return;
    const AppSettings& settings = *AppSettings::GetInstancePtr();
    Scene& scene = *Scene::GetInstancePtr();
    if (!settings.m_freeDrawing && scene.IsSelection(*polygon))
        return;
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    if (settings.m_autoGlue)
        physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(polygon);
    scene.AddEntity(QLEX_NEW new PolyEntity(polygon));
    Undoer::GetInstancePtr()->AddUndo(before, "UndoPolygon");
}

} // namespace app
