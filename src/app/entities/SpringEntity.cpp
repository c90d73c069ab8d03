#include "app/entities/SpringEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "physics/Polygon.h"

#include <cmath>

namespace app
{
namespace
{
// A point is on the spring within a third of its width of the line.
const float PICK_WIDTH_FRACTION = 1.0f / 3.0f;
} // namespace

SpringEntity::SpringEntity(float size)
    : PhysicsJointEntity(size),
      m_strengthAttrib(this, "strengthFactor", this, &SpringEntity::GetStrengthFactor,
                       &SpringEntity::SetStrengthFactor),
      m_dampingAttrib(this, "dampingFactor", this, &SpringEntity::GetDampingFactor,
                      &SpringEntity::SetDampingFactor),
      m_lengthAttrib(this, "length", this, &SpringEntity::GetTargetLength, &SpringEntity::SetTargetLength)
{
    m_strengthAttrib->RequireFinite();
    m_dampingAttrib->RequireFinite();
    m_lengthAttrib->RequireFinite();
}

float SpringEntity::GetStrengthFactor() const
{
    if (m_joint)
        m_strengthFactor = m_joint->GetStrengthFactor();
    return m_strengthFactor;
}

void SpringEntity::SetStrengthFactor(float factor)
{
    m_strengthFactor = factor;
    if (m_joint)
        m_joint->SetStrengthFactor(factor);
}

float SpringEntity::GetDampingFactor() const
{
    if (m_joint)
        m_dampingFactor = m_joint->GetDampingFactor();
    return m_dampingFactor;
}

void SpringEntity::SetDampingFactor(float factor)
{
    m_dampingFactor = factor;
    if (m_joint)
        m_joint->SetDampingFactor(factor);
}

float SpringEntity::GetTargetLength() const
{
    if (m_joint)
        m_length = m_joint->GetTargetLength();
    return m_length;
}

void SpringEntity::SetTargetLength(float length)
{
    m_length = length;
    if (m_joint)
        m_joint->SetTargetLength(length);
}

physics::Linesegment SpringEntity::GetLine() const
{
    return physics::Linesegment(m_worldPos[0], m_worldPos[1]);
}

bool SpringEntity::IsOnEntity(math::Vec2 worldPoint) const
{
    float t = 0;
    const math::Vec2 closest = GetLine().ClosestPoint(worldPoint, t);
    return t > 0.0f && t < 1.0f && math::Distance(closest, worldPoint) < m_size * PICK_WIDTH_FRACTION;
}

bool SpringEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    return physics::IntersectCount(GetLine(), stroke) > 0;
}

bool SpringEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    return lasso.DistanceWorld(m_worldPos[0]) < 0.0f && lasso.DistanceWorld(m_worldPos[1]) < 0.0f;
}

math::BoundingBox2 SpringEntity::GetAABB() const
{
    const math::Vec2 d = m_worldPos[1] - m_worldPos[0];
    const float length = d.Length();
    const math::Vec2 across = length > 0.0f ? math::Rot90CCW(d / length) * (m_size / 2.0f) : math::Vec2(0, 0);
    math::BoundingBox2 box = math::BoundingBox2::Empty();
    box.Include(m_worldPos[0] + across);
    box.Include(m_worldPos[0] - across);
    box.Include(m_worldPos[1] + across);
    box.Include(m_worldPos[1] - across);
    return box;
}

float SpringEntity::CalcEnergy() const
{
    return m_joint ? m_joint->CalcEnergy() : 0.0f;
}

util::SharedPtr<physics::SpringJoint> SpringEntity::MakeJoint()
{
    const float length = GetTargetLength();
    const float strength = GetStrengthFactor();
    const float damping = GetDampingFactor();
    util::SharedPtr<physics::SpringJoint> joint =
        QLEX_NEW new physics::SpringJoint(m_geoms[0], m_worldPos[0], m_geoms[1], m_worldPos[1]);
    joint->SetTargetLength(length);
    joint->SetStrengthFactor(strength);
    joint->SetDampingFactor(damping);
    return joint;
}

void SpringEntity::SerializeTo(EntitySerializer& serializer) const
{
    JointEntity::SerializeTo(serializer);
    serializer.Set("length", GetTargetLength());
}

void SpringEntity::CopyFrom(const Entity* source)
{
    JointEntity::CopyFrom(source);
    if (const SpringEntity* spring = dynamic_cast<const SpringEntity*>(source))
    {
        SetStrengthFactor(spring->GetStrengthFactor());
        SetDampingFactor(spring->GetDampingFactor());
        SetTargetLength(spring->GetTargetLength());
    }
}

JointEntityPtr SpringEntity::Clone() const
{
    return CloneAs<SpringEntity>();
}

void SpringEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

} // namespace app
