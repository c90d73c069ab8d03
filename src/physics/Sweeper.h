#pragma once

#include "math/Math.h"
#include "physics/Contact.h"
#include "util/VectorPOD.h"

#include <cstdint>

namespace physics
{
class AbstractBody;
class Constraint;

// An entry of a ranking: its key and its place in the list ranked.
struct Ranked
{
    std::uint32_t key;
    std::uint32_t index;
};
// A key whose ascending order is the descending order of the priority; equal priorities (both zeros alike)
// get equal keys.
std::uint32_t RankKey(float priority);
// Sorts by key, ties in an order scrambled from their places, the same for the same input; `spare` is
// storage kept between calls.
void SortRanked(util::VectorPOD<Ranked>& ranked, util::VectorPOD<Ranked>& spare);

// The Gauss-Seidel sweeps of a solve, over a compact copy of the constraints. Thousands of contacts swept
// thirty times a step are bound by memory, not arithmetic: each contact lives in an object of its own and
// each body in a large one, visited in the order of the sort by priority. Here the contacts are rows of one
// array in sweep order and the velocity changes one small array by the bodies' places in the step's list.
// The arithmetic is the constraints' own, in the same order, so that results are the same bit for bit.
// Other constraints (hinges) keep their own code and see their bodies' velocity changes as usual.
class Sweeper
{
public:
    // Packing goes along with SolveInit, while each constraint is at hand: Begin, then Add for each one
    // that takes part, in the order of the list that Run is given.
    void Begin();
    void Add(Constraint& constraint, const util::VectorPOD<AbstractBody*>& bodies);
    // Sweeps the constraints, after SolveInit, `iterations` times in the order given; with `presort` the
    // biggest demands come first in the first sweep. The step's bodies carry their velocity changes in
    // and out. Storage stays from call to call.
    void Run(const util::VectorPOD<Constraint*>& constraints, const util::VectorPOD<AbstractBody*>& bodies,
             int iterations, bool presort);

private:
    struct SolverBody
    {
        math::Vec2 velocityChange;
        float rotationChange;
    };
    // One entry of the sweep: a contact with its row, or a constraint of another kind.
    struct Entry
    {
        Constraint* constraint;
        std::uint32_t row;
    };
    static constexpr std::uint32_t NOT_A_ROW = 0xFFFFFFFFu;

    // The body's place in the step's list, or false where the list doesn't hold it.
    bool IndexOf(const AbstractBody* body, const util::VectorPOD<AbstractBody*>& bodies,
                 std::uint32_t& index) const;
    // Whether what was added is the list given, in its order.
    bool IsPacked(const util::VectorPOD<Constraint*>& constraints) const;
    void GatherBodies(const util::VectorPOD<AbstractBody*>& bodies);
    // Puts the packed entries in sweep order.
    void Order(bool presort);
    void SweepRows(int iterations);
    void SweepMixed(int iterations);
    void SolveOther(Constraint& constraint);
    void Scatter(const util::VectorPOD<AbstractBody*>& bodies);
    // The sweeps on the constraints themselves, where they can't be packed.
    void RunOnConstraints(const util::VectorPOD<Constraint*>& constraints, int iterations, bool presort);

    // The packed constraints in the order given, then in sweep order.
    util::VectorPOD<ContactRow> m_listRows;
    util::VectorPOD<Entry> m_listEntries;
    util::VectorPOD<Ranked> m_ranked;
    util::VectorPOD<Ranked> m_rankedSpare;
    util::VectorPOD<ContactRow> m_rows;
    // Where each row of the order given went in sweep order.
    util::VectorPOD<std::uint32_t> m_sortedRowOf;
    util::VectorPOD<Entry> m_entries;
    util::VectorPOD<SolverBody> m_bodies;
    util::VectorPOD<Constraint*> m_sweepOrder;
    bool m_hasOthers = false;
    // False once a constraint had a body outside the step's list: such a solve runs on the constraints.
    bool m_packed = true;
};

} // namespace physics
