#include "physics/Hinge.h"

#include "logging/Exception.h"
#include "logging/Log.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "physics/StepContext.h"

#include <algorithm>
#include <cmath>

namespace physics
{
Hinge::Hinge(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB,
             const math::Vec2& anchorA, const math::Vec2& anchorB)
    : m_geomA(geomA), m_geomB(geomB), m_anchorA(anchorA), m_anchorB(anchorB)
{
}

Hinge::Hinge(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB,
             const math::Vec2& worldPoint)
    : m_geomA(geomA), m_geomB(geomB),
      m_anchorA(math::TransformCoordinate(geomA->GetWorldToGeom(), worldPoint)),
      m_anchorB(math::TransformCoordinate(geomB->GetWorldToGeom(), worldPoint))
{
}

void Hinge::Activate()
{
    QLEX_ASSERT(!m_isInSim);
    m_isInSim = true;
    m_geomA->AddNoCollide(m_geomB.get());
    m_geomB->AddNoCollide(m_geomA.get());
}

void Hinge::Deactivate()
{
    QLEX_ASSERT(m_isInSim);
    m_isInSim = false;
    m_geomA->RemoveNoCollide(m_geomB.get());
    m_geomB->RemoveNoCollide(m_geomA.get());
}

bool Hinge::IsGood() const
{
    const Simulation& sim = *Simulation::GetInstancePtr();
    Body* a = m_geomA->GetBodyBody();
    Body* b = m_geomB->GetBodyBody();
    return a && b && sim.HasBody(a) && sim.HasBody(b) && !m_broken;
}

void Hinge::GetWorldPoints(math::Vec2 out[2]) const
{
    out[0] = math::TransformCoordinate(m_geomA->GetPose(), m_anchorA);
    out[1] = math::TransformCoordinate(m_geomB->GetPose(), m_anchorB);
}

bool Hinge::SolveInit(const StepContext& step)
{
    m_bodies[0] = m_geomA->GetBody();
    m_bodies[1] = m_geomB->GetBody();
    if (!m_bodies[0] || !m_bodies[1] || m_bodies[0] == m_bodies[1] ||
        (m_bodies[0]->IsImmovable() && m_bodies[1]->IsImmovable()))
        return false;
    const AbstractBody& a = *m_bodies[0];
    const AbstractBody& b = *m_bodies[1];
    const ConstraintParams& p = step.hingeParams;
    CacheInverseMasses();

    math::Vec2 points[2];
    GetWorldPoints(points);
    if (math::DistanceSq(points[0], points[1]) > m_distanceLimit * m_distanceLimit)
    {
        m_broken = true;
        return false;
    }
    m_r0 = points[0] - a.GetPosition();
    m_r1 = points[1] - b.GetPosition();

    // K maps an impulse at the anchors to the change of their relative velocity. With M(r) the matrix
    // [[-y y, x y], [x y, -x x]], K = (mA + mB) I - iA M(r0) - iB M(r1), softened by the regularisation.
    const float mA = a.GetEffectiveMassInv();
    const float mB = b.GetEffectiveMassInv();
    const float iA = a.GetEffectiveInertiaInv();
    const float iB = b.GetEffectiveInertiaInv();
    const math::Vec2& r0 = m_r0;
    const math::Vec2& r1 = m_r1;
    const float reg = p.regularization;
    const float k00 = mA + mB + iA * r0.y * r0.y + iB * r1.y * r1.y + reg;
    const float k01 = -iA * r0.x * r0.y - iB * r1.x * r1.y;
    const float k11 = mA + mB + iA * r0.x * r0.x + iB * r1.x * r1.x + reg;
    const math::TMatrix2<float> k(k00, k01, k01, k11);
    // Without regularisation, bodies of vast mass make K vanish in float: no impulse can be found. The
    // hinge sits this step out, and the bodies, as heavy as they are, hardly notice.
    if (k.Determinant() == 0.0f)
    {
        if (!m_warnedSingular)
            Log(logging::Warning, "A hinge whose bodies are too heavy to solve is skipped");
        m_warnedSingular = true;
        return false;
    }
    m_invMassMatrix = math::Inverted(k);
    // A stiffness of 0 makes the regularisation infinite: an infinitely soft hinge that takes no impulse,
    // where the inverse itself would be NaN.
    if (!math::IsFiniteFloat(m_invMassMatrix(0, 0)) || !math::IsFiniteFloat(m_invMassMatrix(0, 1)) ||
        !math::IsFiniteFloat(m_invMassMatrix(1, 0)) || !math::IsFiniteFloat(m_invMassMatrix(1, 1)))
        m_invMassMatrix = math::TMatrix2<float>(0.0f, 0.0f, 0.0f, 0.0f);

    const math::Vec2 accA = AccelerationAt(a, r0);
    const math::Vec2 accB = AccelerationAt(b, r1);
    const math::Vec2 velA = a.GetVelAtWorld(points[0]);
    const math::Vec2 velB = b.GetVelAtWorld(points[1]);
    math::Vec2 error = points[1] - points[0];
    const float errorLength = error.Length();
    if (errorLength > 0.0f && errorLength > step.maxPositionCorrection)
        error *= step.maxPositionCorrection / errorLength;
    m_target = -((accB - accA) * p.accelerationFactor + (velB - velA) * p.velocityFactor +
                 error * (p.distanceFactor * m_distanceWeight));

    if (m_motorOn)
    {
        m_motorMass = 1.0f / (iA + iB + reg);
        m_motorImpulseLimit = m_motorMass * p.h * m_motorStrength;
        m_motorTarget =
            (m_motorSpeed - (b.GetAngularVelocity() - a.GetAngularVelocity())) * p.velocityFactor -
            (iB * b.GetTorque() - iA * a.GetTorque()) * p.accelerationFactor;
    }

    if (step.warmStart)
    {
        const float f = step.warmStartFactor * m_warmStartWeight;
        m_sum *= f;
        Constraint::ApplyImpulse(m_sum);
        if (m_motorOn && m_motorSum != 0.0f)
        {
            m_motorSum *= f;
            m_bodies[0]->RotationChange() -= iA * m_motorSum;
            m_bodies[1]->RotationChange() += iB * m_motorSum;
        }
    }
    else
    {
        m_sum = math::Vec2(0.0f, 0.0f);
        m_motorSum = 0.0f;
    }
    return true;
}

void Hinge::CalcDesiredImpulse()
{
    if (m_broken)
    {
        m_priority = 0.0f;
        return;
    }
    const AbstractBody& a = *m_bodies[0];
    const AbstractBody& b = *m_bodies[1];
    const math::Vec2 w = VelocityChangeAt(b, m_r1) - VelocityChangeAt(a, m_r0);
    m_delta = m_invMassMatrix * (m_target - w);
    m_priority = m_delta.LengthSq();
    if (m_motorOn)
    {
        float m = (m_motorTarget - (b.RotationChange() - a.RotationChange())) * m_motorMass + m_motorSum;
        m = std::min(std::max(m, -m_motorImpulseLimit), m_motorImpulseLimit);
        m_motorDelta = m - m_motorSum;
        m_priority += m_motorDelta * m_motorDelta;
    }
}

void Hinge::ApplyImpulse()
{
    if (m_broken)
        return;
    m_sum += m_delta;
    if (m_sum.LengthSq() > m_impulseLimit * m_impulseLimit)
    {
        m_broken = true;
        return;
    }
    Constraint::ApplyImpulse(m_delta);
    if (m_motorOn && m_motorDelta != 0.0f)
    {
        m_bodies[0]->RotationChange() -= m_inertiaInv[0] * m_motorDelta;
        m_bodies[1]->RotationChange() += m_inertiaInv[1] * m_motorDelta;
        m_motorSum += m_motorDelta;
    }
}

} // namespace physics
