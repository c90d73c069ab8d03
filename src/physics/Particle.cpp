#include "physics/Particle.h"

#include "logging/Exception.h"
#include "physics/ParticleAllocator.h"
#include "physics/SPH.h"

#include <new>

namespace physics
{
namespace
{
// 64 KiB blocks of particles.
const size_t PARTICLES_PER_BLOCK = 256;

// Never deleted: particles may outlive every static object, in a singleton torn down at exit.
ParticleAllocator& ParticleStore()
{
    static ParticleAllocator* store = new ParticleAllocator(sizeof(Particle), PARTICLES_PER_BLOCK);
    return *store;
}

ParticleAllocator& GeomStore()
{
    static ParticleAllocator* store =
        new ParticleAllocator(sizeof(Particle::ParticleGeom), PARTICLES_PER_BLOCK);
    return *store;
}
} // namespace

// Both classes are final: every request is for one object.
void* Particle::operator new(std::size_t size)
{
    QLEX_ASSERT(size == sizeof(Particle));
    return ParticleStore().Allocate();
}

void Particle::operator delete(void* p)
{
    ParticleStore().Free(p);
}

void* Particle::ParticleGeom::operator new(std::size_t size)
{
    QLEX_ASSERT(size == sizeof(ParticleGeom));
    return GeomStore().Allocate();
}

void Particle::ParticleGeom::operator delete(void* p)
{
    GeomStore().Free(p);
}

Particle::ParticleGeom::ParticleGeom(Particle* owner, float radius) : Circular(Kind::ParticleCircle, radius)
{
    m_body = owner;
}

Particle::Particle(const math::Vec2& position, const math::Vec2& velocity)
{
    m_position = position;
    m_velocity = velocity;
    const SPH& sph = *SPH::GetInstancePtr();
    m_geom = QLEX_NEW new ParticleGeom(this, sph.m_radius);
    SetAttribs(sph.m_radius, sph.m_density, sph.m_friction, sph.m_restitution);
}

Particle::~Particle()
{
    m_geom->SetBody(nullptr);
}

void Particle::SetAttribs(float radius, float density, float friction, float restitution)
{
    const float area = math::PIf * radius * radius;
    const float mass = area * density;
    // Settings without mass (a radius or density of 0) keep the mass the particle had, or, for a new one,
    // the infinite mass of a body without any: its inverse would be infinite, and its motion NaN.
    if (mass > 0.0f && math::IsFiniteFloat(mass))
    {
        m_area = area;
        m_mass = mass;
        // A particle turns only if contacts spin it; a radius of gyration of one metre keeps that spin
        // slow.
        m_inertia = m_mass;
        m_massInv = m_inertiaInv = 1.0f / m_mass;
    }
    m_geom->SetFriction(friction);
    m_geom->SetRestitution(restitution);
}

const util::VectorPOD<Particle::Neighbor>& Particle::GetNeighbors() const
{
    if (m_neighborsGeneration != m_searchGeneration)
    {
        SPH::GetInstancePtr()->FillNeighbors(*this, m_neighbors);
        m_neighborsGeneration = m_searchGeneration;
    }
    return m_neighbors;
}

} // namespace physics
