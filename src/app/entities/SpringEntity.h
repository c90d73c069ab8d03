#pragma once

#include "app/entities/JointEntity.h"
#include "physics/SpringJoint.h"

namespace app
{
// A damped spring between two points. Its settings live in the physics spring while there is one, and in
// shadow fields otherwise, so a spring keeps them while it has no joint.
class SpringEntity final : public PhysicsJointEntity<physics::SpringJoint>
{
public:
    explicit SpringEntity(float size);

    void Draw() const override;
    // Picked, erased and bounded as the line it is drawn along.
    bool IsOnEntity(math::Vec2 worldPoint) const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    math::BoundingBox2 GetAABB() const override;
    float CalcEnergy() const override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void CopyFrom(const Entity* source) override;
    JointEntityPtr Clone() const override;

    physics::Linesegment GetLine() const;
    script::AttribWrapper<math::real>& StrengthAttrib() { return m_strengthAttrib; }
    script::AttribWrapper<math::real>& DampingAttrib() { return m_dampingAttrib; }
    script::AttribWrapper<math::real>& LengthAttrib() { return m_lengthAttrib; }

    float GetStrengthFactor() const;
    void SetStrengthFactor(float factor);
    float GetDampingFactor() const;
    void SetDampingFactor(float factor);
    float GetTargetLength() const;
    void SetTargetLength(float length);

protected:
    util::SharedPtr<physics::SpringJoint> MakeJoint() override;

private:
    mutable float m_strengthFactor = 0.05f;
    mutable float m_dampingFactor = 0.1f;
    mutable float m_length = 1.0f;

public:
    script::AttribWrapper<math::real> m_strengthAttrib;
    script::AttribWrapper<math::real> m_dampingAttrib;
    script::AttribWrapper<math::real> m_lengthAttrib;
};

} // namespace app
