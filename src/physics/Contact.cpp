#include "physics/Contact.h"

#include "logging/Exception.h"
#include "physics/AbstractBody.h"
#include "physics/Geom.h"
#include "physics/Simulation.h"
#include "physics/StepContext.h"

#include <algorithm>
#include <cmath>

namespace physics
{
float Mix(float a, float b)
{
    const float p = a * b;
    const float sign = p > 0.0f ? 1.0f : (p < 0.0f ? -1.0f : 0.0f);
    return sign * std::sqrt(std::fabs(p));
}

Contact::Contact(Geom* geomA, Geom* geomB, std::uint32_t subId, const math::Vec2& point,
                 const math::Vec2& normal, float depth)
{
    Reset(geomA, geomB, subId, point, normal, depth);
}

void Contact::Reset(Geom* geomA, Geom* geomB, std::uint32_t subId, const math::Vec2& point,
                    const math::Vec2& normal, float depth)
{
    QLEX_ASSERT(math::IsFinite(point));
    QLEX_ASSERT(math::IsFinite(normal));
    QLEX_ASSERT(math::IsFiniteFloat(depth));
    m_distanceWeight = 1.0f;
    m_warmStartWeight = 1.0f;
    m_priority = 0.0f;
    for (int i = 0; i < 2; ++i)
    {
        m_massInv[i] = 0.0f;
        m_inertiaInv[i] = 0.0f;
    }
    m_birthTime = GetSimTime();
    m_point = point;
    m_normal = normal;
    m_depth = depth;
    m_friction = Mix(geomA->GetFriction(), geomB->GetFriction());
    m_restitution = Mix(geomA->GetRestitution(), geomB->GetRestitution());
    m_tangent = math::Rot90CCW(normal);
    m_isNew = true;
    m_relativeVelocity = math::Vec2(0.0f, 0.0f);
    m_activeMassN = 0.0f;
    m_activeMassT = 0.0f;
    m_targetN = 0.0f;
    m_targetT = 0.0f;
    m_sumN = 0.0f;
    m_sumT = 0.0f;
    m_deltaN = 0.0f;
    m_deltaT = 0.0f;
    m_id = ContactID(geomA->GetId(), geomB->GetId(), subId);
    m_bodies[0] = geomA->GetBody();
    m_bodies[1] = geomB->GetBody();
    QLEX_ASSERT(m_bodies[0] && m_bodies[1]);
    m_r0 = point - m_bodies[0]->GetPosition();
    m_r1 = point - m_bodies[1]->GetPosition();
    m_massN = CombinedMass(*m_bodies[0], m_r0, *m_bodies[1], m_r1, m_normal);
    m_massT = CombinedMass(*m_bodies[0], m_r0, *m_bodies[1], m_r1, m_tangent);
}

void Contact::ReadFrom(const ContactMemory& old)
{
    m_birthTime = old.birthTime;
    m_sumN = old.sumN;
    m_sumT = old.sumT;
    m_isNew = false;
}

bool Contact::SolveInit(const StepContext& step)
{
    if (!m_bodies[0] || !m_bodies[1] || (m_bodies[0]->IsImmovable() && m_bodies[1]->IsImmovable()))
        return false;
    const AbstractBody& a = *m_bodies[0];
    const AbstractBody& b = *m_bodies[1];
    CacheInverseMasses();

    const math::Vec2 v = b.GetVelAtWorld(m_point) - a.GetVelAtWorld(m_point);
    m_relativeVelocity = v;
    const math::Vec2 acc = AccelerationAt(b, m_r1) - AccelerationAt(a, m_r0);
    const ConstraintParams& p = step.contactParams;

    if (m_isNew)
    {
        // A new contact asks the approach speed to reverse, scaled by restitution: hard, without the
        // regularisation's softening.
        m_activeMassN = m_massN;
        m_activeMassT = m_massT;
        m_targetN = (1.0f + m_restitution) * math::Dot(v, m_normal);
    }
    else
    {
        m_activeMassN = 1.0f / (1.0f / m_massN + p.regularization);
        m_activeMassT = 1.0f / (1.0f / m_massT + p.regularization);
        const float error = std::min(step.targetPenetration - m_depth, step.maxPositionCorrection);
        m_targetN = error * p.distanceFactor * m_distanceWeight + math::Dot(v, m_normal) * p.velocityFactor +
                    math::Dot(acc, m_normal) * p.accelerationFactor;
    }
    m_targetT = math::Dot(v, m_tangent) * p.velocityFactor + math::Dot(acc, m_tangent) * p.accelerationFactor;
    m_targetN *= -m_activeMassN;
    m_targetT *= -m_activeMassT;
    // A contact of a body gone bad (NaN velocity, a non-finite material) takes no part; the body is
    // flushed before the next step.
    if (!math::IsFiniteFloat(m_targetN) || !math::IsFiniteFloat(m_targetT) ||
        !math::IsFiniteFloat(m_friction))
        return false;

    if (!m_isNew && step.warmStart)
    {
        m_sumN *= step.warmStartFactor;
        m_sumT *= step.warmStartFactor;
        Constraint::ApplyImpulse(m_normal * m_sumN + m_tangent * m_sumT);
    }
    else
    {
        m_sumN = 0.0f;
        m_sumT = 0.0f;
    }
    return true;
}

void Contact::CalcDesiredImpulse()
{
    const math::Vec2 w = VelocityChangeAt(*m_bodies[1], m_r1) - VelocityChangeAt(*m_bodies[0], m_r0);

    // Contacts only push.
    m_deltaN = m_targetN - math::Dot(w, m_normal) * m_activeMassN;
    const float sumN = std::max(m_deltaN + m_sumN, 0.0f);
    m_deltaN = sumN - m_sumN;

    // Coulomb's cone: friction never exceeds mu times the normal impulse.
    const float limit = std::max(m_friction * sumN, 0.0f);
    m_deltaT = m_targetT - math::Dot(w, m_tangent) * m_activeMassT;
    const float sumT = std::min(std::max(m_deltaT + m_sumT, -limit), limit);
    m_deltaT = sumT - m_sumT;

    m_priority = m_deltaN * m_deltaN + m_deltaT * m_deltaT;
}

void Contact::ApplyImpulse()
{
    Constraint::ApplyImpulse(m_normal * m_deltaN + m_tangent * m_deltaT);
    m_sumN += m_deltaN;
    m_sumT += m_deltaT;
}

void Contact::MakeRow(std::uint32_t bodyA, std::uint32_t bodyB, ContactRow& row) const
{
    row.bodyA = bodyA;
    row.bodyB = bodyB;
    row.normal = m_normal;
    row.r0 = m_r0;
    row.r1 = m_r1;
    for (int i = 0; i < 2; ++i)
    {
        row.massInv[i] = m_massInv[i];
        row.inertiaInv[i] = m_inertiaInv[i];
    }
    row.activeMassN = m_activeMassN;
    row.activeMassT = m_activeMassT;
    row.targetN = m_targetN;
    row.targetT = m_targetT;
    row.friction = m_friction;
    row.sumN = m_sumN;
    row.sumT = m_sumT;
    row.deltaN = m_deltaN;
    row.deltaT = m_deltaT;
}

void Contact::TakeResults(const ContactRow& row)
{
    m_sumN = row.sumN;
    m_sumT = row.sumT;
    m_deltaN = row.deltaN;
    m_deltaT = row.deltaT;
    m_priority = m_deltaN * m_deltaN + m_deltaT * m_deltaT;
}

math::Vec2 Contact::GetTotalImpulse() const
{
    return m_normal * m_sumN + m_tangent * m_sumT;
}

bool Contact::IsSeparating() const
{
    return math::Dot(m_relativeVelocity, m_normal) > 0.0f;
}

} // namespace physics
