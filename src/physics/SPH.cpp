#include "physics/SPH.h"

#include "physics/Particle.h"
#include "util/Profiler.h"

#include <cmath>
#include <random>

namespace physics
{
float s_influenceRad = 0.1f;
float s_kernel64PiH9Inv = 0.0f;
float s_kernelPiH6Inv = 0.0f;
float s_mass = 0.0f;

namespace
{
// Stands in for the distance of two particles at one point, as a fraction of the radius, so that they
// still push apart along some direction.
const float COINCIDENT_DISTANCE_FACTOR = 0.01f;

// Half of the neighbouring cells: with the cell itself, each pair of neighbouring cells is visited once.
const math::TVector2<int> STENCIL[5] = {math::TVector2<int>(0, 0), math::TVector2<int>(0, 1),
                                        math::TVector2<int>(1, -1), math::TVector2<int>(1, 0),
                                        math::TVector2<int>(1, 1)};

unsigned int s_jitterSeed = 0;

const char* const AVG_NEIGH_COUNT = "AVG_neighCount";
const char* const AVG_PRESSURE = "AVG_pressure";
const char* const AVG_DENSITY = "AVG_density";
const char* const HASH_INFO = "hashInfo";
} // namespace

math::TVector2<int> Cellify(const math::Vec2& position, float inverseCellSize)
{
    return math::TVector2<int>(static_cast<int>(position.x * inverseCellSize),
                               static_cast<int>(position.y * inverseCellSize));
}

SPH::SPH()
    : script::Reflected("SPH"), m_radius(this, "radius", 0.05f), m_influence(this, "influence", 2.0f),
      m_specialPressure(this, "specialPressure", true), m_velocitySmoothing(this, "velocitySmoothing", true),
      m_vaporizeTime(this, "vaporizeTime", 5.0f), m_friction(this, "friction", 0.01f),
      m_restitution(this, "restitution", 0.0f), m_soundSpeed(this, "soundSpeed", 20.0f),
      m_density(this, "density", 1.0f), m_viscosity(this, "viscosity", 0.5f),
      m_pressMultiplier(this, "pressMultiplier", 1.0f), m_viscMultiplier(this, "viscMultiplier", 1.0f),
      m_surfaceTension(this, "surfaceTension", 0.0f), m_jitter(this, "jitter", 0.0f),
      m_bucketSize(this, "bucketSize", 2.0f)
{
    // The reports exist from the start, so that a script may read them before there is any water.
    Report(AVG_NEIGH_COUNT, 0.0f);
    Report(AVG_PRESSURE, 0.0f);
    Report(AVG_DENSITY, 0.0f);
    Report(HASH_INFO, util::String());
}

SPH::~SPH() = default;

float SPH::InfluenceKernel(float d)
{
    const float h = s_influenceRad;
    const float q = h * h - d * d;
    return 315.0f * s_kernel64PiH9Inv * q * q * q;
}

float SPH::PressureKernelDelta(float d)
{
    const float q = s_influenceRad - d;
    return 45.0f * s_kernelPiH6Inv * q * q;
}

float SPH::ViscocityKernelDelta2(float d)
{
    return 45.0f * s_kernelPiH6Inv * (s_influenceRad - d);
}

void SPH::SetupKernels()
{
    const float h = InfluenceDistance();
    s_influenceRad = h;
    const double h3 = double(h) * h * h;
    s_kernel64PiH9Inv = static_cast<float>(1.0 / (64.0 * math::PI * h3 * h3 * h3));
    s_kernelPiH6Inv = static_cast<float>(1.0 / (math::PI * h3 * h3));
    const float radius = m_radius;
    s_mass = math::PIf * radius * radius * m_density;
}

void SPH::Update(const std::vector<util::SharedPtr<Particle>>& particles, float dt)
{
    const util::ScopeProfiler profile("SPH::Update");
    if (particles.empty())
        return;
    m_workingList = particles;
    const float radius = m_radius;
    const float density = m_density;
    s_mass = math::PIf * radius * radius * density;
    {
        // A change of the settings takes effect at once on all water.
        const util::ScopeProfiler stage("Update rad/density");
        const float friction = m_friction;
        const float restitution = m_restitution;
        for (const util::SharedPtr<Particle>& p : m_workingList)
            p->SetAttribs(radius, density, friction, restitution);
    }
    FindNeighbors();
    CalcForces();
    {
        // A particle alone (only itself in its list) ages; removal is the simulation's business.
        const util::ScopeProfiler stage("Evaporation");
        for (const util::SharedPtr<Particle>& p : m_workingList)
            p->m_lonelyTime = p->m_neighbors.size() < 2 ? p->m_lonelyTime + dt : 0.0f;
    }
    const float jitter = m_jitter;
    if (jitter != 0.0f)
    {
        const util::ScopeProfiler stage("Jitter");
        std::mt19937 random(s_jitterSeed++);
        std::normal_distribution<float> normal(0.0f, 1.0f);
        for (const util::SharedPtr<Particle>& p : m_workingList)
        {
            const math::Vec2 dir(normal(random), normal(random));
            p->AddForce(dir * (s_mass * jitter));
        }
    }
    {
        const util::ScopeProfiler stage("Statistics");
        double neighbourSum = 0.0;
        double pressureSum = 0.0;
        double densitySum = 0.0;
        for (const util::SharedPtr<Particle>& p : m_workingList)
        {
            neighbourSum += p->m_neighbors.size();
            pressureSum += p->m_pressure;
            densitySum += p->m_density;
        }
        const double n = static_cast<double>(m_workingList.size());
        Report(AVG_NEIGH_COUNT, static_cast<float>(neighbourSum / n));
        Report(AVG_PRESSURE, static_cast<float>(pressureSum / n));
        Report(AVG_DENSITY, static_cast<float>(densitySum / n));
    }
    m_workingList.clear();
}

void SPH::FindNeighbors()
{
    const util::ScopeProfiler profile("FindNeighbors");
    const float h = InfluenceDistance();
    const float limit = h * h;

    for (const util::SharedPtr<Particle>& p : m_workingList)
    {
        p->m_neighbors.clear();
        p->m_neighbors.append(Particle::Neighbor{p.get(), 0.0f, math::Vec2(0.0f, 0.0f)});
    }

    static CellMap cells(m_workingList.size());
    m_cells = &cells;
    cells.clear();
    m_occupiedCells.clear();
    {
        const util::ScopeProfiler stage("Hashing particles");
        const float inverseCellSize = 1.0f / (h * m_bucketSize.Get());
        for (const util::SharedPtr<Particle>& p : m_workingList)
        {
            const math::TVector2<int> cell = Cellify(p->GetPosition(), inverseCellSize);
            const unsigned int fresh = static_cast<unsigned int>(m_occupiedCells.size());
            unsigned int& index = cells[cell];
            // A new key reads 0; slot numbers are stored one up so that 0 means "no list yet".
            if (index == 0)
            {
                index = fresh + 1;
                m_occupiedCells.push_back(cell);
                if (m_cellLists.size() <= fresh)
                    m_cellLists.emplace_back();
                m_cellLists[fresh].clear();
            }
            m_cellLists[index - 1].append(p.get());
        }
    }
    {
        const util::ScopeProfiler stage("Building neighbor lists");
        for (size_t c = 0; c < m_occupiedCells.size(); ++c)
        {
            const math::TVector2<int>& cell = m_occupiedCells[c];
            for (const math::TVector2<int>& offset : STENCIL)
            {
                // The cell itself needs no lookup: its list is at hand.
                if (offset.x == 0 && offset.y == 0)
                {
                    MatchCells(m_cellLists[c], m_cellLists[c], limit);
                    continue;
                }
                const unsigned int* other =
                    cells.TryGet(math::TVector2<int>(cell.x + offset.x, cell.y + offset.y));
                if (other)
                    MatchCells(m_cellLists[c], m_cellLists[*other - 1], limit);
            }
        }
    }
    Report(HASH_INFO, util::String(cells.GetDiagnostics()));
}

void SPH::MatchCells(const util::VectorPOD<Particle*>& a, const util::VectorPOD<Particle*>& b,
                     float squaredDistance)
{
    const bool same = &a == &b;
    const size_t na = a.size();
    const size_t nb = b.size();
    for (size_t i = 0; i < na; ++i)
    {
        Particle* pi = a[i];
        const math::Vec2 position = pi->GetPosition();
        for (size_t j = same ? i + 1 : 0; j < nb; ++j)
        {
            Particle* pj = b[j];
            math::Vec2 offset = pj->GetPosition() - position;
            const float distSq = offset.LengthSq();
            if (!(distSq < squaredDistance))
                continue;
            float d = std::sqrt(distSq);
            if (math::IsZero(d))
            {
                d = m_radius * COINCIDENT_DISTANCE_FACTOR;
                offset = math::Vec2(d, 0.0f);
            }
            pi->m_neighbors.append(Particle::Neighbor{pj, d, offset});
            pj->m_neighbors.append(Particle::Neighbor{pi, d, -offset});
        }
    }
}

void SPH::CalcForces()
{
    const util::ScopeProfiler profile("CalcSPHForces");
    SetupKernels();
    const float restDensity = m_density;
    const float stiffness = m_soundSpeed * m_soundSpeed;
    for (const util::SharedPtr<Particle>& p : m_workingList)
    {
        float density = 0.0f;
        for (const Particle::Neighbor& n : p->m_neighbors)
            density += s_mass * InfluenceKernel(n.distance);
        p->m_density = density;
        // No clamp at zero: a thin region pulls as well as a dense one pushes.
        p->m_pressure = (density - restDensity) * stiffness;
    }

    const float viscosityScale = m_viscosity * s_mass * m_viscMultiplier;
    const float pressureScale = s_mass * m_pressMultiplier;
    const bool specialPressure = m_specialPressure;
    const float surfaceTension = m_surfaceTension;
    for (const util::SharedPtr<Particle>& p : m_workingList)
    {
        Particle& pi = *p;
        math::Vec2 pressureSum;
        math::Vec2 gradientSum;
        math::Vec2 viscositySum;
        for (const Particle::Neighbor& n : pi.m_neighbors)
        {
            const Particle& pj = *n.particle;
            const math::Vec2 g = n.offset * PressureKernelDelta(n.distance);
            const float c = specialPressure
                                ? (pi.m_pressure + pj.m_pressure) / (2.0f * pi.m_density * pj.m_density)
                                : pi.m_pressure / (pi.m_density * pi.m_density) +
                                      pj.m_pressure / (pj.m_density * pj.m_density);
            pressureSum += g * c;
            gradientSum += g / pj.m_density;
            viscositySum += (pj.GetVelocity() - pi.GetVelocity()) *
                            (ViscocityKernelDelta2(n.distance) / (pj.m_density * pi.m_density));
        }
        pi.m_cohesionForce = gradientSum * (surfaceTension * s_mass);
        const math::Vec2 force =
            (pi.m_cohesionForce + viscositySum * viscosityScale - pressureSum * pressureScale) * s_mass;
        pi.AddForce(force);
    }
}

void SPH::VelocitySmoothing()
{
    if (!m_velocitySmoothing || m_workingList.empty())
        return;
    const util::ScopeProfiler profile("SPH vel-smoothing");
    std::vector<math::Vec2> smoothed(m_workingList.size());
    for (size_t i = 0; i < m_workingList.size(); ++i)
    {
        math::Vec2 sum;
        float weight = 0.0f;
        for (const Particle::Neighbor& n : m_workingList[i]->m_neighbors)
        {
            const float w = InfluenceKernel(n.distance);
            sum += n.particle->GetVelocity() * w;
            weight += w;
        }
        smoothed[i] = weight > 0.0f ? sum / weight : m_workingList[i]->GetVelocity();
    }
    for (size_t i = 0; i < m_workingList.size(); ++i)
        if (!m_workingList[i]->IsImmovable())
            m_workingList[i]->SetVelocity(smoothed[i]);
}

float SPH::GetReportedValue(const util::String& name) const
{
    return script::ObjectToValue<float>(GetObject(name));
}

util::String SPH::GetReportedText(const util::String& name) const
{
    return script::ObjectToValue<util::String>(GetObject(name));
}

} // namespace physics
