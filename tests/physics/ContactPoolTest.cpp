#include "WorldTest.h"

#include "physics/Circle.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"

#include <set>

namespace physics
{
TEST_F(WorldTest, ContactPool_ReusesOnlyContactsNobodyHolds)
{
    util::SharedPtr<Geom> ground = testing::AddGround();
    util::SharedPtr<Geom> ball = QLEX_NEW new Circle(math::Vec2(0.0f, 0.4f), 0.5f);
    testing::AddDynamic(ball);
    ContactPool pool;
    const math::Vec2 up(0.0f, 1.0f);
    Contact* first = pool.Make(*ground, *ball, 3, math::Vec2(1.0f, 0.0f), up, 0.1f);
    util::SharedPtr<Contact> held = pool.Make(*ground, *ball, 4, math::Vec2(2.0f, 0.0f), up, 0.2f);
    first->ReadFrom(*held);
    EXPECT_EQ(pool.GetSize(), 2u);

    pool.Reclaim();
    EXPECT_EQ(pool.GetFreeCount(), 1u);
    Contact* again = pool.Make(*ball, *ground, 7, math::Vec2(0.0f, -0.1f), -up, 0.1f);
    EXPECT_EQ(again, first);
    // Reset as a new contact: compare with one made by the constructor.
    const Contact fresh(ball.get(), ground.get(), 7, math::Vec2(0.0f, -0.1f), -up, 0.1f);
    EXPECT_TRUE(again->IsNew());
    EXPECT_EQ(again->GetID(), fresh.GetID());
    EXPECT_EQ(again->GetPoint(), fresh.GetPoint());
    EXPECT_EQ(again->GetNormal(), fresh.GetNormal());
    EXPECT_EQ(again->GetDepth(), fresh.GetDepth());
    EXPECT_EQ(again->GetSumN(), 0.0f);
    EXPECT_EQ(again->GetBody(0), fresh.GetBody(0));
    EXPECT_EQ(again->GetPriority(), fresh.GetPriority());
    // The held one was never handed out again, and nothing new was made.
    EXPECT_EQ(held->GetID().sub, 4u);
    EXPECT_EQ(pool.GetSize(), 2u);
    pool.Reclaim();
    EXPECT_EQ(pool.GetFreeCount(), 1u);
    held = nullptr;
    pool.Reclaim();
    EXPECT_EQ(pool.GetFreeCount(), 2u);
}

TEST_F(WorldTest, ContactPool_ASteadySceneMakesNoNewContacts)
{
    testing::AddGround();
    util::SharedPtr<Body> ball = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 0.5f), 0.5f));
    RunSteps(50);
    ASSERT_EQ(Sim().GetContacts().size(), 1u);

    // A contact kept from one step keeps its values while the simulation goes on.
    const util::SharedPtr<Contact> kept = Sim().GetContacts()[0];
    const float keptSum = kept->GetSumN();
    const math::Vec2 keptPoint = kept->GetPoint();
    std::set<const Contact*> seen;
    for (int i = 0; i < 20; ++i)
    {
        RunSteps(1);
        ASSERT_EQ(Sim().GetContacts().size(), 1u);
        seen.insert(Sim().GetContacts()[0].get());
    }
    EXPECT_EQ(seen.count(kept.get()), 0u);
    // Two in turn: this step's, and the last one's that matching reads.
    EXPECT_LE(seen.size(), 2u);
    EXPECT_EQ(kept->GetSumN(), keptSum);
    EXPECT_EQ(kept->GetPoint(), keptPoint);
    EXPECT_FALSE(ball->IsBad());
}

// A pool that served a big world and then a small one keeps a few spares, not the big world's contacts,
// which every step would otherwise look at; a steady world keeps all it uses and makes no new ones.
TEST_F(WorldTest, ContactPool_GivesBackTheSparesOfAWorldThatShrank)
{
    util::SharedPtr<Geom> ground = testing::AddGround();
    util::SharedPtr<Geom> ball = QLEX_NEW new Circle(math::Vec2(0.0f, 0.4f), 0.5f);
    testing::AddDynamic(ball);
    ContactPool pool;
    const size_t big = 3 * ContactPool::MIN_SPARE_CONTACTS;
    const auto makeMany = [&](size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            pool.Make(*ground, *ball, static_cast<std::uint32_t>(i), math::Vec2(0, 0), math::Vec2(0, 1),
                      0.1f);
    };
    makeMany(big);
    const size_t grown = pool.GetSize();
    EXPECT_GE(grown, big);
    for (int step = 0; step < 3; ++step)
    {
        pool.Reclaim();
        makeMany(big);
        EXPECT_EQ(pool.GetSize(), grown) << step;
    }
    util::SharedPtr<Contact> held = pool.Make(*ground, *ball, 99, math::Vec2(0, 0), math::Vec2(0, 1), 0.1f);
    const size_t before = pool.GetSize();
    pool.Reclaim();
    // A world that is small for a moment (a heap in the air) keeps its spares; one that stays small doesn't.
    for (size_t call = 1; call < ContactPool::CALLS_BEFORE_TRIM; ++call)
    {
        makeMany(call % 2 == 0 ? 10 : 0);
        pool.Reclaim();
    }
    EXPECT_EQ(pool.GetSize(), before);
    makeMany(10);
    pool.Reclaim();
    const size_t spares = ContactPool::SPARES_AFTER_TRIM * 10 + ContactPool::MIN_SPARE_CONTACTS;
    EXPECT_EQ(pool.GetFreeCount(), spares);
    EXPECT_EQ(pool.GetSize(), spares + 1);
    // The contact held outside stays as it was; a world that comes back to its size keeps the spares.
    EXPECT_EQ(held->GetID().sub, 99u);
    makeMany(30);
    pool.Reclaim();
    EXPECT_EQ(pool.GetSize(), spares + 1);
}

} // namespace physics
