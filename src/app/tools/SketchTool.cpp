#include "app/tools/SketchTool.h"

#include "app/Action.h"
#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/FiniteGeomEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/tools/StrokeShapes.h"
#include "input/Input.h"
#include "input/Key.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"
#include "util/Timer.h"

#include <cmath>

namespace app
{
namespace
{
// A fixate is drawn at this share of the mean length of its two strokes.
constexpr float FIXATE_SIZE_SHARE = 0.7f;

Scene& TheScene()
{
    return *Scene::GetInstancePtr();
}

AppSettings& Settings()
{
    return *AppSettings::GetInstancePtr();
}

void DrawStrip(const Line& line)
{
    if (line.Size() < 2)
        return;
    util::ScopeProfiler profile("Line::Draw");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    glBegin(GL_LINE_STRIP);
    for (const math::Vec2& p : line.GetPoints())
        renderer.Vertex(p);
    glEnd();
}

// The snapshot taken right before a new entity and the undo step right after it.
void AddUndoable(const EntityPtr& entity, const char* undoKey)
{
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    TheScene().AddEntity(entity);
    Undoer::GetInstancePtr()->AddUndo(before, undoKey);
}
} // namespace

void SketchTool::AddPoint(const math::Vec2& guiPos)
{
    const math::Vec2 p = TheScene().GetCamera()->GUIToWorld(guiPos);
    if (m_line.IsEmpty() || (p - m_line.Back()).Length() >= Settings().GetMinimumPointDist())
        m_line.Add(p);
}

void SketchTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    SetInUse(true);
    event.SetHandled();
    m_line = Line();
    m_line.Add(TheScene().GetCamera()->GUIToWorld(event.startPos));
}

void SketchTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    // While Shift is held the stroke runs straight to where the mouse is when Shift comes up.
    if (!input::Input::GetInstancePtr()->CheckModifier(input::Shift))
        AddPoint(event.position);
    event.SetHandled();
}

void SketchTool::OnKeyEvent(const input::KeyEvent& event)
{
    Tool::OnKeyEvent(event);
    if (event.IsHandled() || !m_inUse || event.pressed)
        return;
    if (event.key == SDLK_RSHIFT || event.key == SDLK_LSHIFT)
        AddPoint(event.position);
}

void SketchTool::OnDragEnd(const input::DragEvent& event)
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

bool SketchTool::Disband()
{
    m_line = Line();
    m_lastLine = Line();
    if (!m_inUse)
        return false;
    SetInUse(false);
    return true;
}

void SketchTool::Update(float)
{
    if (util::Timer::GetCurrentTime() - m_lastLineTime > LAST_LINE_SECONDS)
        m_lastLine = Line();
}

void SketchTool::Draw() const
{
    rendering::ColorPusher color;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const double age = util::Timer::GetCurrentTime() - m_lastLineTime;
    if (m_lastLine.Size() > 1 && age < LAST_LINE_SECONDS)
    {
        renderer.SetColor4(1, 0, 0, float(1 - age / LAST_LINE_SECONDS));
        DrawStrip(m_lastLine);
    }
    if (m_inUse)
    {
        renderer.SetColor4(0.85f, 1, 0.85f, 1);
        Line line = m_line;
        line.Add(App::GetInstancePtr()->GetMousePos());
        DrawStrip(line);
    }
}

void SketchTool::AnalyzeDrawing()
{
    if (m_line.Size() < 2)
    {
        m_line = Line();
        return;
    }
    if (IsStraightStroke(m_line))
    {
        if (TestFixate() || TestEraseLine())
        {
            m_lastLine = Line();
            return;
        }
        m_lastLine = m_line;
        m_lastLineTime = util::Timer::GetCurrentTime();
        return;
    }
    if (IsSpring())
        return;
    m_lastLine = Line();
    const util::SharedPtr<physics::Polygon> polygon = IsPolygon();
    if (!polygon)
        return;
    try
    {
        DecidePolygon(polygon);
    }
    catch (std::exception& e)
    {
        Log(logging::Error, util::String("Error while creating polygon: ") + e.what());
    }
}

bool SketchTool::TestFixate()
{
    const std::vector<math::Vec2> crossings = IntersectTest(m_lastLine, m_line);
    if (crossings.size() != 1)
        return false;
    const float size = FIXATE_SIZE_SHARE * std::sqrt(m_lastLine.Length() * m_line.Length());
    util::SharedPtr<FixJointEntity> fixate = QLEX_NEW new FixJointEntity(size);
    const math::Vec2 ends[2] = {crossings[0], crossings[0]};
    fixate->AttachAt(ends);
    AddUndoable(fixate, "UndoFixate");
    return true;
}

bool SketchTool::TestEraseLine()
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

bool SketchTool::IsSpring()
{
    const std::optional<SpringStroke> stroke = FindSpringStroke(m_line);
    if (!stroke)
        return false;
    util::SharedPtr<SpringEntity> spring = QLEX_NEW new SpringEntity(stroke->width);
    spring->AttachAt(stroke->ends);
    if (!spring->m_geoms[0] || !spring->m_geoms[1] || spring->m_geoms[0] == spring->m_geoms[1])
        return false;
    // The spring rests as it was drawn.
    spring->LengthAttrib() = stroke->length;
    AddUndoable(spring, "UndoSpring");
    return true;
}

util::SharedPtr<physics::Polygon> SketchTool::IsPolygon()
{
    const std::optional<std::vector<math::Vec2>> outline =
        FindPolygonOutline(m_line, Settings().GetMaximumPointDist());
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

void SketchTool::DecidePolygon(const util::SharedPtr<physics::Polygon>& polygon)
{
    Scene& scene = TheScene();
    const util::SharedPtr<physics::Geom> world = physics::Simulation::GetInstancePtr()->GetWorldGeom();
    const bool freeDrawing = Settings().m_freeDrawing;
    GroupPtr lassoed = QLEX_NEW new Group();
    std::vector<util::SharedPtr<JointEntity>> backgroundJoints;
    // Set once something other than a joint on the background lies inside: then the stroke is a lasso.
    bool other = false;
    for (const EntityPtr& entity : scene.GetEntities())
    {
        bool isJoint = false;
        const util::SharedPtr<JointEntity> joint = util::dynamic_pointer_cast<JointEntity>(entity);
        if (!other && joint)
        {
            for (int i = 0; i < 2 && !isJoint; ++i)
                isJoint = joint->m_geoms[i] == world && polygon->DistanceWorld(joint->m_worldPos[i]) < 0;
            if (isJoint)
                backgroundJoints.push_back(joint);
        }
        if (!freeDrawing && entity->IsContainedBy(*polygon))
        {
            lassoed->Add(entity);
            other = other || !isJoint;
        }
    }
    if (other)
    {
        scene.SetSelection(lassoed);
        return;
    }
    if (backgroundJoints.empty() && IsHinge(polygon))
        return;

    const SnapshotPtr before = Snapshot::TakeSnapshot();
    if (Settings().m_autoGlue)
        physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(polygon);
    scene.AddEntity(QLEX_NEW new PolyEntity(polygon));
    // Joints that stood on the background inside the new shape now hold the shape, and stay on top of it.
    GroupPtr joints = QLEX_NEW new Group();
    for (const util::SharedPtr<JointEntity>& joint : backgroundJoints)
    {
        joints->Add(joint);
        GeomPtr geoms[2] = {joint->m_geoms[0], joint->m_geoms[1]};
        math::Vec2 local[2] = {joint->m_localPos[0], joint->m_localPos[1]};
        for (int i = 0; i < 2; ++i)
        {
            if (geoms[i] == world && polygon->DistanceWorld(joint->m_worldPos[i]) != 0)
            {
                geoms[i] = polygon;
                local[i] = math::TransformCoordinate(polygon->GetWorldToGeom(), joint->m_worldPos[i]);
            }
        }
        joint->AttachToLocal(geoms[0], local[0], geoms[1], local[1]);
    }
    scene.MoveToFront(joints);
    Undoer::GetInstancePtr()->AddUndo(before, "UndoPolygon");
}

bool SketchTool::IsHinge(const util::SharedPtr<physics::Polygon>& polygon)
{
    const math::Vec2 c = polygon->GetPosition();
    const util::SharedPtr<FiniteGeomEntity> body =
        util::dynamic_pointer_cast<FiniteGeomEntity>(TheScene().GetEntityAt(c));
    if (!body || !body->GetGeom())
        return false;
    const std::optional<float> radius = FindHingeRadius(*polygon, body->GetGeom()->Area());
    if (!radius)
        return false;
    try
    {
        util::SharedPtr<HingeEntity> hinge = QLEX_NEW new HingeEntity(2 * *radius);
        const math::Vec2 ends[2] = {c, c};
        hinge->AttachAt(ends);
        AddUndoable(hinge, "UndoHinge");
        return true;
    }
    catch (std::exception& e)
    {
        Log(logging::Error, util::String("Error while creating hinge: ") + e.what());
        return false;
    }
}

} // namespace app
