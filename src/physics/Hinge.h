#pragma once

#include "physics/Constraint.h"
#include "physics/Geom.h"

namespace physics
{
// A hard pin between two shapes, solved with the contacts: two rows that keep the anchors together, and an
// optional angular motor. Too great an impulse or too wide a gap breaks it for good.
class Hinge : public Constraint
{
public:
    Hinge(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB, const math::Vec2& anchorA,
          const math::Vec2& anchorB);
    Hinge(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB,
          const math::Vec2& worldPoint);

    // Hinged shapes never collide with each other.
    void Activate();
    void Deactivate();
    bool IsGood() const;
    bool IsInSim() const { return m_isInSim; }
    void GetWorldPoints(math::Vec2 out[2]) const;

    bool SolveInit(const StepContext& step) override;
    void CalcDesiredImpulse() override;
    void ApplyImpulse() override;

    const util::SharedPtr<Geom>& GetGeom(int i) const { return i == 0 ? m_geomA : m_geomB; }
    const math::Vec2& GetAnchor(int i) const { return i == 0 ? m_anchorA : m_anchorB; }

    void SetMotorOn(bool on) { m_motorOn = on; }
    bool IsMotorOn() const { return m_motorOn; }
    // Target angular velocity of B relative to A, radians per second.
    void SetMotorSpeed(float speed) { m_motorSpeed = speed; }
    float GetMotorSpeed() const { return m_motorSpeed; }
    // Caps the motor's angular acceleration: the impulse per step is at most mass * h * strength.
    void SetMotorStrength(float strength) { m_motorStrength = strength; }
    float GetMotorStrength() const { return m_motorStrength; }
    void SetImpulseLimit(float limit) { m_impulseLimit = limit; }
    float GetImpulseLimit() const { return m_impulseLimit; }
    void SetDistanceLimit(float limit) { m_distanceLimit = limit; }
    float GetDistanceLimit() const { return m_distanceLimit; }
    bool IsBroken() const { return m_broken; }
    const math::Vec2& GetSum() const { return m_sum; }
    float GetMotorSum() const { return m_motorSum; }

private:
    bool m_isInSim = false;
    util::SharedPtr<Geom> m_geomA;
    util::SharedPtr<Geom> m_geomB;
    math::Vec2 m_anchorA;
    math::Vec2 m_anchorB;
    bool m_motorOn = false;
    float m_motorSpeed = 0.0f;
    float m_motorStrength = 1.0f;
    float m_impulseLimit = math::INF;
    float m_distanceLimit = math::INF;
    bool m_broken = false;
    bool m_warnedSingular = false;
    math::TMatrix2<float> m_invMassMatrix;
    float m_motorMass = 0.0f;
    float m_motorImpulseLimit = 0.0f;
    math::Vec2 m_target;
    math::Vec2 m_delta;
    math::Vec2 m_sum;
    float m_motorTarget = 0.0f;
    float m_motorDelta = 0.0f;
    float m_motorSum = 0.0f;
};

} // namespace physics
