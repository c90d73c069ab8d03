#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/CollisionDetection.h"
#include "physics/Contact.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
// Runs the collider over the simulation's bodies and particles and owns the contacts it makes.
class Contacts
{
public:
    Contacts()
    {
        Simulation& sim = *Simulation::GetInstancePtr();
        Collider collider;
        collider.AssignBodies(sim.GetBodies(), sim.GetParticles());
        util::VectorPOD<Contact*> raw;
        collider.Collide(raw);
        for (Contact* c : raw)
            m_contacts.push_back(util::SharedPtr<Contact>(c));
    }

    size_t size() const { return m_contacts.size(); }
    const Contact& operator[](size_t i) const { return *m_contacts[i]; }
    std::vector<std::uint32_t> SubIds() const
    {
        std::vector<std::uint32_t> ids;
        for (const util::SharedPtr<Contact>& c : m_contacts)
            ids.push_back(c->GetID().sub);
        std::sort(ids.begin(), ids.end());
        return ids;
    }

private:
    std::vector<util::SharedPtr<Contact>> m_contacts;
};
} // namespace

TEST_F(WorldTest, Collision_CirclesTouchingExactlyDoNotCollide)
{
    testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 1.0f));
    util::SharedPtr<Body> b = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(2.0f, 0.0f), 1.0f));
    EXPECT_EQ(Contacts().size(), 0u);

    b->SetPosition(math::Vec2(1.5f, 0.0f));
    b->ApplyPoseChange();
    Contacts contacts;
    ASSERT_EQ(contacts.size(), 1u);
    EXPECT_FLOAT_EQ(contacts[0].GetDepth(), 0.5f);
    EXPECT_EQ(contacts[0].GetNormal(), math::Vec2(1.0f, 0.0f));
    EXPECT_FLOAT_EQ(contacts[0].GetPoint().x, 0.75f);
}

TEST_F(WorldTest, Collision_CircleCentredOnAPlane)
{
    testing::AddGround();
    testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(3.0f, 0.0f), 0.5f));
    Contacts contacts;
    ASSERT_EQ(contacts.size(), 1u);
    EXPECT_FLOAT_EQ(contacts[0].GetDepth(), 0.5f);
    EXPECT_EQ(contacts[0].GetPoint(), math::Vec2(3.0f, -0.5f));
    EXPECT_EQ(contacts[0].GetNormal(), math::Vec2(0.0f, 1.0f));
}

TEST_F(WorldTest, Collision_BoxOnPlaneGivesItsLowCornersWithStableIds)
{
    testing::AddGround();
    util::SharedPtr<Body> box =
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(2.0f, 1.0f), math::Vec2(0.0f, 0.49f)));
    const std::vector<std::uint32_t> first = Contacts().SubIds();
    ASSERT_EQ(first.size(), 2u);
    box->SetPosition(math::Vec2(0.3f, 0.48f));
    box->ApplyPoseChange();
    EXPECT_EQ(Contacts().SubIds(), first);
}

TEST_F(WorldTest, Collision_BoxesResting)
{
    // A box resting on a wider one: two contacts along the vertical. The separations tie, so the later box is
    // the reference and the normal points from it down to the lower box.
    util::SharedPtr<Box> lower = QLEX_NEW new Box(math::Vec2(4.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Box> upper = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.5f, 0.99f));
    testing::AddDynamic(lower);
    testing::AddDynamic(upper);
    Contacts contacts;
    ASSERT_EQ(contacts.size(), 2u);
    for (size_t i = 0; i < 2; ++i)
    {
        EXPECT_NEAR(contacts[i].GetNormal().y, -1.0f, 1e-6f);
        EXPECT_NEAR(contacts[i].GetDepth(), 0.01f, 1e-5f);
        EXPECT_NEAR(contacts[i].GetPoint().y, 0.5f, 1e-5f);
        EXPECT_GE(contacts[i].GetPoint().x, -1e-6f);
        EXPECT_LE(contacts[i].GetPoint().x, 1.0f + 1e-6f);
    }
    EXPECT_EQ(Contacts().SubIds(), (std::vector<std::uint32_t>{0, 1}));

    // A box overhanging the edge: the incident edge is clipped to the reference face.
    util::SharedPtr<Body> overhang =
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(1.8f, 0.99f)));
    (void)overhang;
    Contacts more;
    float maxX = -1.0f;
    for (size_t i = 0; i < more.size(); ++i)
        maxX = std::max(maxX, more[i].GetPoint().x);
    EXPECT_NEAR(maxX, 2.0f, 1e-5f);
}

TEST_F(WorldTest, Collision_IdenticalBoxesAtOneCentre)
{
    util::SharedPtr<Box> a = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Box> b = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    Contacts contacts;
    ASSERT_EQ(contacts.size(), 2u);
    // All separations tie: the second box's last axis wins.
    for (size_t i = 0; i < 2; ++i)
        EXPECT_EQ(contacts[i].GetNormal(), math::Vec2(0.0f, 1.0f));
}

TEST_F(WorldTest, Collision_CircleAndPolygon)
{
    util::SharedPtr<Polygon> square = Polygon::CreateBox(math::Vec2(-1.0f, -1.0f), math::Vec2(1.0f, 1.0f));
    testing::AddStatic(square);
    util::SharedPtr<Body> circle = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.2f, 0.1f), 0.3f));
    {
        Contacts inside;
        ASSERT_EQ(inside.size(), 1u);
        EXPECT_EQ(inside[0].GetID().sub, 0xFFFFFFFFu);
    }
    // Near a corner vertex only: a vertex contact, numbered after the edges.
    circle->SetPosition(math::Vec2(1.2f, 1.2f));
    circle->ApplyPoseChange();
    {
        Contacts corner;
        ASSERT_EQ(corner.size(), 1u);
        EXPECT_GT(corner[0].GetID().sub, square->GetWorldLines().size());
        EXPECT_NEAR(corner[0].GetDepth(), 0.3f - std::sqrt(0.08f), 1e-5f);
    }
    // Over the middle of the top edge: an edge contact pushing the circle up.
    circle->SetPosition(math::Vec2(0.1f, 1.2f));
    circle->ApplyPoseChange();
    Contacts edge;
    ASSERT_GE(edge.size(), 1u);
    EXPECT_NEAR(edge[0].GetNormal().y, -1.0f, 1e-5f);
}

TEST_F(WorldTest, Collision_PolygonsTouchThroughVertices)
{
    util::SharedPtr<Polygon> lower = Polygon::CreateBox(math::Vec2(-2.0f, -1.0f), math::Vec2(2.0f, 0.0f));
    util::SharedPtr<Polygon> upper = Polygon::CreateBox(math::Vec2(-0.5f, -0.01f), math::Vec2(0.5f, 0.99f));
    testing::AddDynamic(lower);
    testing::AddDynamic(upper);
    Contacts contacts;
    // The five points of the upper box's bottom side lie inside the lower box, and the middle point of the
    // lower box's top side inside the upper one.
    ASSERT_EQ(contacts.size(), 6u);
    for (size_t i = 0; i < contacts.size(); ++i)
    {
        EXPECT_NEAR(std::fabs(contacts[i].GetNormal().y), 1.0f, 0.02f);
        EXPECT_NEAR(contacts[i].GetDepth(), 0.01f, 0.005f);
    }
}

TEST_F(WorldTest, Collision_Filters)
{
    util::SharedPtr<Circle> a = QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 1.0f);
    util::SharedPtr<Circle> b = QLEX_NEW new Circle(math::Vec2(1.0f, 0.0f), 1.0f);
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    EXPECT_TRUE(ShouldCollide(*a, *b));

    a->SetHeteroCollide(true);
    b->SetHeteroCollide(true);
    EXPECT_FALSE(ShouldCollide(*a, *b));
    b->SetWaterCollide(false);
    EXPECT_TRUE(ShouldCollide(*a, *b));
    b->SetWaterCollide(true);
    a->SetCollideSet(3);
    EXPECT_TRUE(ShouldCollide(*a, *b));
    b->SetCollideSet(4);
    EXPECT_FALSE(ShouldCollide(*a, *b));
    a->SetHeteroCollide(false);
    b->SetHeteroCollide(false);
    b->SetCollideSet(1);

    a->AddNoCollide(b.get());
    EXPECT_FALSE(ShouldCollide(*a, *b));
    a->RemoveNoCollide(b.get());
    EXPECT_EQ(Contacts().size(), 1u);

    // Two shapes of one body never collide, nor do two immovable ones.
    util::SharedPtr<Body> glued = QLEX_NEW new Body();
    Body::GeomSet both;
    both.insert(a);
    both.insert(b);
    glued->SetGeoms(both);
    Sim().AddBody(glued);
    EXPECT_FALSE(ShouldCollide(*a, *b));
    testing::AddStatic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(20.0f, 0.0f)));
    testing::AddGround(0.0f);
    util::SharedPtr<Box> held = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(20.0f, 0.5f));
    util::SharedPtr<Body> heldBody = testing::AddDynamic(held);
    heldBody->SetHeld(true);
    glued->SetHeld(true);
    EXPECT_EQ(Contacts().size(), 0u);
}

TEST_F(WorldTest, Contact_MixAndIds)
{
    EXPECT_FLOAT_EQ(Mix(0.25f, 1.0f), 0.5f);
    EXPECT_EQ(Mix(0.0f, 0.7f), 0.0f);
    EXPECT_FLOAT_EQ(Mix(-1.0f, 1.0f), -1.0f);
    EXPECT_EQ(ContactID(3, 7, 1), ContactID(7, 3, 1));
    EXPECT_EQ(ContactID(3, 7, 1).hash, ContactID(7, 3, 1).hash);
    EXPECT_NE(ContactID(3, 7, 1), ContactID(3, 7, 2));
}

} // namespace physics
