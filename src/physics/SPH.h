#pragma once

#include "math/Math.h"
#include "physics/Particle.h"
#include "physics/StepContext.h"
#include "physics/WaterKernel.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"
#include "util/VectorPOD.h"

#include <cstdint>
#include <vector>

namespace physics
{
// The grid cell of a position: each coordinate times the inverse cell size, truncated toward zero. The
// cells touching an axis are thus twice as wide on it, which keeps every cell at least one cell size wide.
math::TVector2<int> Cellify(const math::Vec2& position, float inverseCellSize);

// Smoothed-particle hydrodynamics of the water: neighbours by a spatial hash, then density, pressure,
// viscosity and cohesion forces. Water meets solid shapes through ordinary contacts only. Scripts see it
// as "SPH"; after each update it reports "AVG_neighCount", "AVG_pressure" and "AVG_density" (averages over
// the particles) and "hashInfo" (the spatial hash's diagnostics, up to a second behind while the number of
// particles stays the same).
//
// The update works on its own compact copy of the water's state, sorted by cell, and keeps each pair of
// neighbours once; it allocates nothing once its arrays have grown to the water's size. FindNeighbors
// reads the particles' positions and velocities, CalcForces uses what FindNeighbors read.
class SPH : public script::Reflected, public util::Singleton<SPH>
{
public:
    SPH();
    ~SPH() override;

    void Update(const std::vector<util::SharedPtr<Particle>>& particles, const StepContext& step);
    void FindNeighbors();
    void CalcForces(const WaterKernel& kernel);
    // The kernels of the present settings.
    WaterKernel MakeKernel() const;
    void VelocitySmoothing(const WaterKernel& kernel);
    float InfluenceDistance() const { return m_radius * m_influence; }
    // Pairs of particles, one from the cell list [beginA, endA) and one from [beginB, endB) (positions in
    // the hash's cell order), closer than the square root of squaredDistance become neighbours. One list
    // given twice matches each pair of it once.
    void MatchCells(unsigned int beginA, unsigned int endA, unsigned int beginB, unsigned int endB,
                    float squaredDistance);

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
    friend class Particle;
    using CellMap = util::HashMap<math::TVector2<int>, unsigned int>;

    // Rebuilds a particle's neighbour list from the last search, the particle itself first; leaves it
    // empty when the particle wasn't part of that search.
    void FillNeighbors(const Particle& particle, util::VectorPOD<Particle::Neighbor>& list);

    // Two neighbours, by their positions in cell order, found once and used from both sides. The offset
    // leads from `first` to the second and is the difference of their positions, except for a pair at one
    // point (flagged in the top bit of the second's number), whose offset is (distance, 0).
    struct Pair
    {
        static constexpr unsigned int AT_ONE_POINT = 0x80000000u;

        unsigned int first;
        unsigned int secondAndFlag;
        float distance;

        unsigned int Second() const { return secondAndFlag & ~AT_ONE_POINT; }
    };

    math::Vec2 PairOffset(const Pair& pair) const
    {
        if (pair.secondAndFlag & Pair::AT_ONE_POINT)
            return math::Vec2(pair.distance, 0.0f);
        return m_position[pair.secondAndFlag] - m_position[pair.first];
    }

    // With an aging step, particles alone in their lists also grow older by it.
    void CalcForces(const WaterKernel& kernel, const float* agingStep);
    void OnParticleSettingsChange();
    void HashParticles(float inverseCellSize);
    // The slot of the cell, or NO_SLOT when it holds no particle.
    unsigned int FindSlot(int x, int y) const;
    static constexpr unsigned int NO_SLOT = 0xFFFFFFFFu;
    void WriteResults(const WaterKernel& kernel, const float* agingStep);
    void ReportStatistics();
    void ReportHashInfo();
    void ReportValue(const char* name, float value);
    void BuildNeighborIndex();

    // Raw pointers: the simulation's list, which Update is given, owns the particles while it runs, and
    // counting references here would touch every particle's handle twice a step.
    util::VectorPOD<Particle*> m_workingList;
    // Set when radius, density, friction or restitution changes; the next update gives all particles the
    // new values.
    bool m_particleSettingsChanged = true;
    // Whether the last search could look for neighbours (a positive influence distance), and whether the
    // last kernels and particle mass were positive and finite.
    bool m_searchable = true;
    bool m_kernelsUsable = true;

    // Everything below keeps its storage from step to step, so that a steady state allocates nothing.
    // The spatial hash: cell to a slot of the occupied cells, in the order the cells were first met.
    CellMap* m_cells = nullptr;
    util::VectorPOD<math::TVector2<int>> m_occupiedCells;
    // Each slot's particles are the range [m_cellStart[slot], m_cellStart[slot + 1]) of the arrays below.
    util::VectorPOD<unsigned int> m_cellStart;
    util::VectorPOD<unsigned int> m_cellFill;
    // Slot of each particle of the working list, and where its state was read.
    util::VectorPOD<unsigned int> m_slotOf;
    util::VectorPOD<math::Vec2> m_readPosition;
    util::VectorPOD<math::Vec2> m_readVelocity;

    // The state the water needs, compact and sorted by cell, so that neighbours lie close in memory.
    util::VectorPOD<Particle*> m_sorted;
    util::VectorPOD<math::Vec2> m_position;
    util::VectorPOD<math::Vec2> m_velocity;
    util::VectorPOD<float> m_particleDensity;
    util::VectorPOD<float> m_pressure;
    // Entries of each particle's neighbour list, itself included.
    util::VectorPOD<unsigned int> m_neighborCount;
    // The sums of the force pass: pressure, density gradient (for cohesion) and viscosity.
    util::VectorPOD<math::Vec2> m_pressureSum;
    util::VectorPOD<math::Vec2> m_gradientSum;
    util::VectorPOD<math::Vec2> m_viscositySum;
    util::VectorPOD<Pair> m_pairs;
    // Whether this search, and the one before, stopped at the cap of pairs.
    bool m_pairsCapped = false;
    bool m_lastSearchCapped = false;

    // Counts each search, so that a particle knows whether its place in the arrays above is current.
    std::uint32_t m_generation = 0;
    // Pairs of each particle, grouped by particle; built only when a neighbour list is asked for.
    std::uint32_t m_indexGeneration = 0;
    util::VectorPOD<unsigned int> m_indexStart;
    util::VectorPOD<unsigned int> m_indexFill;
    util::VectorPOD<unsigned int> m_indexPairs;

    // What "hashInfo" last said, so that its text is made only when it changes.
    size_t m_reportedCellCount = 0;
    size_t m_reportedBucketCount = 0;
    size_t m_reportedLargestBucket = 0;
    size_t m_reportedParticleCount = 0;
    unsigned int m_updatesSinceHashInfo = 0;
    util::VectorPOD<unsigned int> m_bucketLoad;
};

} // namespace physics
