#pragma once

#include "physics/Joint.h"

namespace physics
{
// A damped spring evaluated once: stiffness k, damping c, rest length.
struct SpringDamper
{
    float k;
    float c;
    float restLength;

    // The force on the first end; the second end takes its opposite.
    math::Vec2 CalculateForces(const math::Vec2& p0, const math::Vec2& p1, const math::Vec2& v0,
                               const math::Vec2& v1) const;
};

// A soft link. Stiffness and damping scale with the reduced mass of the two ends, so that one setting
// gives the same frequency for light and heavy bodies: springForce * strength is an acceleration per metre.
class SpringJoint : public Joint
{
public:
    SpringJoint(const util::SharedPtr<Geom>& geomA, const math::Vec2& worldPointA,
                const util::SharedPtr<Geom>& geomB, const math::Vec2& worldPointB);

    void ApplyForce() override;
    // Potential energy stored in the spring, for drawing.
    float CalcEnergy() const;

    void SetTargetLength(float length) { m_targetLength = length; }
    float GetTargetLength() const { return m_targetLength; }
    void SetStrengthFactor(float factor);
    float GetStrengthFactor() const { return m_strengthFactor; }
    void SetDampingFactor(float factor);
    float GetDampingFactor() const { return m_dampingFactor; }
    void GetWorldPoints(math::Vec2 out[2]) const;
    const math::Vec2& GetAnchor(int i) const { return m_anchors[i]; }

private:
    // Reduced mass along the spring, and the spring's length.
    float CalcMass(const Body& body0, const Body& body1, const math::Vec2 points[2], float& length) const;

    math::Vec2 m_anchors[2];
    float m_targetLength;
    float m_strengthFactor = 1.0f;
    float m_dampingFactor = 1.0f;
};

} // namespace physics
