#pragma once

#include "physics/Constraint.h"
#include "physics/ContactID.h"

namespace physics
{
class Geom;

// A unilateral constraint with friction at one point. The normal points from shape A to shape B, the depth
// is positive while they overlap, and relative velocities are B's minus A's.
class Contact : public Constraint
{
public:
    Contact(Geom* geomA, Geom* geomB, std::uint32_t subId, const math::Vec2& point, const math::Vec2& normal,
            float depth);

    // Continues a contact of the last step: its age and impulses carry over.
    void ReadFrom(const Contact& old);

    bool SolveInit() override;
    void CalcDesiredImpulse() override;
    void ApplyImpulse() override;

    math::Vec2 GetTotalImpulse() const;
    bool IsSeparating() const;

    const ContactID& GetID() const { return m_id; }
    const math::Vec2& GetPoint() const { return m_point; }
    const math::Vec2& GetNormal() const { return m_normal; }
    float GetDepth() const { return m_depth; }
    float GetFriction() const { return m_friction; }
    float GetRestitution() const { return m_restitution; }
    bool IsNew() const { return m_isNew; }
    double GetBirthTime() const { return m_birthTime; }
    float GetSumN() const { return m_sumN; }
    float GetSumT() const { return m_sumT; }

    static ConstraintParams s_params;
    static float s_targetPenetration;

private:
    double m_birthTime;
    math::Vec2 m_point;
    math::Vec2 m_normal;
    float m_depth;
    float m_friction;
    float m_restitution;
    math::Vec2 m_tangent;
    bool m_isNew = true;
    math::Vec2 m_relativeVelocity;
    float m_massN;
    float m_massT;
    float m_regularizedN;
    float m_regularizedT;
    float m_activeMassN = 0.0f;
    float m_activeMassT = 0.0f;
    float m_targetN = 0.0f;
    float m_targetT = 0.0f;
    float m_sumN = 0.0f;
    float m_sumT = 0.0f;
    float m_deltaN = 0.0f;
    float m_deltaT = 0.0f;
    ContactID m_id;
};

// Signed geometric mean: zero on either side gives zero.
float Mix(float a, float b);

} // namespace physics
