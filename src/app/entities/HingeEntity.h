#pragma once

#include "app/entities/JointEntity.h"
#include "physics/Hinge.h"

namespace app
{
// pi / 2 radians per second: a quarter turn a second.
extern const float DefaultMotorSpeed;

// A pin between two geoms, with an optional motor that keys can drive, and limits that break it.
class HingeEntity final : public PhysicsJointEntity<physics::Hinge>
{
public:
    explicit HingeEntity(float size);

    void Update(float dt) override;
    void Draw() const override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;
    void CopyFrom(const Entity* source) override;
    JointEntityPtr Clone() const override;

    script::AttribWrapper<bool> m_motor;
    script::AttribWrapper<bool> m_ccw;
    script::AttribWrapper<math::real> m_motorSpeed;
    script::AttribWrapper<math::real> m_motorTorque;
    script::AttribWrapper<bool> m_autoBrake;
    script::AttribWrapper<math::real> m_impulseLimit;
    script::AttribWrapper<math::real> m_distanceLimit;
    input::ButtonInput m_buttonForward;
    input::ButtonInput m_buttonBack;
    input::ButtonInput m_buttonBrake;

protected:
    util::SharedPtr<physics::Hinge> MakeJoint() override;
};

} // namespace app
