#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

#include <cstdint>

namespace physics
{
class Constraint;

// What the integrator and the solver step: a rigid body or a water particle. Velocities and forces refer to
// the centre of mass; angles are radians, counter-clockwise.
class AbstractBody : public util::Pointee
{
public:
    AbstractBody();
    // Copies the motion state only; mass properties stay infinite and a new id is drawn.
    AbstractBody(const AbstractBody& other);
    AbstractBody& operator=(const AbstractBody&) = delete;
    ~AbstractBody() override;

    virtual void ApplyPoseChange() {}
    virtual bool IsBad() const;

    math::Vec2 GetVelAtWorld(const math::Vec2& p) const;
    void AddForce(const math::Vec2& f);
    void ApplyForce(const math::Vec2& f, const math::Vec2& p);
    void IntegrateVelocity(float dt);
    // Move, then ApplyPoseChange.
    void IntegratePosition(float dt);
    // Position and angle advance by the velocities over dt; nothing else follows.
    void Move(float dt)
    {
        if (IsImmovable())
            return;
        m_position += m_velocity * dt;
        m_angle = math::WrapAngle(m_angle + dt * m_angularVelocity);
    }

    // Held bodies and bodies of infinite mass take no impulse and never move by themselves.
    bool IsImmovable() const { return m_held || m_massInv == 0.0f; }
    float GetEffectiveMassInv() const { return m_held ? 0.0f : m_massInv; }
    float GetEffectiveInertiaInv() const { return m_held ? 0.0f : m_inertiaInv; }

    const math::Vec2& GetPosition() const { return m_position; }
    void SetPosition(const math::Vec2& p) { m_position = p; }
    const math::Vec2& GetVelocity() const { return m_velocity; }
    void SetVelocity(const math::Vec2& v) { m_velocity = v; }
    float GetAngle() const { return m_angle; }
    void SetAngle(float a) { m_angle = a; }
    float GetAngularVelocity() const { return m_angularVelocity; }
    void SetAngularVelocity(float w) { m_angularVelocity = w; }
    const math::Vec2& GetForce() const { return m_force; }
    void SetForce(const math::Vec2& f) { m_force = f; }
    float GetTorque() const { return m_torque; }
    void SetTorque(float t) { m_torque = t; }

    float GetMass() const { return m_mass; }
    float GetMassInv() const { return m_massInv; }
    float GetInertia() const { return m_inertia; }
    float GetInertiaInv() const { return m_inertiaInv; }
    float GetArea() const { return m_area; }
    std::uint32_t GetId() const { return m_id; }
    bool IsHeld() const { return m_held; }
    void SetHeld(bool held) { m_held = held; }

    // Solver scratch: velocity changes gathered during one solve, and the constraints touching this body
    // (kept by the prioritized solver only).
    util::VectorPOD<Constraint*>& GetConstraints() { return m_constraints; }
    // Where the body stands in the list of the step that is running, so that the solver can keep its
    // velocity change in an array of its own.
    std::uint32_t GetStepIndex() const { return m_stepIndex; }
    void SetStepIndex(std::uint32_t index) { m_stepIndex = index; }
    math::Vec2& VelocityChange() { return m_velocityChange; }
    float& RotationChange() { return m_rotationChange; }
    const math::Vec2& VelocityChange() const { return m_velocityChange; }
    float RotationChange() const { return m_rotationChange; }

protected:
    // Fields in three groups: rarely read; what the passes of a step over all bodies read and write,
    // together, so that such a pass touches as few cache lines as possible; and solver bookkeeping.
    float m_area = 0.0f;
    std::uint32_t m_id;
    math::Vec2 m_position;
    math::Vec2 m_velocity;
    math::Vec2 m_force;
    math::Vec2 m_velocityChange;
    float m_angle = 0.0f;
    float m_angularVelocity = 0.0f;
    float m_torque = 0.0f;
    float m_rotationChange = 0.0f;
    std::uint32_t m_stepIndex = 0;
    float m_massInv = 0.0f;
    float m_inertiaInv = 0.0f;
    float m_mass;
    bool m_held = false;
    float m_inertia;
    util::VectorPOD<Constraint*> m_constraints;

private:
    static std::uint32_t s_idCounter;
};

} // namespace physics
