#include "app/tools/SketchTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/FiniteGeomEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/tools/StrokeShapes.h"
#include "app/tools/ToolActions.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
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
} // namespace

bool SketchTool::Disband()
{
    m_lastLine = Line();
    return StrokeTool::Disband();
}

void SketchTool::Update(float)
{
    if (util::Timer::GetCurrentTime() - m_lastLineTime > LAST_LINE_SECONDS)
        m_lastLine = Line();
}

void SketchTool::Draw() const
{
    const double age = util::Timer::GetCurrentTime() - m_lastLineTime;
    if (m_lastLine.Size() > 1 && age < LAST_LINE_SECONDS)
    {
        rendering::ColorPusher color;
        rendering::Renderer::GetInstancePtr()->SetColor4(1, 0, 0, float(1 - age / LAST_LINE_SECONDS));
        DrawLine(m_lastLine);
    }
    StrokeTool::Draw();
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
