#include "app/entities/HingeEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"

#include <cmath>

namespace app
{
const float DefaultMotorSpeed = math::PIf / 2.0f;

namespace
{
// Key codes of the arrow keys, which old scenes name as the "arrowkeys" controller.
const SDLKey KEY_RIGHT = SDLKey(275);
const SDLKey KEY_LEFT = SDLKey(276);
const SDLKey KEY_DOWN = SDLKey(274);

} // namespace

HingeEntity::HingeEntity(float size)
    : PhysicsJointEntity(size), m_motor(this, "motor", false), m_ccw(this, "ccw", false),
      m_motorSpeed(this, "motorSpeed", DefaultMotorSpeed), m_motorTorque(this, "motorTorque", 100.0f),
      m_autoBrake(this, "autoBrake", false), m_impulseLimit(this, "impulseLimit", math::INF),
      m_distanceLimit(this, "distanceLimit", math::INF)
{
    // The limits may be infinite: that is their default, no limit.
    m_motorSpeed->RequireFinite();
    m_motorTorque->RequireFinite();
}

void HingeEntity::Update(float dt)
{
    JointEntity::Update(dt);
    if (!m_joint)
        return;
    m_joint->SetImpulseLimit(m_impulseLimit);
    m_joint->SetDistanceLimit(m_distanceLimit);
    // A negative speed is a turn the other way.
    if (m_motorSpeed < 0.0f)
    {
        m_motorSpeed = std::fabs(m_motorSpeed);
        m_ccw = !m_ccw;
    }
    const float speed = m_ccw ? -m_motorSpeed : m_motorSpeed;
    m_joint->SetMotorStrength(m_motorTorque);
    // A motor on at speed 0 is a brake: with autoBrake the brake key lets go, without it the key holds.
    if (m_buttonBrake.IsOn())
    {
        m_joint->SetMotorSpeed(0.0f);
        m_joint->SetMotorOn(!m_autoBrake);
    }
    else if (m_buttonForward.IsOn())
    {
        m_joint->SetMotorSpeed(speed);
        m_joint->SetMotorOn(true);
    }
    else if (m_buttonBack.IsOn())
    {
        m_joint->SetMotorSpeed(-speed);
        m_joint->SetMotorOn(true);
    }
    else if (m_autoBrake)
    {
        m_joint->SetMotorSpeed(0.0f);
        m_joint->SetMotorOn(true);
    }
    else
    {
        m_joint->SetMotorSpeed(speed);
        m_joint->SetMotorOn(m_motor);
    }
}

util::SharedPtr<physics::Hinge> HingeEntity::MakeJoint()
{
    return QLEX_NEW new physics::Hinge(m_geoms[0], m_geoms[1], m_localPos[0], m_localPos[1]);
}

void HingeEntity::SerializeTo(EntitySerializer& serializer) const
{
    JointEntity::SerializeTo(serializer);
    if (m_buttonForward.IsBound())
        serializer.Set("buttonForward", util::String(m_buttonForward.Serialize()));
    if (m_buttonBack.IsBound())
        serializer.Set("buttonBack", util::String(m_buttonBack.Serialize()));
    if (m_buttonBrake.IsBound())
        serializer.Set("buttonBrake", util::String(m_buttonBrake.Serialize()));
}

void HingeEntity::Deserialize(const EntitySerializer& serializer)
{
    JointEntity::Deserialize(serializer);
    if (serializer.Has("controller") && serializer.Get<util::String>("controller") == "arrowkeys")
    {
        m_motor = false;
        m_buttonForward.Assign(KEY_RIGHT);
        m_buttonBack.Assign(KEY_LEFT);
        m_buttonBrake.Assign(KEY_DOWN);
    }
    if (serializer.Has("buttonForward"))
        m_buttonForward.Deserialize(serializer.Get<util::String>("buttonForward"));
    if (serializer.Has("buttonBack"))
        m_buttonBack.Deserialize(serializer.Get<util::String>("buttonBack"));
    if (serializer.Has("buttonBrake"))
        m_buttonBrake.Deserialize(serializer.Get<util::String>("buttonBrake"));
    else if (serializer.Has("buttonBreak"))
        m_buttonBrake.Deserialize(serializer.Get<util::String>("buttonBreak"));
}

void HingeEntity::CopyFrom(const Entity* source)
{
    JointEntity::CopyFrom(source);
    if (const HingeEntity* hinge = dynamic_cast<const HingeEntity*>(source))
    {
        m_motor = hinge->m_motor.Get();
        m_ccw = hinge->m_ccw.Get();
        m_motorSpeed = hinge->m_motorSpeed.Get();
        m_motorTorque = hinge->m_motorTorque.Get();
        m_autoBrake = hinge->m_autoBrake.Get();
        m_impulseLimit = hinge->m_impulseLimit.Get();
        m_distanceLimit = hinge->m_distanceLimit.Get();
        m_buttonForward.AssignKeys(hinge->m_buttonForward);
        m_buttonBack.AssignKeys(hinge->m_buttonBack);
        m_buttonBrake.AssignKeys(hinge->m_buttonBrake);
    }
}

JointEntityPtr HingeEntity::Clone() const
{
    return CloneAs<HingeEntity>();
}

void HingeEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

} // namespace app
