#pragma once

#include "math/Math.h"
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
// viscosity and cohesion forces. Water meets solid shapes through ordinary contacts only.
class SPH : public util::Pointee, public util::Singleton<SPH>
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

    // Values reported after each update: "AVG_neighCount", "AVG_pressure", "AVG_density", and "hashInfo",
    // the spatial hash's diagnostics.
    float GetReportedValue(const util::String& name) const;
    util::String GetReportedText(const util::String& name) const;

    // Settings, read at each use.
    float m_radius = 0.05f;
    float m_influence = 2.0f;
    bool m_specialPressure = true;
    bool m_velocitySmoothing = true;
    float m_vaporizeTime = 5.0f;
    float m_friction = 0.01f;
    float m_restitution = 0.0f;
    float m_soundSpeed = 20.0f;
    float m_density = 1.0f;
    float m_viscosity = 0.5f;
    float m_pressMultiplier = 1.0f;
    float m_viscMultiplier = 1.0f;
    float m_surfaceTension = 0.0f;
    float m_jitter = 0.0f;
    float m_bucketSize = 2.0f;

private:
    using CellMap = util::HashMap<math::TVector2<int>, unsigned int>;

    std::vector<util::SharedPtr<Particle>> m_workingList;
    // The spatial hash: cell to an index into m_cellLists. Both keep their storage from step to step, so
    // that a steady state allocates nothing.
    CellMap* m_cells = nullptr;
    std::vector<util::VectorPOD<Particle*>> m_cellLists;
    std::vector<math::TVector2<int>> m_occupiedCells;
    float m_avgNeighCount = 0.0f;
    float m_avgPressure = 0.0f;
    float m_avgDensity = 0.0f;
};

} // namespace physics
