#pragma once

#include "physics/Constraint.h"
#include "physics/ContactID.h"

namespace physics
{
class Geom;

// A contact as the solver's sweeps see it, packed for a pass over thousands of them: the bodies by their
// places in the step's list, and everything else that CalcDesiredImpulse and ApplyImpulse read or write.
struct ContactRow
{
    std::uint32_t bodyA;
    std::uint32_t bodyB;
    math::Vec2 normal;
    math::Vec2 r0;
    math::Vec2 r1;
    float massInv[2];
    float inertiaInv[2];
    float activeMassN;
    float activeMassT;
    float targetN;
    float targetT;
    float friction;
    float sumN;
    float sumT;
    float deltaN;
    float deltaT;
};

// What a contact carries into the next step when it is found again: its age and its impulses.
struct ContactMemory
{
    double birthTime;
    float sumN;
    float sumT;
};

// A unilateral constraint with friction at one point. The normal points from shape A to shape B, the depth
// is positive while they overlap, and relative velocities are B's minus A's.
class Contact : public Constraint
{
public:
    Contact(Geom* geomA, Geom* geomB, std::uint32_t subId, const math::Vec2& point, const math::Vec2& normal,
            float depth);

    // Makes this a new contact, as the constructor would, so that contacts can be reused from step to step.
    void Reset(Geom* geomA, Geom* geomB, std::uint32_t subId, const math::Vec2& point,
               const math::Vec2& normal, float depth);

    // Continues a contact of the last step: its age and impulses carry over.
    void ReadFrom(const Contact& old) { ReadFrom(old.Remember()); }
    void ReadFrom(const ContactMemory& old);
    ContactMemory Remember() const { return ContactMemory{m_birthTime, m_sumN, m_sumT}; }

    bool SolveInit(const StepContext& step) override;
    void CalcDesiredImpulse() override;
    void ApplyImpulse() override;
    Contact* AsContact() override { return this; }
    // The solver's packed copy, after SolveInit, and the sweeps' results taken back from it.
    void MakeRow(std::uint32_t bodyA, std::uint32_t bodyB, ContactRow& row) const;
    void TakeResults(const ContactRow& row);

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

private:
    double m_birthTime;
    math::Vec2 m_point;
    math::Vec2 m_normal;
    float m_depth;
    float m_friction;
    float m_restitution;
    // Every member is set by Reset.
    math::Vec2 m_tangent;
    bool m_isNew;
    math::Vec2 m_relativeVelocity;
    float m_massN;
    float m_massT;
    float m_activeMassN;
    float m_activeMassT;
    float m_targetN;
    float m_targetT;
    float m_sumN;
    float m_sumT;
    float m_deltaN;
    float m_deltaT;
    ContactID m_id;
};

// Signed geometric mean: zero on either side gives zero.
float Mix(float a, float b);

} // namespace physics
