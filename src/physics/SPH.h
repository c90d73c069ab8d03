#pragma once

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"
#include "util/VectorPOD.h"

#include <vector>

namespace physics
{
class Particle;

// Kernel constants, recomputed by SPH::SetupKernels: the influence distance h, 1 / (64 pi h^9),
// 1 / (pi h^6), and the mass of one particle.
extern float s_influenceRad;
extern float s_kernel64PiH9Inv;
extern float s_kernelPiH6Inv;
extern float s_mass;

// The grid cell of a position: each coordinate times the inverse cell size, truncated toward zero. The
// cells touching an axis are thus twice as wide on it, which keeps every cell at least one cell size wide.
math::TVector2<int> Cellify(const math::Vec2& position, float inverseCellSize);

// Smoothed-particle hydrodynamics of the water: neighbours by a spatial hash, then density, pressure,
// viscosity and cohesion forces. Water meets solid shapes through ordinary contacts only. Scripts see it
// as "SPH"; after each update it reports "AVG_neighCount", "AVG_pressure" and "AVG_density" (averages over
// the particles) and "hashInfo" (the spatial hash's diagnostics).
class SPH : public script::Reflected, public util::Singleton<SPH>
{
public:
    SPH();
    ~SPH() override;

    void Update(const std::vector<util::SharedPtr<Particle>>& particles, float dt);
    void FindNeighbors();
    void CalcForces();
    void SetupKernels();
    void VelocitySmoothing();
    float InfluenceDistance() const { return m_radius * m_influence; }
    // Pairs closer than the square root of squaredDistance enter both neighbour lists.
    void MatchCells(const util::VectorPOD<Particle*>& a, const util::VectorPOD<Particle*>& b,
                    float squaredDistance);

    static float InfluenceKernel(float d);
    static float PressureKernelDelta(float d);
    static float ViscocityKernelDelta2(float d);

    // The last reported values, as a script reads them.
    float GetReportedValue(const util::String& name) const;
    util::String GetReportedText(const util::String& name) const;

    // Settings: attributes of "SPH", read at each use.
    // Particle radius in metres; sets area, mass and influence.
    script::AttribWrapper<float> m_radius;
    // Influence distance h in radii.
    script::AttribWrapper<float> m_influence;
    // The symmetric form of the pressure term.
    script::AttribWrapper<bool> m_specialPressure;
    script::AttribWrapper<bool> m_velocitySmoothing;
    // Seconds alone after which a particle is removed.
    script::AttribWrapper<float> m_vaporizeTime;
    // Friction and restitution of a particle's geometry.
    script::AttribWrapper<float> m_friction;
    script::AttribWrapper<float> m_restitution;
    // Stiffness: pressure = (density - rest density) * soundSpeed^2.
    script::AttribWrapper<float> m_soundSpeed;
    // Rest density, and the density for a particle's mass.
    script::AttribWrapper<float> m_density;
    script::AttribWrapper<float> m_viscosity;
    script::AttribWrapper<float> m_pressMultiplier;
    script::AttribWrapper<float> m_viscMultiplier;
    script::AttribWrapper<float> m_surfaceTension;
    // Random force per unit of mass.
    script::AttribWrapper<float> m_jitter;
    // Hash cell size in units of h.
    script::AttribWrapper<float> m_bucketSize;

private:
    using CellMap = util::HashMap<math::TVector2<int>, unsigned int>;

    std::vector<util::SharedPtr<Particle>> m_workingList;
    // The spatial hash: cell to an index into m_cellLists. Both keep their storage from step to step, so
    // that a steady state allocates nothing.
    CellMap* m_cells = nullptr;
    std::vector<util::VectorPOD<Particle*>> m_cellLists;
    std::vector<math::TVector2<int>> m_occupiedCells;
};

} // namespace physics
