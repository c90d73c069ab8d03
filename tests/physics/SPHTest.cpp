#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Contact.h"
#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace physics
{
namespace
{
class WaterTest : public WorldTest
{
protected:
    SPH& Water() { return *SPH::GetInstancePtr(); }

    util::SharedPtr<Particle> AddParticle(const math::Vec2& p)
    {
        util::SharedPtr<Particle> particle = QLEX_NEW new Particle(p, math::Vec2(0.0f, 0.0f));
        Sim().AddParticle(particle);
        return particle;
    }

    static double KineticEnergy(const std::vector<util::SharedPtr<Particle>>& particles)
    {
        double e = 0.0;
        for (const util::SharedPtr<Particle>& p : particles)
            e += 0.5 * p->GetMass() * p->GetVelocity().LengthSq();
        return e;
    }

    // Runs the water's update alone: neither integration nor contacts move the particles, so that the lists
    // can be checked against the positions they were found from.
    void UpdateWater(int times = 1)
    {
        for (int i = 0; i < times; ++i)
            Water().Update(Sim().GetParticles(), Sim().MakeStepContext());
    }

    // Each list holds the particle itself and then exactly the particles closer than h, with their exact
    // offsets; densities add up over the lists; the water's forces on itself cancel.
    void ExpectListsOfAllPairs(const std::vector<util::SharedPtr<Particle>>& water)
    {
        const float h = Water().InfluenceDistance();
        const double mass = math::PI * 0.05 * 0.05;
        double neighbourSum = 0.0;
        math::Vec2 forceSum(0.0f, 0.0f);
        double forceSize = 0.0;
        for (const util::SharedPtr<Particle>& p : water)
        {
            const util::VectorPOD<Particle::Neighbor>& list = p->GetNeighbors();
            ASSERT_FALSE(list.empty());
            EXPECT_EQ(list[0].particle, p.get());
            EXPECT_EQ(list[0].distance, 0.0f);
            EXPECT_EQ(list[0].offset, math::Vec2(0.0f, 0.0f));

            std::map<const Particle*, math::Vec2> expected;
            for (const util::SharedPtr<Particle>& q : water)
            {
                const math::Vec2 offset = q->GetPosition() - p->GetPosition();
                if (q != p && offset.LengthSq() < h * h)
                    expected[q.get()] = offset;
            }
            ASSERT_EQ(list.size(), expected.size() + 1);
            double density = mass * Water().MakeKernel().Influence(0.0f);
            for (size_t k = 1; k < list.size(); ++k)
            {
                const auto found = expected.find(list[k].particle);
                ASSERT_NE(found, expected.end());
                EXPECT_EQ(list[k].offset, found->second);
                EXPECT_FLOAT_EQ(list[k].distance, found->second.Length());
                density += mass * Water().MakeKernel().Influence(list[k].distance);
                expected.erase(found);
            }
            EXPECT_NEAR(p->GetDensity(), density, 1e-4 * density);
            neighbourSum += static_cast<double>(list.size());
            forceSum += p->GetForce();
            forceSize += p->GetForce().Length();
        }
        const double count = static_cast<double>(water.size());
        EXPECT_FLOAT_EQ(Water().GetReportedValue("AVG_neighCount"), static_cast<float>(neighbourSum / count));
        EXPECT_GT(neighbourSum / count, 4.0);
        EXPECT_GT(forceSize, 0.0);
        EXPECT_LT(forceSum.Length(), 1e-5 * forceSize);
    }

    static double MeanHeight(const std::vector<util::SharedPtr<Particle>>& particles)
    {
        double sum = 0.0;
        for (const util::SharedPtr<Particle>& p : particles)
            sum += p->GetPosition().y;
        return sum / static_cast<double>(particles.size());
    }
};
} // namespace

TEST_F(WaterTest, LoneParticle_HasItsOwnDensityAndVaporizes)
{
    Sim().m_gravitySwitch = false;
    util::SharedPtr<Particle> p = AddParticle(math::Vec2(1.0f, 1.0f));
    RunSteps(1);
    // mass * 315 h^6 / (64 pi h^9), with mass pi r^2 and h = 2r = 0.1.
    const double h = 0.1;
    const double expected = math::PI * 0.05 * 0.05 * 315.0 / (64.0 * math::PI * h * h * h);
    EXPECT_NEAR(p->GetDensity(), expected, 1e-3 * expected);
    EXPECT_NEAR(p->GetDensity(), 12.3f, 0.05f);
    EXPECT_GT(p->GetPressure(), 0.0f);
    EXPECT_EQ(p->GetVelocity(), math::Vec2(0.0f, 0.0f));
    EXPECT_FLOAT_EQ(Water().GetReportedValue("AVG_neighCount"), 1.0f);
    EXPECT_NEAR(Water().GetReportedValue("AVG_density"), expected, 1e-3 * expected);

    // Frozen, it doesn't age.
    const float aged = p->GetLonelyTime();
    Sim().m_running = false;
    for (int i = 0; i < 100; ++i)
        Sim().Step(false);
    EXPECT_EQ(p->GetLonelyTime(), aged);
    Sim().m_running = true;

    RunSteps(488);
    ASSERT_EQ(Sim().GetParticles().size(), 1u);
    RunSteps(15);
    EXPECT_TRUE(Sim().GetParticles().empty());
}

TEST_F(WaterTest, Neighbours_AreStrictlyWithinTheInfluenceDistance)
{
    Sim().m_gravitySwitch = false;
    const float h = Water().InfluenceDistance();
    util::SharedPtr<Particle> a = AddParticle(math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Particle> b = AddParticle(math::Vec2(h * 0.999f, 0.0f));
    // Exactly h from the first: no neighbour.
    util::SharedPtr<Particle> c = AddParticle(math::Vec2(0.0f, h));
    RunSteps(1);
    EXPECT_EQ(a->GetNeighbors().size(), 2u);
    EXPECT_EQ(b->GetNeighbors().size(), 2u);
    EXPECT_EQ(c->GetNeighbors().size(), 1u);
    EXPECT_EQ(a->GetNeighbors()[0].particle, a.get());
    EXPECT_EQ(a->GetNeighbors()[1].particle, b.get());
    EXPECT_EQ(b->GetNeighbors()[1].offset, -a->GetNeighbors()[1].offset);
    // The pair pushes apart.
    EXPECT_LT(a->GetVelocity().x, 0.0f);
    EXPECT_GT(b->GetVelocity().x, 0.0f);
    EXPECT_EQ(Water().GetReportedText("hashInfo").rfind("Number of elements:  ", 0), 0u);
}

TEST_F(WaterTest, Neighbours_AcrossTheAxisAndAtOnePoint)
{
    // Truncation toward zero: both sides of x = 0 share cell 0.
    EXPECT_EQ(Cellify(math::Vec2(-0.1f, 0.0f), 5.0f), Cellify(math::Vec2(0.1f, 0.0f), 5.0f));
    EXPECT_NE(Cellify(math::Vec2(0.1f, 0.0f), 5.0f), Cellify(math::Vec2(0.3f, 0.0f), 5.0f));

    Sim().m_gravitySwitch = false;
    util::SharedPtr<Particle> a = AddParticle(math::Vec2(0.5f, 0.5f));
    util::SharedPtr<Particle> b = AddParticle(math::Vec2(0.5f, 0.5f));
    RunSteps(1);
    ASSERT_EQ(a->GetNeighbors().size(), 2u);
    EXPECT_FLOAT_EQ(a->GetNeighbors()[1].distance, 0.01f * Water().m_radius);
    EXPECT_FALSE(a->IsBad());
    EXPECT_NE(a->GetPosition(), b->GetPosition());
}

TEST_F(WaterTest, FarParticles_ShareTheBorderCellsAndLeaveTheRestAlone)
{
    // Cells stop at 2^30 from the origin, whatever the position, NaN included.
    EXPECT_EQ(Cellify(math::Vec2(1e30f, -1e30f), 10.0f), math::TVector2<int>(1073741824, -1073741824));
    EXPECT_EQ(Cellify(math::Vec2(std::numeric_limits<float>::quiet_NaN(), 0.0f), 10.0f).x, -1073741824);

    Sim().m_gravitySwitch = false;
    util::SharedPtr<Particle> far = AddParticle(math::Vec2(1e30f, 1e30f));
    util::SharedPtr<Particle> farther = AddParticle(math::Vec2(3e38f, 1e30f));
    util::SharedPtr<Particle> a = AddParticle(math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Particle> b = AddParticle(math::Vec2(0.05f, 0.0f));
    UpdateWater();
    EXPECT_EQ(far->GetNeighbors().size(), 1u);
    EXPECT_EQ(farther->GetNeighbors().size(), 1u);
    EXPECT_EQ(a->GetNeighbors().size(), 2u);
    EXPECT_FALSE(a->IsBad());
}

TEST_F(WaterTest, Pairs_OfWaterHeapedOnOnePointAreCappedWithOneWarning)
{
    // 4,000 particles at one point would make 8 million pairs: twice the cap.
    Sim().m_gravitySwitch = false;
    for (int i = 0; i < 4000; ++i)
        AddParticle(math::Vec2(1.0f, 1.0f));
    UpdateWater(2);
    const float average = 1.0f + 2.0f * 4000000.0f / 4000.0f;
    EXPECT_FLOAT_EQ(Water().GetReportedValue("AVG_neighCount"), average);
    const size_t warnings = std::count_if(m_log.begin(), m_log.end(),
                                          [](const std::string& line)
                                          { return line.find("Water too crowded") != std::string::npos; });
    EXPECT_EQ(warnings, 1u);
}

TEST_F(WaterTest, Neighbours_AreEveryPairWithinTheInfluenceDistance)
{
    // A cloud over both axes, so that it spans the double-width cells at zero, and dense enough for
    // neighbours in all eight directions; its cells come in no order.
    std::mt19937 random(7);
    std::uniform_real_distribution<float> coordinate(-0.6f, 0.6f);
    std::vector<util::SharedPtr<Particle>> cloud;
    for (int i = 0; i < 400; ++i)
        cloud.push_back(AddParticle(math::Vec2(coordinate(random), coordinate(random))));
    UpdateWater();
    ExpectListsOfAllPairs(cloud);
}

TEST_F(WaterTest, Neighbours_AreEveryPairWhenCellsComeUpOrDownColumns)
{
    // Grids filled column by column, bottom up and top down, spaced so that lists reach into the next
    // column of cells.
    const float spacing = 0.045f;
    for (const bool up : {true, false})
    {
        testing::ResetWorld();
        std::vector<util::SharedPtr<Particle>> grid;
        for (int column = 0; column < 20; ++column)
            for (int row = 0; row < 20; ++row)
            {
                const float y = static_cast<float>(up ? row : 19 - row) * spacing;
                grid.push_back(
                    AddParticle(math::Vec2(static_cast<float>(column) * spacing - 0.4f, y - 0.3f)));
            }
        UpdateWater();
        ExpectListsOfAllPairs(grid);
    }
}

TEST_F(WaterTest, NeighbourLists_FollowTheLastSearch)
{
    Sim().m_gravitySwitch = false;
    util::SharedPtr<Particle> a = AddParticle(math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Particle> b = AddParticle(math::Vec2(0.05f, 0.0f));
    UpdateWater();
    ASSERT_EQ(a->GetNeighbors().size(), 2u);

    // Made after the search: no list yet, and no change to the others'.
    util::SharedPtr<Particle> c = AddParticle(math::Vec2(0.0f, 0.05f));
    EXPECT_TRUE(c->GetNeighbors().empty());
    EXPECT_EQ(a->GetNeighbors().size(), 2u);

    UpdateWater();
    EXPECT_EQ(a->GetNeighbors().size(), 3u);
    EXPECT_EQ(c->GetNeighbors().size(), 3u);
    EXPECT_EQ(c->GetNeighbors()[0].particle, c.get());

    // Frozen, the lists stay as the last search left them even as the particles move.
    Sim().m_running = false;
    b->SetPosition(math::Vec2(5.0f, 5.0f));
    Sim().Step(false);
    EXPECT_EQ(a->GetNeighbors().size(), 3u);
    EXPECT_EQ(b->GetNeighbors().size(), 3u);
    Sim().m_running = true;
    UpdateWater();
    EXPECT_EQ(b->GetNeighbors().size(), 1u);
    EXPECT_EQ(a->GetNeighbors().size(), 2u);
}

TEST_F(WaterTest, Settings_ReachAllWaterAtTheNextUpdate)
{
    util::SharedPtr<Particle> old = AddParticle(math::Vec2(0.0f, 0.0f));
    UpdateWater();
    // A particle made while the radius was briefly different takes the radius of the update.
    Water().m_radius = 0.1f;
    util::SharedPtr<Particle> made = AddParticle(math::Vec2(1.0f, 0.0f));
    EXPECT_NEAR(made->GetMass(), math::PIf * 0.01f, 1e-6f);
    Water().m_radius = 0.05f;
    UpdateWater();
    EXPECT_NEAR(made->GetMass(), math::PIf * 0.0025f, 1e-6f);

    Water().m_friction = 0.3f;
    Water().m_density = 2.0f;
    UpdateWater();
    for (const util::SharedPtr<Particle>& p : {old, made})
    {
        EXPECT_NEAR(p->GetMass(), math::PIf * 0.005f, 1e-6f);
        EXPECT_FLOAT_EQ(p->GetGeom()->GetFriction(), 0.3f);
    }
}

TEST_F(WaterTest, Reports_LeaveTheValuesThatScriptsHold)
{
    AddParticle(math::Vec2(0.0f, 0.0f));
    UpdateWater();
    const float alone = Water().GetReportedValue("AVG_density");
    const script::ObjectPtr held = Water().GetObject("AVG_density");

    AddParticle(math::Vec2(0.05f, 0.0f));
    UpdateWater();
    EXPECT_GT(Water().GetReportedValue("AVG_density"), alone);
    EXPECT_EQ(script::ObjectToValue<float>(held), alone);
    EXPECT_FLOAT_EQ(Water().GetReportedValue("AVG_neighCount"), 2.0f);

    // Unheld, the value still follows every update.
    AddParticle(math::Vec2(2.0f, 2.0f));
    UpdateWater();
    EXPECT_FLOAT_EQ(Water().GetReportedValue("AVG_neighCount"), 5.0f / 3.0f);
}

TEST_F(WaterTest, HashInfo_CountsTheOccupiedCells)
{
    // Cells are 0.2 wide at the default settings; these three lie in three of them.
    AddParticle(math::Vec2(0.5f, 0.5f));
    AddParticle(math::Vec2(1.5f, 0.5f));
    AddParticle(math::Vec2(0.55f, 0.5f));
    // In a steady state the text may lag behind by a second of updates.
    UpdateWater(101);
    EXPECT_EQ(Water().GetReportedText("hashInfo").rfind("Number of elements:  2\n", 0), 0u);

    // More water is reported at once.
    AddParticle(math::Vec2(-1.5f, 0.5f));
    UpdateWater();
    EXPECT_EQ(Water().GetReportedText("hashInfo").rfind("Number of elements:  3\n", 0), 0u);
}

TEST_F(WaterTest, Tank_Settles)
{
    const std::vector<util::SharedPtr<Particle>> water = testing::BuildWaterTank(240, 8);
    const float halfWidth = 30.0f * testing::WaterSpacing() / 2.0f;
    RunSeconds(4.0f);
    const double level = MeanHeight(water);
    RunSeconds(1.0f);
    EXPECT_EQ(Sim().GetParticles().size(), water.size());
    for (const util::SharedPtr<Particle>& p : water)
    {
        ASSERT_LT(std::fabs(p->GetPosition().x), halfWidth);
        ASSERT_GT(p->GetPosition().y, 0.0f);
    }
    EXPECT_NEAR(MeanHeight(water), level, 0.002);
    // Near zero: a root-mean-square speed below a centimetre per second.
    EXPECT_LT(KineticEnergy(water), 0.5 * 240 * water[0]->GetMass() * 1e-4);
    EXPECT_GT(Water().GetReportedValue("AVG_neighCount"), 4.0f);
    EXPECT_GT(Water().GetReportedValue("AVG_pressure"), 0.0f);
}

TEST_F(WaterTest, Boxes_FloatSinkOrPassThrough)
{
    const std::vector<util::SharedPtr<Particle>> water = testing::BuildWaterTank(480, 8);
    RunSeconds(2.0f);
    float surface = 0.0f;
    for (const util::SharedPtr<Particle>& p : water)
        surface = std::max(surface, p->GetPosition().y);

    const float size = 0.5f;
    auto drop = [&](float x, float density, bool collideWater)
    {
        util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(size, size), math::Vec2(x, surface + size));
        box->SetDensity(density);
        box->SetWaterCollide(collideWater);
        return testing::AddDynamic(box);
    };
    util::SharedPtr<Body> light = drop(-1.5f, 0.5f, true);
    util::SharedPtr<Body> heavy = drop(0.0f, 5.0f, true);
    util::SharedPtr<Body> ghost = drop(1.5f, 0.5f, false);
    RunSeconds(5.0f);

    // The light box rides on the surface, partly under it; the heavy one lies on the bottom under the
    // water; the one that ignores water lies on the floor.
    EXPECT_GT(light->GetPosition().y, surface - size / 2.0f);
    EXPECT_LT(light->GetPosition().y, surface + size / 2.0f);
    EXPECT_LT(heavy->GetPosition().y, size);
    EXPECT_NEAR(ghost->GetPosition().y, size / 2.0f, 0.01f);
    EXPECT_EQ(Sim().GetParticles().size(), water.size());
}

TEST_F(WaterTest, Water_IgnoresCollideSetsButNotCollideWater)
{
    util::SharedPtr<Box> floor = QLEX_NEW new Box(math::Vec2(4.0f, 1.0f), math::Vec2(0.0f, -0.5f));
    floor->SetCollideSet(0);
    testing::AddStatic(floor);
    util::SharedPtr<Particle> p = AddParticle(math::Vec2(0.0f, 0.3f));
    RunSeconds(1.0f);
    // It rests within the contact distance above the floor.
    EXPECT_GT(p->GetPosition().y, 0.0f);
    EXPECT_LT(p->GetPosition().y, 0.1f * Water().m_radius);
    bool found = false;
    for (const util::SharedPtr<Contact>& c : Sim().GetContacts())
        found |= c->GetBody(1) == p.get();
    EXPECT_TRUE(found);

    floor->SetWaterCollide(false);
    RunSeconds(0.5f);
    EXPECT_LT(p->GetPosition().y, -0.5f);
}

TEST_F(WaterTest, Jitter_PushesEachParticleByANormalForcePerUnitOfMass)
{
    // Lone particles, so that only the jitter acts on them.
    const int count = 400;
    for (int i = 0; i < count; ++i)
        AddParticle(math::Vec2(static_cast<float>(i), 0.0f));
    UpdateWater();
    for (const util::SharedPtr<Particle>& p : Sim().GetParticles())
        ASSERT_EQ(p->GetForce(), math::Vec2(0.0f, 0.0f));

    Water().m_jitter = 2.0f;
    UpdateWater();
    const float mass = Sim().GetParticles().front()->GetMass();
    double size = 0.0;
    math::Vec2 sum(0.0f, 0.0f);
    for (const util::SharedPtr<Particle>& p : Sim().GetParticles())
    {
        const math::Vec2 f = p->GetForce() / (2.0f * mass);
        size += f.Length();
        sum += f;
    }
    // Two standard normal components: the mean length is sqrt(pi / 2); the directions cancel.
    EXPECT_NEAR(size / count, std::sqrt(math::PI / 2.0), 0.2);
    EXPECT_LT(sum.Length() / count, 0.3f);
}

} // namespace physics
