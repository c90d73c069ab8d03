#include "physics/SPH.h"

#include "logging/Log.h"
#include "script/Objects.h"
#include "util/Callback.h"
#include "util/Profiler.h"
#include "util/Random.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
// Stands in for the distance of two particles at one point, as a fraction of the radius, so that they
// still push apart along some direction.
const float COINCIDENT_DISTANCE_FACTOR = 0.01f;

const char* const AVG_NEIGH_COUNT = "AVG_neighCount";
const char* const AVG_PRESSURE = "AVG_pressure";
const char* const AVG_DENSITY = "AVG_density";
const char* const HASH_INFO = "hashInfo";
// Updates between two texts of "hashInfo" at most (a second at the default step): making the text costs
// several allocations, and the diagnostics of a moving fluid change nearly every step.
const unsigned int HASH_INFO_INTERVAL = 100;
// Cells stop this far from the origin: a particle beyond (on its way out of the world) shares a border
// cell, which keeps the integer and its neighbour x + 1 in range.
const float CELL_LIMIT = 1073741824.0f;
// Neighbour pairs per search at most: a few hundred thousand particles of ordinary water. Water heaped on
// one point would otherwise pair every particle with every other, square in time and memory.
const size_t MAX_WATER_PAIRS = 4000000;

int CellCoordinate(float x)
{
    if (!(x > -CELL_LIMIT))
        return -static_cast<int>(CELL_LIMIT);
    if (!(x < CELL_LIMIT))
        return static_cast<int>(CELL_LIMIT);
    return static_cast<int>(x);
}
} // namespace

math::TVector2<int> Cellify(const math::Vec2& position, float inverseCellSize)
{
    return math::TVector2<int>(CellCoordinate(position.x * inverseCellSize),
                               CellCoordinate(position.y * inverseCellSize));
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
    for (script::AttribWrapper<float>* setting : {&m_radius, &m_density, &m_friction, &m_restitution})
        (*setting)->AddChangeCallback(util::MakeCallback(&SPH::OnParticleSettingsChange, this));
    // The reports exist from the start, so that a script may read them before there is any water.
    Report(AVG_NEIGH_COUNT, 0.0f);
    Report(AVG_PRESSURE, 0.0f);
    Report(AVG_DENSITY, 0.0f);
    Report(HASH_INFO, util::String());
}

SPH::~SPH() = default;

void SPH::OnParticleSettingsChange()
{
    m_particleSettingsChanged = true;
}

WaterKernel SPH::MakeKernel() const
{
    WaterKernel kernel;
    const float h = InfluenceDistance();
    kernel.influenceRad = h;
    const double h3 = double(h) * h * h;
    kernel.kernel64PiH9Inv = static_cast<float>(1.0 / (64.0 * math::PI * h3 * h3 * h3));
    kernel.kernelPiH6Inv = static_cast<float>(1.0 / (math::PI * h3 * h3));
    const float radius = m_radius;
    kernel.mass = math::PIf * radius * radius * m_density;
    return kernel;
}

void SPH::Update(const std::vector<util::SharedPtr<Particle>>& particles, const StepContext& step)
{
    const util::ScopeProfiler profile("SPH::Update");
    if (particles.empty())
        return;
    m_workingList.clear();
    for (const util::SharedPtr<Particle>& p : particles)
        m_workingList.append(p.get());
    const float radius = m_radius;
    const float density = m_density;
    const WaterKernel& kernel = step.water;
    {
        // A change of the settings takes effect at once on all water. Without one, every particle already
        // has them: from the last update, or from its constructor if it is newer.
        const util::ScopeProfiler stage("Update rad/density");
        if (m_particleSettingsChanged)
        {
            const float friction = m_friction;
            const float restitution = m_restitution;
            for (Particle* p : m_workingList)
                p->SetAttribs(radius, density, friction, restitution);
            m_particleSettingsChanged = false;
        }
    }
    FindNeighbors();
    // A particle alone (only itself in its list) ages as the results are written; removal is the
    // simulation's business.
    CalcForces(kernel, &step.h);
    const float jitter = m_jitter;
    if (jitter != 0.0f && m_kernelsUsable)
    {
        const util::ScopeProfiler stage("Jitter");
        util::Random random;
        for (Particle* p : m_workingList)
            p->AddForce(random.GetNormalVec2() * (kernel.mass * jitter));
    }
    ReportStatistics();
    m_workingList.clear();
}

void SPH::FindNeighbors()
{
    const util::ScopeProfiler profile("FindNeighbors");
    const float h = InfluenceDistance();
    const float limit = h * h;
    // Without a positive influence distance no two particles are neighbours; all of them then share one
    // cell, so that the records of the search still name every particle.
    m_searchable = h > 0.0f && math::IsFiniteFloat(h);
    float cellSize = h * m_bucketSize.Get();
    if (!(cellSize > 0.0f) || !math::IsFiniteFloat(cellSize))
        cellSize = h;
    // Zero stands for "no search" in the particles' records.
    if (++m_generation == 0)
        m_generation = 1;

    static CellMap cells(m_workingList.size());
    m_cells = &cells;
    cells.clear();
    m_occupiedCells.clear();
    {
        const util::ScopeProfiler stage("Hashing particles");
        HashParticles(m_searchable ? 1.0f / cellSize : 0.0f);
    }
    {
        const util::ScopeProfiler stage("Building neighbor lists");
        // Every list starts with the particle itself.
        const size_t n = m_sorted.size();
        m_neighborCount.resize(n);
        for (size_t s = 0; s < n; ++s)
            m_neighborCount[s] = 1;
        m_pairs.clear();
        m_pairsCapped = false;
        const size_t cellsToMatch = m_searchable ? m_occupiedCells.size() : 0;
        // The slots of the cells at (x + 1, y - 1), (x + 1, y) and (x + 1, y + 1) of the last cell. Cells
        // tend to come up or down a column, and then two of the three are the last cell's.
        unsigned int right[3] = {NO_SLOT, NO_SLOT, NO_SLOT};
        math::TVector2<int> last(0, 0);
        for (size_t c = 0; c < cellsToMatch; ++c)
        {
            const math::TVector2<int> cell = m_occupiedCells[c];
            const int x = cell.x;
            const int y = cell.y;
            if (c > 0 && last.x == x && last.y + 1 == y)
            {
                right[0] = right[1];
                right[1] = right[2];
                right[2] = FindSlot(x + 1, y + 1);
            }
            else if (c > 0 && last.x == x && last.y - 1 == y)
            {
                right[2] = right[1];
                right[1] = right[0];
                right[0] = FindSlot(x + 1, y - 1);
            }
            else
            {
                right[0] = FindSlot(x + 1, y - 1);
                right[1] = FindSlot(x + 1, y);
                right[2] = FindSlot(x + 1, y + 1);
            }
            const unsigned int above = c > 0 && last.x == x && last.y == y + 1
                                           ? static_cast<unsigned int>(c - 1)
                                           : FindSlot(x, y + 1);
            last = cell;

            // The cell itself and half of its neighbours, at the offsets (0, 0), (0, 1), (1, -1), (1, 0) and
            // (1, 1) in this order: so each pair of neighbouring cells is visited once.
            const unsigned int slots[5] = {static_cast<unsigned int>(c), above, right[0], right[1], right[2]};
            const unsigned int begin = m_cellStart[c];
            const unsigned int end = m_cellStart[c + 1];
            for (const unsigned int slot : slots)
                if (slot != NO_SLOT)
                    MatchCells(begin, end, m_cellStart[slot], m_cellStart[slot + 1], limit);
        }
    }
    // Told once while the water stays crowded, and again if it crowds anew.
    if (m_pairsCapped && !m_lastSearchCapped)
        Log(logging::Warning, "Water too crowded: only the first " + util::ToString(MAX_WATER_PAIRS) +
                                  " pairs of neighbours take part in a step");
    m_lastSearchCapped = m_pairsCapped;
    ReportHashInfo();
}

unsigned int SPH::FindSlot(int x, int y) const
{
    const unsigned int* index = m_cells->TryGet(math::TVector2<int>(x, y));
    return index ? *index - 1 : NO_SLOT;
}

void SPH::HashParticles(float inverseCellSize)
{
    CellMap& cells = *m_cells;
    const size_t n = m_workingList.size();
    m_slotOf.resize(n);
    m_readPosition.resize(n);
    m_readVelocity.resize(n);
    m_cellFill.clear();
    math::TVector2<int> lastCell(0, 0);
    unsigned int lastSlot = NO_SLOT;
    for (size_t k = 0; k < n; ++k)
    {
        const Particle& p = *m_workingList[k];
        const math::Vec2 position = p.GetPosition();
        m_readPosition[k] = position;
        m_readVelocity[k] = p.GetVelocity();
        const math::TVector2<int> cell = Cellify(position, inverseCellSize);
        // Particles next to each other in the list are often in one cell: no lookup then.
        if (lastSlot == NO_SLOT || !(cell == lastCell))
        {
            const unsigned int fresh = static_cast<unsigned int>(m_occupiedCells.size());
            unsigned int& index = cells[cell];
            // A new key reads 0; slot numbers are stored one up so that 0 means "no slot yet".
            if (index == 0)
            {
                index = fresh + 1;
                m_occupiedCells.append(cell);
                m_cellFill.append(0);
            }
            lastCell = cell;
            lastSlot = index - 1;
        }
        m_slotOf[k] = lastSlot;
        ++m_cellFill[lastSlot];
    }

    // A counting sort by slot, stable, so that each cell keeps the particles in the order of the list.
    const size_t slots = m_occupiedCells.size();
    m_cellStart.resize(slots + 1);
    unsigned int next = 0;
    for (size_t c = 0; c < slots; ++c)
    {
        m_cellStart[c] = next;
        next += m_cellFill[c];
        m_cellFill[c] = m_cellStart[c];
    }
    m_cellStart[slots] = next;
    m_sorted.resize(n);
    m_position.resize(n);
    m_velocity.resize(n);
    for (size_t k = 0; k < n; ++k)
    {
        const unsigned int s = m_cellFill[m_slotOf[k]]++;
        m_sorted[s] = m_workingList[k];
        m_position[s] = m_readPosition[k];
        m_velocity[s] = m_readVelocity[k];
    }
}

void SPH::MatchCells(unsigned int beginA, unsigned int endA, unsigned int beginB, unsigned int endB,
                     float squaredDistance)
{
    const bool same = beginA == beginB;
    const math::Vec2* position = m_position.data();
    if (m_pairs.size() >= MAX_WATER_PAIRS)
    {
        m_pairsCapped = true;
        return;
    }
    for (unsigned int i = beginA; i < endA; ++i)
    {
        const math::Vec2 pi = position[i];
        for (unsigned int j = same ? i + 1 : beginB; j < endB; ++j)
        {
            const math::Vec2 offset = position[j] - pi;
            const float distSq = offset.LengthSq();
            if (!(distSq < squaredDistance))
                continue;
            const float d = std::sqrt(distSq);
            if (math::IsZero(d))
                m_pairs.append(Pair{i, j | Pair::AT_ONE_POINT, m_radius * COINCIDENT_DISTANCE_FACTOR});
            else
                m_pairs.append(Pair{i, j, d});
            ++m_neighborCount[i];
            ++m_neighborCount[j];
            if (m_pairs.size() >= MAX_WATER_PAIRS)
            {
                m_pairsCapped = true;
                return;
            }
        }
    }
}

void SPH::CalcForces(const WaterKernel& kernel)
{
    CalcForces(kernel, nullptr);
}

void SPH::CalcForces(const WaterKernel& kernel, const float* agingStep)
{
    // Works on the positions and velocities that FindNeighbors read. Each pair is handled once and gives
    // its terms to both particles: with the offset reversed they are exactly the negated terms, so that
    // every particle's sums take the same values in the same order as a walk over its own list would.
    const util::ScopeProfiler profile("CalcSPHForces");
    // A radius, influence or density of 0 (or a value so small or large that the kernels overflow) leaves
    // nothing to weigh the neighbours with: such water has no pressure, viscosity or cohesion.
    m_kernelsUsable = kernel.IsUsable();
    const size_t n = m_sorted.size();
    // Particles that were never searched for neighbours are not alone, only unexamined: they don't age.
    if (!m_searchable)
        agingStep = nullptr;
    if (!m_kernelsUsable)
    {
        m_particleDensity.resize(n);
        m_pressure.resize(n);
        m_pressureSum.resize(n);
        m_gradientSum.resize(n);
        m_viscositySum.resize(n);
        for (size_t s = 0; s < n; ++s)
        {
            m_particleDensity[s] = 0.0f;
            m_pressure[s] = 0.0f;
            m_pressureSum[s] = m_gradientSum[s] = m_viscositySum[s] = math::Vec2(0.0f, 0.0f);
        }
        WriteResults(kernel, agingStep);
        return;
    }
    const float restDensity = m_density;
    const float stiffness = m_soundSpeed * m_soundSpeed;
    m_particleDensity.resize(n);
    m_pressure.resize(n);
    const float selfDensity = kernel.mass * kernel.Influence(0.0f);
    for (size_t s = 0; s < n; ++s)
        m_particleDensity[s] = selfDensity;
    for (const Pair& pair : m_pairs)
    {
        const float w = kernel.mass * kernel.Influence(pair.distance);
        m_particleDensity[pair.first] += w;
        m_particleDensity[pair.Second()] += w;
    }
    // No clamp at zero: a thin region pulls as well as a dense one pushes.
    for (size_t s = 0; s < n; ++s)
        m_pressure[s] = (m_particleDensity[s] - restDensity) * stiffness;

    // A particle's own entry adds nothing: its offset and its velocity difference are zero.
    m_pressureSum.resize(n);
    m_gradientSum.resize(n);
    m_viscositySum.resize(n);
    const math::Vec2 zero(0.0f, 0.0f);
    for (size_t s = 0; s < n; ++s)
    {
        m_pressureSum[s] = zero;
        m_gradientSum[s] = zero;
        m_viscositySum[s] = zero;
    }
    const bool specialPressure = m_specialPressure;
    const float* density = m_particleDensity.data();
    const float* pressure = m_pressure.data();
    const math::Vec2* velocity = m_velocity.data();
    for (const Pair& pair : m_pairs)
    {
        const unsigned int i = pair.first;
        const unsigned int j = pair.Second();
        const math::Vec2 g = PairOffset(pair) * kernel.PressureDelta(pair.distance);
        const float c = specialPressure ? (pressure[i] + pressure[j]) / (2.0f * density[i] * density[j])
                                        : pressure[i] / (density[i] * density[i]) +
                                              pressure[j] / (density[j] * density[j]);
        const math::Vec2 pressureTerm = g * c;
        m_pressureSum[i] += pressureTerm;
        m_pressureSum[j] -= pressureTerm;
        m_gradientSum[i] += g / density[j];
        m_gradientSum[j] -= g / density[i];
        const math::Vec2 viscosityTerm =
            (velocity[j] - velocity[i]) * (kernel.ViscosityDelta2(pair.distance) / (density[j] * density[i]));
        m_viscositySum[i] += viscosityTerm;
        m_viscositySum[j] -= viscosityTerm;
    }
    WriteResults(kernel, agingStep);
}

void SPH::WriteResults(const WaterKernel& kernel, const float* agingStep)
{
    // Water without usable kernels gets no force at all: its scales may not be finite.
    const bool forces = m_kernelsUsable;
    const float viscosityScale = m_viscosity * kernel.mass * m_viscMultiplier;
    const float pressureScale = kernel.mass * m_pressMultiplier;
    const float cohesionScale = forces ? m_surfaceTension * kernel.mass : 0.0f;
    for (size_t s = 0; s < m_sorted.size(); ++s)
    {
        Particle& p = *m_sorted[s];
        p.m_density = m_particleDensity[s];
        p.m_pressure = m_pressure[s];
        p.m_cohesionForce = m_gradientSum[s] * cohesionScale;
        p.m_searchIndex = static_cast<std::uint32_t>(s);
        p.m_searchGeneration = m_generation;
        if (agingStep)
            p.m_lonelyTime = m_neighborCount[s] < 2 ? p.m_lonelyTime + *agingStep : 0.0f;
        const math::Vec2 force =
            (p.m_cohesionForce + m_viscositySum[s] * viscosityScale - m_pressureSum[s] * pressureScale) *
            kernel.mass;
        if (forces)
            p.AddForce(force);
    }
}

void SPH::VelocitySmoothing(const WaterKernel& kernel)
{
    if (!m_velocitySmoothing || m_workingList.empty() || !m_kernelsUsable)
        return;
    const util::ScopeProfiler profile("SPH vel-smoothing");
    // The velocities as integration left them; the sums reuse the force pass's storage.
    const size_t n = m_sorted.size();
    util::VectorPOD<math::Vec2>& sum = m_pressureSum;
    util::VectorPOD<float>& weight = m_particleDensity;
    const float selfWeight = kernel.Influence(0.0f);
    for (size_t s = 0; s < n; ++s)
    {
        m_velocity[s] = m_sorted[s]->GetVelocity();
        sum[s] = m_velocity[s] * selfWeight;
        weight[s] = selfWeight;
    }
    for (const Pair& pair : m_pairs)
    {
        const float w = kernel.Influence(pair.distance);
        const unsigned int j = pair.Second();
        sum[pair.first] += m_velocity[j] * w;
        weight[pair.first] += w;
        sum[j] += m_velocity[pair.first] * w;
        weight[j] += w;
    }
    for (size_t s = 0; s < n; ++s)
    {
        Particle& p = *m_sorted[s];
        if (!p.IsImmovable())
            p.SetVelocity(weight[s] > 0.0f ? sum[s] / weight[s] : m_velocity[s]);
    }
}

void SPH::FillNeighbors(const Particle& particle, util::VectorPOD<Particle::Neighbor>& list)
{
    list.clear();
    const std::uint32_t s = particle.m_searchIndex;
    if (m_generation == 0 || particle.m_searchGeneration != m_generation || s >= m_sorted.size() ||
        m_sorted[s] != &particle)
        return;
    if (m_indexGeneration != m_generation)
        BuildNeighborIndex();
    list.append(Particle::Neighbor{m_sorted[s], 0.0f, math::Vec2(0.0f, 0.0f)});
    // Neighbours are named, never read: one may have gone since the search.
    for (unsigned int e = m_indexStart[s]; e < m_indexStart[s + 1]; ++e)
    {
        const Pair& pair = m_pairs[m_indexPairs[e]];
        if (pair.first == s)
            list.append(Particle::Neighbor{m_sorted[pair.Second()], pair.distance, PairOffset(pair)});
        else
            list.append(Particle::Neighbor{m_sorted[pair.first], pair.distance, -PairOffset(pair)});
    }
}

void SPH::BuildNeighborIndex()
{
    // Each particle's pairs in the order they were found, which is the order of its list.
    const size_t n = m_sorted.size();
    m_indexStart.resize(n + 1);
    m_indexFill.resize(n);
    unsigned int next = 0;
    for (size_t s = 0; s < n; ++s)
    {
        m_indexStart[s] = next;
        m_indexFill[s] = next;
        next += m_neighborCount[s] - 1;
    }
    m_indexStart[n] = next;
    m_indexPairs.resize(next);
    for (size_t k = 0; k < m_pairs.size(); ++k)
    {
        const unsigned int pairIndex = static_cast<unsigned int>(k);
        m_indexPairs[m_indexFill[m_pairs[k].first]++] = pairIndex;
        m_indexPairs[m_indexFill[m_pairs[k].Second()]++] = pairIndex;
    }
    m_indexGeneration = m_generation;
}

void SPH::ReportStatistics()
{
    const util::ScopeProfiler stage("Statistics");
    double neighbourSum = 0.0;
    double pressureSum = 0.0;
    double densitySum = 0.0;
    const size_t n = m_sorted.size();
    for (size_t s = 0; s < n; ++s)
    {
        neighbourSum += m_neighborCount[s];
        pressureSum += m_pressure[s];
        densitySum += m_particleDensity[s];
    }
    const double count = static_cast<double>(n);
    ReportValue(AVG_NEIGH_COUNT, static_cast<float>(neighbourSum / count));
    ReportValue(AVG_PRESSURE, static_cast<float>(pressureSum / count));
    ReportValue(AVG_DENSITY, static_cast<float>(densitySum / count));
}

void SPH::ReportValue(const char* name, float value)
{
    // A script value is never changed in place, except one that only its variable holds: nobody can see
    // the difference, and the report then costs no new object every step.
    if (const script::VariablePtr var = GetVariable(name))
    {
        const script::Object* object = var->GetObject().get();
        const script::FloatValue* number = dynamic_cast<const script::FloatValue*>(object);
        if (number && object->m_handle->m_refCount == 1)
        {
            const_cast<float&>(number->Get()) = value;
            return;
        }
    }
    Report(name, value);
}

void SPH::ReportHashInfo()
{
    // The text follows from the number of cells, of buckets and the largest bucket's size. Those are
    // looked at in every update after a change of the number of particles, and otherwise once in
    // HASH_INFO_INTERVAL updates; the text is made only when one of them has changed.
    if (m_updatesSinceHashInfo < HASH_INFO_INTERVAL)
        ++m_updatesSinceHashInfo;
    const size_t particles = m_sorted.size();
    if (m_updatesSinceHashInfo < HASH_INFO_INTERVAL && particles == m_reportedParticleCount)
        return;
    m_updatesSinceHashInfo = 0;
    m_reportedParticleCount = particles;

    const CellMap& cells = *m_cells;
    const size_t buckets = cells.GetBucketCount();
    if (m_bucketLoad.size() != buckets)
    {
        m_bucketLoad.resize(buckets);
        for (unsigned int& load : m_bucketLoad)
            load = 0;
    }
    size_t largest = 0;
    for (const math::TVector2<int>& cell : m_occupiedCells)
        largest = std::max<size_t>(largest, ++m_bucketLoad[cells.Hash(cell)]);
    for (const math::TVector2<int>& cell : m_occupiedCells)
        m_bucketLoad[cells.Hash(cell)] = 0;
    const size_t count = m_occupiedCells.size();
    if (count == m_reportedCellCount && buckets == m_reportedBucketCount &&
        largest == m_reportedLargestBucket)
        return;
    m_reportedCellCount = count;
    m_reportedBucketCount = buckets;
    m_reportedLargestBucket = largest;
    Report(HASH_INFO, util::String(cells.GetDiagnostics()));
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
