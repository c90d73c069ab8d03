#pragma once

#include "physics/AbstractBody.h"
#include "physics/Circular.h"
#include "util/VectorPOD.h"

#include <cstddef>
#include <cstdint>

namespace physics
{
// A water particle: a body to the integrator and the solver, and a sample of the fluid to SPH.
class Particle final : public AbstractBody
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

        // Kept side by side like the particles, for the contacts made with whole rows of water.
        static void* operator new(std::size_t size);
        static void operator delete(void* p);
    };

    Particle(const math::Vec2& position, const math::Vec2& velocity);
    ~Particle() override;

    // Particles are kept side by side in blocks of their own (see ParticleAllocator), so that the passes
    // of a step over all water read memory in order.
    static void* operator new(std::size_t size);
    static void operator delete(void* p);

    // Mass and inertia from the radius and density; friction and restitution go to the shape.
    void SetAttribs(float radius, float density, float friction, float restitution);

    const util::SharedPtr<ParticleGeom>& GetGeom() const { return m_geom; }
    float GetDensity() const { return m_density; }
    float GetPressure() const { return m_pressure; }
    const math::Vec2& GetCohesionForce() const { return m_cohesionForce; }
    float GetLonelyTime() const { return m_lonelyTime; }
    void SetLonelyTime(float t) { m_lonelyTime = t; }
    // Valid from the last neighbour search until particles next change, within one step.
    const util::VectorPOD<Neighbor>& GetNeighbors() const;

private:
    friend class SPH;

    // What the water writes every step first, next to the body's own state, so that a pass over all
    // particles touches few cache lines; what is rarely read comes last.
    float m_density = 0.0f;
    float m_pressure = 0.0f;
    math::Vec2 m_cohesionForce;
    float m_lonelyTime = 0.0f;
    // The particle's place in the arrays of the neighbour search that saw it last, and that search's
    // number (0: none).
    std::uint32_t m_searchIndex = 0;
    std::uint32_t m_searchGeneration = 0;
    // Made from the search's pairs when first asked for; the number of the search it was made from.
    mutable util::VectorPOD<Neighbor> m_neighbors;
    mutable std::uint32_t m_neighborsGeneration = 0;
    util::SharedPtr<ParticleGeom> m_geom;
};

} // namespace physics
