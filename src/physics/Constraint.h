#pragma once

#include "math/Math.h"
#include "physics/AbstractBody.h"
#include "util/SharedPtr.h"

namespace physics
{
class Contact;
struct StepContext;

// Parameters of a stiff, damped constraint for one step length h, from stiffness k and damping d (in
// steps). With q = 4 d + 1, the distance term corrects an error over about d steps, the velocity term
// removes 4d/q of the approach speed, and the regularisation 4 / (q h^2 k) softens the constraint as a
// spring of stiffness k would.
struct ConstraintParams
{
    ConstraintParams() = default;
    ConstraintParams(float h, float d, float k, float accFactor);

    float h = 0.0f;
    float distanceFactor = 0.0f;
    float velocityFactor = 0.0f;
    float accelerationFactor = 0.0f;
    float regularization = 0.0f;
};

// The impulse record shared by contacts and hinges. Solvers call SolveInit once, then CalcDesiredImpulse
// and ApplyImpulse again and again; impulses go to the bodies' velocity-change accumulators, not to their
// velocities.
class Constraint : public util::Pointee
{
public:
    ~Constraint() override;

    // False when the constraint takes no part in this solve.
    virtual bool SolveInit(const StepContext& step) = 0;
    virtual void CalcDesiredImpulse() = 0;
    virtual void ApplyImpulse() = 0;
    // The contact this is, if it is one: the solver keeps contacts in a compact form of its own.
    virtual Contact* AsContact() { return nullptr; }

    float GetPriority() const { return m_priority; }
    AbstractBody* GetBody(int i) const { return m_bodies[i]; }
    void SetDistanceWeight(float w) { m_distanceWeight = w; }
    float GetDistanceWeight() const { return m_distanceWeight; }
    void SetWarmStartWeight(float w) { m_warmStartWeight = w; }
    float GetWarmStartWeight() const { return m_warmStartWeight; }

protected:
    Constraint();
    Constraint(const Constraint& other);
    Constraint& operator=(const Constraint& other);

    // Body A takes -impulse at r0, body B +impulse at r1. Reads the inverse masses that CacheInverseMasses
    // took, as nothing changes them during a solve.
    // An immovable body is left alone: 0 times a NaN impulse of a broken neighbour would be NaN, and the
    // ground would pass it to every body that rests on it.
    void ApplyImpulse(const math::Vec2& impulse)
    {
        AbstractBody& a = *m_bodies[0];
        AbstractBody& b = *m_bodies[1];
        if (m_massInv[0] != 0.0f)
            a.VelocityChange() -= impulse * m_massInv[0];
        if (m_inertiaInv[0] != 0.0f)
            a.RotationChange() -= m_inertiaInv[0] * math::Cross(m_r0, impulse);
        if (m_massInv[1] != 0.0f)
            b.VelocityChange() += impulse * m_massInv[1];
        if (m_inertiaInv[1] != 0.0f)
            b.RotationChange() += m_inertiaInv[1] * math::Cross(m_r1, impulse);
    }
    // The effective inverse masses of both bodies (zero while held), for this solve.
    void CacheInverseMasses()
    {
        for (int i = 0; i < 2; ++i)
        {
            m_massInv[i] = m_bodies[i]->GetEffectiveMassInv();
            m_inertiaInv[i] = m_bodies[i]->GetEffectiveInertiaInv();
        }
    }

    float m_distanceWeight = 1.0f;
    float m_warmStartWeight = 1.0f;
    AbstractBody* m_bodies[2] = {nullptr, nullptr};
    math::Vec2 m_r0;
    math::Vec2 m_r1;
    // Size of the last desired impulse, squared.
    float m_priority = 0.0f;
    float m_massInv[2] = {0.0f, 0.0f};
    float m_inertiaInv[2] = {0.0f, 0.0f};
};

// Greatest priority first.
struct ConstraintComparer
{
    bool operator()(const Constraint* a, const Constraint* b) const
    {
        return a->GetPriority() > b->GetPriority();
    }
};

// Effective mass of two bodies for an impulse along dir at arms rA and rB; held bodies count as immovable.
float CombinedMass(const AbstractBody& bodyA, const math::Vec2& rA, const AbstractBody& bodyB,
                   const math::Vec2& rB, const math::Vec2& dir);

// The acceleration that the body's force and torque give the point at arm r (held bodies: none). Targets
// take it in so that the forces still to come in a step are allowed for.
inline math::Vec2 AccelerationAt(const AbstractBody& body, const math::Vec2& r)
{
    return body.GetForce() * body.GetEffectiveMassInv() +
           math::Cross(body.GetEffectiveInertiaInv() * body.GetTorque(), r);
}

// The velocity change that the impulses of this solve so far give the point at arm r.
inline math::Vec2 VelocityChangeAt(const AbstractBody& body, const math::Vec2& r)
{
    return body.VelocityChange() + math::Cross(body.RotationChange(), r);
}

} // namespace physics
