#include "physics/Sweeper.h"

#include "physics/AbstractBody.h"
#include "physics/Constraint.h"
#include "util/Profiler.h"

#include <algorithm>
#include <cstring>

namespace physics
{
namespace
{
// Contact::CalcDesiredImpulse on the packed copy, operation for operation.
template <class Bodies>
inline void DesiredImpulse(const ContactRow& row, const Bodies& bodies, float& deltaN, float& deltaT)
{
    const auto& a = bodies[row.bodyA];
    const auto& b = bodies[row.bodyB];
    const math::Vec2 w = (b.velocityChange + math::Cross(b.rotationChange, row.r1)) -
                         (a.velocityChange + math::Cross(a.rotationChange, row.r0));
    const math::Vec2 tangent = math::Rot90CCW(row.normal);

    const float wantN = row.targetN - math::Dot(w, row.normal) * row.activeMassN;
    const float sumN = std::max(wantN + row.sumN, 0.0f);
    deltaN = sumN - row.sumN;

    const float limit = std::max(row.friction * sumN, 0.0f);
    const float wantT = row.targetT - math::Dot(w, tangent) * row.activeMassT;
    const float sumT = std::min(std::max(wantT + row.sumT, -limit), limit);
    deltaT = sumT - row.sumT;
}

template <class Bodies> inline void DesiredImpulse(ContactRow& row, const Bodies& bodies)
{
    DesiredImpulse(row, bodies, row.deltaN, row.deltaT);
}

// Contact::ApplyImpulse on the packed copy.
template <class Bodies> inline void ApplyImpulse(ContactRow& row, float deltaN, float deltaT, Bodies& bodies)
{
    auto& a = bodies[row.bodyA];
    auto& b = bodies[row.bodyB];
    const math::Vec2 impulse = row.normal * deltaN + math::Rot90CCW(row.normal) * deltaT;
    if (row.massInv[0] != 0.0f)
        a.velocityChange -= impulse * row.massInv[0];
    if (row.inertiaInv[0] != 0.0f)
        a.rotationChange -= row.inertiaInv[0] * math::Cross(row.r0, impulse);
    if (row.massInv[1] != 0.0f)
        b.velocityChange += impulse * row.massInv[1];
    if (row.inertiaInv[1] != 0.0f)
        b.rotationChange += row.inertiaInv[1] * math::Cross(row.r1, impulse);
    row.sumN += deltaN;
    row.sumT += deltaT;
}

// The row's last demand is only read after the sweeps, so all but the last sweep keep it in registers.
template <bool keepDelta, class Bodies> inline void SolveRow(ContactRow& row, Bodies& bodies)
{
    float deltaN;
    float deltaT;
    DesiredImpulse(row, bodies, deltaN, deltaT);
    ApplyImpulse(row, deltaN, deltaT, bodies);
    if (keepDelta)
    {
        row.deltaN = deltaN;
        row.deltaT = deltaT;
    }
}
} // namespace

std::uint32_t RankKey(float priority)
{
    if (priority == 0.0f)
        priority = 0.0f;
    std::uint32_t bits = 0;
    std::memcpy(&bits, &priority, sizeof bits);
    const std::uint32_t ascending = (bits & 0x80000000u) != 0 ? ~bits : bits | 0x80000000u;
    return ~ascending;
}

void SortRanked(util::VectorPOD<Ranked>& ranked, util::VectorPOD<Ranked>& spare)
{
    // Least significant digit first, each pass stable. Ties go in an order scrambled from their places in
    // the list given, so that tied contacts (most of a resting heap's, at zero) are not swept in the
    // collider's order, across the heap in the same direction every step. A digit that all keys share
    // costs one look at the counts.
    constexpr int DIGIT_BITS = 11;
    constexpr std::uint32_t DIGITS = 1u << DIGIT_BITS;
    constexpr int PASSES = 4;
    const auto digit = [](const Ranked& entry, int pass) -> std::uint32_t
    {
        if (pass == 0)
            return (entry.index * 2654435761u) >> (32 - DIGIT_BITS);
        return (entry.key >> ((pass - 1) * DIGIT_BITS)) & (DIGITS - 1);
    };
    std::uint32_t counts[PASSES][DIGITS] = {};
    const size_t count = ranked.size();
    for (const Ranked& entry : ranked)
        for (int pass = 0; pass < PASSES; ++pass)
            ++counts[pass][digit(entry, pass)];
    spare.resize(count);
    for (int pass = 0; pass < PASSES; ++pass)
    {
        std::uint32_t* const starts = counts[pass];
        if (count == 0 || starts[digit(ranked[0], pass)] == count)
            continue;
        std::uint32_t start = 0;
        for (std::uint32_t d = 0; d < DIGITS; ++d)
        {
            const std::uint32_t n = starts[d];
            starts[d] = start;
            start += n;
        }
        for (const Ranked& entry : ranked)
            spare[starts[digit(entry, pass)]++] = entry;
        ranked.swap(spare);
    }
}

bool Sweeper::IndexOf(const AbstractBody* body, const util::VectorPOD<AbstractBody*>& bodies,
                      std::uint32_t& index) const
{
    index = body->GetStepIndex();
    return index < bodies.size() && bodies[index] == body;
}

void Sweeper::Begin()
{
    m_listRows.clear();
    m_listEntries.clear();
    m_hasOthers = false;
    m_packed = true;
}

void Sweeper::Add(Constraint& constraint, const util::VectorPOD<AbstractBody*>& bodies)
{
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    if (!IndexOf(constraint.GetBody(0), bodies, a) || !IndexOf(constraint.GetBody(1), bodies, b))
        m_packed = false;
    if (!m_packed)
        return;
    if (Contact* contact = constraint.AsContact())
    {
        m_listEntries.append(Entry{contact, static_cast<std::uint32_t>(m_listRows.size())});
        m_listRows.resize(m_listRows.size() + 1);
        contact->MakeRow(a, b, m_listRows[m_listRows.size() - 1]);
    }
    else
    {
        m_listEntries.append(Entry{&constraint, NOT_A_ROW});
        m_hasOthers = true;
    }
}

bool Sweeper::IsPacked(const util::VectorPOD<Constraint*>& constraints) const
{
    if (!m_packed || m_listEntries.size() != constraints.size())
        return false;
    for (size_t i = 0; i < constraints.size(); ++i)
        if (m_listEntries[i].constraint != constraints[i])
            return false;
    return true;
}

void Sweeper::Run(const util::VectorPOD<Constraint*>& constraints,
                  const util::VectorPOD<AbstractBody*>& bodies, int iterations, bool presort)
{
    const util::ScopeProfiler profile("GaussSeidelSolver");
    if (!IsPacked(constraints))
    {
        RunOnConstraints(constraints, iterations, presort);
        return;
    }
    GatherBodies(bodies);
    Order(presort);
    if (m_hasOthers)
        SweepMixed(iterations);
    else
        SweepRows(iterations);
    Scatter(bodies);
}

void Sweeper::RunOnConstraints(const util::VectorPOD<Constraint*>& constraints, int iterations, bool presort)
{
    m_sweepOrder.resize(constraints.size());
    std::copy(constraints.begin(), constraints.end(), m_sweepOrder.begin());
    if (presort)
    {
        m_ranked.resize(constraints.size());
        for (size_t i = 0; i < constraints.size(); ++i)
        {
            constraints[i]->CalcDesiredImpulse();
            m_ranked[i] = Ranked{RankKey(constraints[i]->GetPriority()), static_cast<std::uint32_t>(i)};
        }
        SortRanked(m_ranked, m_rankedSpare);
        for (size_t k = 0; k < m_ranked.size(); ++k)
            m_sweepOrder[k] = constraints[m_ranked[k].index];
    }
    for (int i = 0; i < iterations; ++i)
        for (Constraint* constraint : m_sweepOrder)
        {
            constraint->CalcDesiredImpulse();
            constraint->ApplyImpulse();
        }
}

void Sweeper::GatherBodies(const util::VectorPOD<AbstractBody*>& bodies)
{
    m_bodies.resize(bodies.size());
    for (size_t i = 0; i < bodies.size(); ++i)
        m_bodies[i] = SolverBody{bodies[i]->VelocityChange(), bodies[i]->RotationChange()};
}

void Sweeper::Order(bool presort)
{
    const size_t count = m_listEntries.size();
    m_ranked.resize(count);
    for (size_t i = 0; i < count; ++i)
    {
        // Without the sort the priorities go unread.
        const Entry& entry = m_listEntries[i];
        float priority = 0.0f;
        if (presort && entry.row == NOT_A_ROW)
        {
            // The bodies still hold the velocity changes that were gathered.
            entry.constraint->CalcDesiredImpulse();
            priority = entry.constraint->GetPriority();
        }
        else if (presort)
        {
            ContactRow& row = m_listRows[entry.row];
            DesiredImpulse(row, m_bodies);
            priority = row.deltaN * row.deltaN + row.deltaT * row.deltaT;
        }
        m_ranked[i] = Ranked{RankKey(priority), static_cast<std::uint32_t>(i)};
    }
    // The biggest demands are served first in the first sweep.
    if (presort)
        SortRanked(m_ranked, m_rankedSpare);
    m_rows.resize(m_listRows.size());
    m_sortedRowOf.resize(m_listRows.size());
    m_entries.resize(count);
    size_t rows = 0;
    for (size_t k = 0; k < count; ++k)
    {
        const Entry& entry = m_listEntries[m_ranked[k].index];
        if (entry.row == NOT_A_ROW)
        {
            m_entries[k] = entry;
            continue;
        }
        m_entries[k] = Entry{entry.constraint, static_cast<std::uint32_t>(rows)};
        m_rows[rows] = m_listRows[entry.row];
        m_sortedRowOf[entry.row] = static_cast<std::uint32_t>(rows);
        ++rows;
    }
}

void Sweeper::SweepRows(int iterations)
{
    ContactRow* const rows = m_rows.data();
    const size_t count = m_rows.size();
    SolverBody* const solverBodies = m_bodies.data();
    for (int i = 0; i < iterations; ++i)
    {
        if (i + 1 < iterations)
            for (size_t k = 0; k < count; ++k)
                SolveRow<false>(rows[k], solverBodies);
        else
            for (size_t k = 0; k < count; ++k)
                SolveRow<true>(rows[k], solverBodies);
    }
}

void Sweeper::SweepMixed(int iterations)
{
    SolverBody* const solverBodies = m_bodies.data();
    for (int i = 0; i < iterations; ++i)
        for (const Entry& entry : m_entries)
        {
            if (entry.row == NOT_A_ROW)
                SolveOther(*entry.constraint);
            else
                SolveRow<true>(m_rows[entry.row], solverBodies);
        }
}
void Sweeper::SolveOther(Constraint& constraint)
{
    // Its bodies' velocity changes go to the bodies for its own code, and come back.
    AbstractBody* a = constraint.GetBody(0);
    AbstractBody* b = constraint.GetBody(1);
    SolverBody& sa = m_bodies[a->GetStepIndex()];
    SolverBody& sb = m_bodies[b->GetStepIndex()];
    a->VelocityChange() = sa.velocityChange;
    a->RotationChange() = sa.rotationChange;
    b->VelocityChange() = sb.velocityChange;
    b->RotationChange() = sb.rotationChange;
    constraint.CalcDesiredImpulse();
    constraint.ApplyImpulse();
    sa = SolverBody{a->VelocityChange(), a->RotationChange()};
    sb = SolverBody{b->VelocityChange(), b->RotationChange()};
}

void Sweeper::Scatter(const util::VectorPOD<AbstractBody*>& bodies)
{
    for (size_t i = 0; i < bodies.size(); ++i)
    {
        bodies[i]->VelocityChange() = m_bodies[i].velocityChange;
        bodies[i]->RotationChange() = m_bodies[i].rotationChange;
    }
    // In the order given, in which the contacts lie in memory.
    for (const Entry& entry : m_listEntries)
        if (entry.row != NOT_A_ROW)
            static_cast<Contact*>(entry.constraint)->TakeResults(m_rows[m_sortedRowOf[entry.row]]);
}

} // namespace physics
