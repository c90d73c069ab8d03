#include "app/entities/PenEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "app/Scene.h"
#include "app/entities/ShapeGeometry.h"
#include "logging/Log.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <cmath>
#include <limits>

namespace app
{
const double PenEntity::MAX_TAIL_TIME = 600.0;

namespace
{
// Consecutive tail points are at least this share of a screen centimetre, and of the pen's size, apart.
const float MIN_TAIL_STEP = 0.1f;
// A moved pen stays on its geom while within this distance of it, in metres.
const float ON_GEOM_TOLERANCE = 0.001f;

math::Vec2 UnitOrZero(const math::Vec2& v)
{
    const float length = v.Length();
    return length > 0.0f ? v / length : math::Vec2(0, 0);
}
} // namespace

PenEntity::PenEntity(float size)
    : m_size(this, "size", size), m_fadeTime(this, "fadeTime", 10.0f),
      m_time(physics::Simulation::GetInstancePtr()->GetSimulatedTime())
{
    m_size->RequireFinite();
    physics::Simulation::GetInstancePtr()->AddStepCallback(
        util::MakeCallbackArg<float>(&PenEntity::OnSimUpdate, this));
}

void PenEntity::Update(float) {}
void PenEntity::AddToSimulation() {}
void PenEntity::RemoveFromSimulation() {}

void PenEntity::AttachTo(GeomPtr geom, math::Vec2 local)
{
    m_geom = geom;
    m_local = local;
}

void PenEntity::AttachAt(math::Vec2 p)
{
    m_geom = Scene::GetInstancePtr()->GetGeomAt(p, m_zDepth);
    if (m_geom && m_geom != GeomPtr(physics::Simulation::GetInstancePtr()->GetWorldGeom()))
        m_local = math::TransformCoordinate(m_geom->GetWorldToGeom(), p);
}

math::Vec2 PenEntity::GetPos() const
{
    if (m_inTransform)
        return m_transformPos;
    if (!m_geom)
        return math::Vec2(std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::quiet_NaN());
    return math::TransformCoordinate(m_geom->GetPose(), m_local);
}

util::SharedPtr<physics::Circle> PenEntity::AsCircle() const
{
    return QLEX_NEW new physics::Circle(GetPos(), m_size / 2.0f);
}

bool PenEntity::IsOnEntity(math::Vec2 worldPoint) const
{
    return AsCircle()->DistanceWorld(worldPoint) < 0.0f;
}

bool PenEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    // A stroke must pass through the pen, not end in it.
    return AsCircle()->IntersectCountWorld(stroke) > 1;
}

bool PenEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    return lasso.DistanceWorld(GetPos()) < -m_size / 2.0f;
}

math::BoundingBox2 PenEntity::GetAABB() const
{
    const math::Vec2 half(m_size / 2.0f, m_size / 2.0f);
    return math::BoundingBox2(GetPos() - half, GetPos() + half);
}

bool PenEntity::IsInView(const math::BoundingBox2&) const
{
    return true;
}

void PenEntity::GetBoundPoints(std::vector<math::Vec2>& points)
{
    points.push_back(GetPos());
}

bool PenEntity::IsAlive() const
{
    if (!Entity::IsAlive() || !m_geom)
        return false;
    const physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    return m_geom == GeomPtr(sim->GetWorldGeom()) || sim->HasBody(m_geom->GetBodyBody());
}

void PenEntity::StartTransform()
{
    m_transformPos = GetPos();
    m_inTransform = true;
}

void PenEntity::Transform(const math::TMat2D<float>& m)
{
    m_transformPos = math::TransformCoordinate(m, m_transformPos);
}

void PenEntity::EndTransform()
{
    m_inTransform = false;
    physics::Body* body = m_geom ? m_geom->GetBodyBody() : nullptr;
    if (body && !body->IsImmovable() && m_geom->DistanceWorld(m_transformPos) <= ON_GEOM_TOLERANCE)
        m_local = math::TransformCoordinate(m_geom->GetWorldToGeom(), m_transformPos);
    else
        AttachAt(m_transformPos);
}

void PenEntity::SerializeTo(EntitySerializer& serializer) const
{
    Entity::SerializeTo(serializer);
    serializer.Set("size", float(m_size));
}

void PenEntity::Deserialize(const EntitySerializer& serializer)
{
    const float before = m_size;
    Entity::Deserialize(serializer);
    if (serializer.Has("size"))
        m_size = serializer.Get<float>("size");
    // A pen of no size can't be seen or picked, and couldn't be written back.
    const float size = m_size;
    if (!(size > 0.0f && math::IsFinite(size)))
    {
        Log(logging::Warning, "Ignoring bad pen size " + util::ToString(size));
        m_size = before;
    }
}

void PenEntity::CopyFrom(const Entity* source)
{
    Entity::CopyFrom(source);
    if (const PenEntity* pen = dynamic_cast<const PenEntity*>(source))
    {
        m_size = pen->m_size.Get();
        m_fadeTime = pen->m_fadeTime.Get();
    }
}

util::SharedPtr<PenEntity> PenEntity::Clone() const
{
    util::SharedPtr<PenEntity> clone =
        QLEX_NEW new PenEntity(AppSettings::GetInstancePtr()->GetDefaultJointSize());
    clone->CopyFrom(this);
    return clone;
}

void PenEntity::OnSimUpdate(float)
{
    const util::ScopeProfiler profile("Pen::OnSimUpdate");
    m_time = physics::Simulation::GetInstancePtr()->GetSimulatedTime();
    while (m_tail.size() > MAX_TAIL_LENGTH)
        m_tail.pop_front();
    while (!m_tail.empty() && m_time - m_tail.front().time > MAX_TAIL_TIME)
        m_tail.pop_front();
    // Slow motion doesn't fill the tail: the head element is replaced until the path has gone far enough.
    if (m_tail.size() > 1)
    {
        const float minDist =
            std::min(MIN_TAIL_STEP * AppSettings::GetInstancePtr()->GetScreenCM(), MIN_TAIL_STEP * m_size);
        if (math::Distance(m_tail[m_tail.size() - 1].position, m_tail[m_tail.size() - 2].position) < minDist)
            m_tail.pop_back();
    }
    const math::Vec2 p = GetPos();
    if (!math::IsFinite(p) || (!m_tail.empty() && m_tail.back().position == p))
        return;
    m_tail.push_back(TailElem{m_time, p, math::Vec2(0, 0)});
    const size_t n = m_tail.size();
    if (n > 1)
    {
        m_tail[n - 1].normal = UnitOrZero(math::Rot90CCW(p - m_tail[n - 2].position));
        if (n == 2)
            m_tail[0].normal = m_tail[1].normal;
        else
            // The middle normal spans its two neighbours, which smooths the strip.
            m_tail[n - 2].normal = UnitOrZero(math::Rot90CCW(p - m_tail[n - 3].position));
    }
}

size_t PenEntity::FindBegin() const
{
    const util::ScopeProfiler profile("Pen::FindBegin");
    size_t i = 0;
    while (i < m_tail.size() && m_time - m_tail[i].time > m_fadeTime)
        ++i;
    return i > 0 ? i - 1 : 0;
}

void PenEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

} // namespace app
