// The packed sweeps are the constraints' own arithmetic in the same order: a solve through them leaves
// bodies and impulses bit for bit where the constraints' own calls leave them. The ranking puts the
// greatest priority first, whatever the priorities.
#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Contact.h"
#include "physics/Hinge.h"
#include "physics/Sweeper.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>

namespace physics
{
namespace
{
const int ITERATIONS = 30;

std::uint32_t Bits(float f)
{
    std::uint32_t u;
    std::memcpy(&u, &f, sizeof u);
    return u;
}

struct Solve
{
    std::vector<std::uint32_t> bits;
    size_t contacts = 0;
    size_t pushing = 0;
    bool onlyPush = true;
};

class SweeperTest : public WorldTest
{
protected:
    // A leaning, moving column on the ground with a hinged ball, its contacts found by the collider, half
    // of them carried over from a last step (warm started, softened); then one solve, packed or not.
    Solve SolveColumn(bool packed, bool presort)
    {
        testing::ResetWorld();
        testing::AddGround();
        std::vector<util::SharedPtr<Body>> boxes;
        for (int i = 0; i < 6; ++i)
        {
            const float y = 0.49f + 0.97f * float(i);
            boxes.push_back(
                testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1, 1), math::Vec2(0.05f * float(i), y))));
            boxes.back()->SetVelocity(math::Vec2(0.3f * float(i), -1.0f - float(i)));
            boxes.back()->SetAngularVelocity(0.2f * float(i % 3) - 0.2f);
        }
        util::SharedPtr<Geom> ball = QLEX_NEW new Circle(math::Vec2(1.2f, 5.0f), 0.3f);
        testing::AddDynamic(ball);
        const util::SharedPtr<Hinge> hinge =
            QLEX_NEW new Hinge(*boxes.back()->GetGeoms().begin(), ball, math::Vec2(0.9f, 5.0f));
        Sim().AddConstraint(hinge);

        Collider collider;
        util::VectorPOD<Contact*> raw;
        collider.AssignBodies(Sim().GetBodies(), Sim().GetParticles());
        collider.Collide(raw);
        util::VectorPOD<AbstractBody*> bodies;
        for (const util::SharedPtr<Body>& body : Sim().GetBodies())
        {
            body->SetStepIndex(static_cast<std::uint32_t>(bodies.size()));
            body->VelocityChange() = math::Vec2(0, 0);
            body->RotationChange() = 0.0f;
            bodies.append(body.get());
        }
        util::VectorPOD<Constraint*> list;
        list.append(hinge.get());
        for (size_t i = 0; i < raw.size(); ++i)
        {
            if (i % 2 == 0)
                raw[i]->ReadFrom(ContactMemory{0.0, 2.0f + float(i), 0.5f - 0.1f * float(i)});
            list.append(raw[i]);
        }

        const StepContext step = Sim().MakeStepContext();
        Sweeper sweeper;
        sweeper.Begin();
        util::VectorPOD<Constraint*> taking;
        for (Constraint* constraint : list)
            if (constraint->SolveInit(step))
            {
                taking.append(constraint);
                if (packed)
                    sweeper.Add(*constraint, bodies);
            }
        sweeper.Run(taking, bodies, ITERATIONS, presort);

        Solve solve;
        for (const AbstractBody* body : bodies)
            for (float value : {body->VelocityChange().x, body->VelocityChange().y, body->RotationChange()})
                solve.bits.push_back(Bits(value));
        for (const Contact* contact : raw)
        {
            solve.bits.push_back(Bits(contact->GetSumN()));
            solve.bits.push_back(Bits(contact->GetSumT()));
            solve.bits.push_back(Bits(contact->GetPriority()));
            solve.onlyPush = solve.onlyPush && contact->GetSumN() >= 0.0f;
            solve.pushing += contact->GetSumN() > 0.0f;
        }
        solve.bits.push_back(Bits(hinge->GetSum().x));
        solve.bits.push_back(Bits(hinge->GetSum().y));
        solve.contacts = raw.size();
        return solve;
    }
};

TEST_F(SweeperTest, PackedSweepsLeaveBodiesAndImpulsesAsTheConstraintsOwnCalls)
{
    for (bool presort : {true, false})
    {
        const Solve own = SolveColumn(false, presort);
        const Solve packed = SolveColumn(true, presort);
        // A solve that did something: the column's contacts push, and only push.
        EXPECT_GE(own.contacts, 10u);
        EXPECT_GE(own.pushing, 5u);
        EXPECT_TRUE(own.onlyPush);
        ASSERT_EQ(own.bits.size(), packed.bits.size());
        for (size_t i = 0; i < own.bits.size(); ++i)
            ASSERT_EQ(own.bits[i], packed.bits[i]) << "value " << i << (presort ? ", presorted" : "");
    }
}

TEST(SweeperRankingTest, GreatestPriorityFirstAndTiesTogetherTheSameEveryTime)
{
    // Mostly zeros of either sign, as in a resting heap, among repeated, tiny, huge and negative values;
    // sizes around the digit width and beyond it.
    std::mt19937 random(7);
    const float values[] = {0.0f, -0.0f, 1e-30f, 3.5f, 3.5f, 1e30f, -2.0f, 7e-3f};
    util::VectorPOD<Ranked> spare;
    for (size_t count : {size_t(0), size_t(1), size_t(5), size_t(2049), size_t(20000)})
    {
        std::vector<float> priorities(count);
        for (float& priority : priorities)
        {
            const std::uint32_t pick = random() % 16;
            priority = pick < 8    ? values[pick % 2]
                       : pick < 14 ? values[pick - 6]
                                   : float(random() % 1000) * 0.01f;
        }
        const auto rank = [&]
        {
            util::VectorPOD<Ranked> ranked;
            for (size_t i = 0; i < count; ++i)
                ranked.append(Ranked{RankKey(priorities[i]), static_cast<std::uint32_t>(i)});
            SortRanked(ranked, spare);
            return ranked;
        };
        const util::VectorPOD<Ranked> ranked = rank();
        ASSERT_EQ(ranked.size(), count);
        std::vector<float> expected = priorities;
        std::sort(expected.begin(), expected.end(), std::greater<float>());
        std::vector<bool> seen(count, false);
        bool tiesInGivenOrder = true;
        for (size_t k = 0; k < count; ++k)
        {
            ASSERT_LT(ranked[k].index, count);
            ASSERT_FALSE(seen[ranked[k].index]) << "index " << ranked[k].index << " twice";
            seen[ranked[k].index] = true;
            ASSERT_EQ(priorities[ranked[k].index], expected[k]) << "place " << k << " of " << count;
            if (k > 0 && priorities[ranked[k].index] == priorities[ranked[k - 1].index])
                tiesInGivenOrder = tiesInGivenOrder && ranked[k].index > ranked[k - 1].index;
        }
        const util::VectorPOD<Ranked> again = rank();
        for (size_t k = 0; k < count; ++k)
            ASSERT_EQ(again[k].index, ranked[k].index);
        if (count > 1000)
        {
            EXPECT_FALSE(tiesInGivenOrder) << "ties are swept in the collider's order";
        }
    }
}
} // namespace
} // namespace physics
