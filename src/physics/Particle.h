#pragma once

#include "physics/AbstractBody.h"
#include "physics/Circular.h"
#include "util/VectorPOD.h"

namespace physics
{
// A water particle: a body to the integrator and the solver, and a sample of the fluid to SPH.
class Particle : public AbstractBody
{
public:
    struct Neighbor
    {
        Particle* particle;
        float distance;
        // To the neighbour, not normalised.
        math::Vec2 offset;
    };

    // The particle's collision shape; it gives water contacts their material and their ids.
    class ParticleGeom final : public Circular
    {
    public:
        ParticleGeom(Particle* owner, float radius);
    };

    Particle(const math::Vec2& position, const math::Vec2& velocity);
    ~Particle() override;

    // Mass and inertia from the radius and density; friction and restitution go to the shape.
    void SetAttribs(float radius, float density, float friction, float restitution);

    const util::SharedPtr<ParticleGeom>& GetGeom() const { return m_geom; }
    float GetDensity() const { return m_density; }
    float GetPressure() const { return m_pressure; }
    const math::Vec2& GetCohesionForce() const { return m_cohesionForce; }
    float GetLonelyTime() const { return m_lonelyTime; }
    void SetLonelyTime(float t) { m_lonelyTime = t; }
    // Valid from the last neighbour search until particles next change, within one step.
    const util::VectorPOD<Neighbor>& GetNeighbors() const { return m_neighbors; }

private:
    friend class SPH;

    float m_density = 0.0f;
    float m_pressure = 0.0f;
    math::Vec2 m_cohesionForce;
    util::VectorPOD<Neighbor> m_neighbors;
    float m_lonelyTime = 0.0f;
    util::SharedPtr<ParticleGeom> m_geom;
};

} // namespace physics
