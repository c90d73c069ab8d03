#include "physics/Sweeper.h"

#include "physics/AbstractBody.h"
#include "physics/Constraint.h"
#include "util/Profiler.h"

#include <algorithm>

namespace physics
{
namespace
{
// Contact::CalcDesiredImpulse and Contact::ApplyImpulse on the packed copy, operation for operation.
template <class Bodies> inline void SolveRow(ContactRow& row, Bodies& bodies)
{
    auto& a = bodies[row.bodyA];
    auto& b = bodies[row.bodyB];
    const math::Vec2 w = (b.velocityChange + math::Cross(b.rotationChange, row.r1)) -
                         (a.velocityChange + math::Cross(a.rotationChange, row.r0));
    const math::Vec2 tangent = math::Rot90CCW(row.normal);

    float deltaN = row.targetN - math::Dot(w, row.normal) * row.activeMassN;
    const float sumN = std::max(deltaN + row.sumN, 0.0f);
    deltaN = sumN - row.sumN;

    const float limit = std::max(row.friction * sumN, 0.0f);
    float deltaT = row.targetT - math::Dot(w, tangent) * row.activeMassT;
    const float sumT = std::min(std::max(deltaT + row.sumT, -limit), limit);
    deltaT = sumT - row.sumT;

    const math::Vec2 impulse = row.normal * deltaN + tangent * deltaT;
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
    row.deltaN = deltaN;
    row.deltaT = deltaT;
}
} // namespace

bool Sweeper::IndexOf(const AbstractBody* body, const util::VectorPOD<AbstractBody*>& bodies,
                      std::uint32_t& index) const
{
    index = body->GetStepIndex();
    return index < bodies.size() && bodies[index] == body;
}

void Sweeper::Run(const util::VectorPOD<Constraint*>& constraints,
                  const util::VectorPOD<AbstractBody*>& bodies, int iterations, bool presort)
{
    const util::ScopeProfiler profile("GaussSeidelSolver");
    m_ranked.resize(constraints.size());
    for (size_t i = 0; i < constraints.size(); ++i)
    {
        Constraint* constraint = constraints[i];
        if (presort)
            constraint->CalcDesiredImpulse();
        m_ranked[i] = Ranked{constraint->GetPriority(), constraint};
    }
    if (presort)
    {
        // The same comparisons as on the constraints themselves, so the same order, with the keys at hand
        // instead of behind a pointer each.
        std::sort(m_ranked.begin(), m_ranked.end(),
                  [](const Ranked& a, const Ranked& b) { return a.priority > b.priority; });
    }
    if (!Gather(bodies))
    {
        // A constraint on a body outside the step's list: swept as the constraints stand.
        for (int i = 0; i < iterations; ++i)
            for (const Ranked& ranked : m_ranked)
            {
                ranked.constraint->CalcDesiredImpulse();
                ranked.constraint->ApplyImpulse();
            }
        return;
    }
    if (m_hasOthers)
        SweepMixed(iterations);
    else
        SweepRows(iterations);
    Scatter(bodies);
}

bool Sweeper::Gather(const util::VectorPOD<AbstractBody*>& bodies)
{
    m_rows.clear();
    m_rowContacts.clear();
    m_entries.clear();
    m_hasOthers = false;
    for (const Ranked& ranked : m_ranked)
    {
        Constraint* constraint = ranked.constraint;
        std::uint32_t a = 0;
        std::uint32_t b = 0;
        if (!IndexOf(constraint->GetBody(0), bodies, a) || !IndexOf(constraint->GetBody(1), bodies, b))
            return false;
        if (Contact* contact = constraint->AsContact())
        {
            m_entries.append(Entry{nullptr, static_cast<std::uint32_t>(m_rows.size())});
            m_rows.append(contact->MakeRow(a, b));
            m_rowContacts.append(contact);
        }
        else
        {
            m_entries.append(Entry{constraint, 0});
            m_hasOthers = true;
        }
    }
    m_bodies.resize(bodies.size());
    for (size_t i = 0; i < bodies.size(); ++i)
        m_bodies[i] = SolverBody{bodies[i]->VelocityChange(), bodies[i]->RotationChange()};
    return true;
}

void Sweeper::SweepRows(int iterations)
{
    ContactRow* const rows = m_rows.data();
    const size_t count = m_rows.size();
    SolverBody* const solverBodies = m_bodies.data();
    for (int i = 0; i < iterations; ++i)
        for (size_t k = 0; k < count; ++k)
            SolveRow(rows[k], solverBodies);
}

void Sweeper::SweepMixed(int iterations)
{
    SolverBody* const solverBodies = m_bodies.data();
    for (int i = 0; i < iterations; ++i)
        for (const Entry& entry : m_entries)
        {
            if (entry.other)
                SolveOther(*entry.other);
            else
                SolveRow(m_rows[entry.row], solverBodies);
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
    for (size_t k = 0; k < m_rows.size(); ++k)
        m_rowContacts[k]->TakeResults(m_rows[k]);
}

} // namespace physics
