#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/CollisionDetection.h"
#include "physics/Contact.h"
#include "physics/Particle.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"

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

// What holds for every contact of every pair: a unit normal pointing from shape A's body towards shape B's,
// and a positive depth.
void ExpectPointsFromAToB(const Contact& contact)
{
    EXPECT_NEAR(contact.GetNormal().Length(), 1.0f, 1e-4f);
    EXPECT_GT(contact.GetDepth(), 0.0f);
    const math::Vec2 ab = contact.GetBody(1)->GetPosition() - contact.GetBody(0)->GetPosition();
    EXPECT_GT(math::Dot(contact.GetNormal(), ab), 0.0f) << "sub " << contact.GetID().sub;
}

util::SharedPtr<Body> Place(const util::SharedPtr<Body>& body, const math::Vec2& position, float angle = 0.0f)
{
    body->SetPosition(position);
    body->SetAngle(angle);
    body->ApplyPoseChange();
    return body;
}
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

TEST_F(WorldTest, Collision_PolygonOnAPlaneGivesItsVerticesBelow)
{
    testing::AddGround();
    // A 2 by 1 polygon box sunk 0.01 into the ground and tilted a little: only its bottom side's five points
    // (corner, 1/32, 1/2, 31/32, corner) are below, each at its own depth.
    util::SharedPtr<Polygon> polygon = Polygon::CreateBox(math::Vec2(-1.0f, -0.5f), math::Vec2(1.0f, 0.5f));
    util::SharedPtr<Body> body = Place(testing::AddDynamic(polygon), math::Vec2(0.0f, 0.49f), 0.002f);
    Contacts contacts;
    ASSERT_EQ(contacts.size(), 5u);
    const std::vector<math::Vec2>& vertices = polygon->GetWorldVertices();
    for (size_t i = 0; i < contacts.size(); ++i)
    {
        const Contact& c = contacts[i];
        ASSERT_LT(c.GetID().sub, vertices.size());
        const math::Vec2& v = vertices[c.GetID().sub];
        EXPECT_EQ(c.GetPoint(), v);
        EXPECT_FLOAT_EQ(c.GetDepth(), -v.y);
        EXPECT_EQ(c.GetNormal(), math::Vec2(0.0f, 1.0f));
        EXPECT_EQ(c.GetBody(1), body.get());
    }
    // The same vertices give the same ids from step to step.
    const std::vector<std::uint32_t> ids = contacts.SubIds();
    Place(body, math::Vec2(0.2f, 0.495f), 0.002f);
    EXPECT_EQ(Contacts().SubIds(), ids);
    // Lifted clear of the ground: nothing.
    Place(body, math::Vec2(0.0f, 0.51f));
    EXPECT_EQ(Contacts().size(), 0u);
}

TEST_F(WorldTest, Collision_PolygonAgainstEveryOtherShape)
{
    // A polygon square of side 2 at the origin; each other shape overlaps it from one side.
    util::SharedPtr<Polygon> square = Polygon::CreateBox(math::Vec2(-1.0f, -1.0f), math::Vec2(1.0f, 1.0f));
    testing::AddDynamic(square);
    const std::uint32_t n = static_cast<std::uint32_t>(square->GetWorldVertices().size());
    ASSERT_EQ(n, 16u);

    // A box over its right side, 0.1 deep and narrower than the side: the polygon's points inside the box
    // come first (box to polygon, ids 1..n), then the box's corners inside the polygon (polygon to box,
    // ids n+1..n+4).
    util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(1.4f, 0.2f));
    util::SharedPtr<Body> boxBody = testing::AddDynamic(box);
    {
        Contacts contacts;
        ASSERT_GE(contacts.size(), 3u);
        int corners = 0;
        for (size_t i = 0; i < contacts.size(); ++i)
        {
            const Contact& c = contacts[i];
            ExpectPointsFromAToB(c);
            EXPECT_NEAR(c.GetDepth(), 0.1f, 0.01f);
            EXPECT_NEAR(std::fabs(c.GetNormal().x), 1.0f, 0.02f);
            EXPECT_GE(c.GetID().sub, 1u);
            EXPECT_LE(c.GetID().sub, n + 4);
            if (c.GetID().sub > n)
            {
                ++corners;
                EXPECT_EQ(c.GetBody(1), boxBody.get());
                EXPECT_NEAR(c.GetPoint().x, 0.9f, 1e-5f);
            }
            else
            {
                EXPECT_EQ(c.GetPoint(), square->GetWorldVertices()[c.GetID().sub - 1]);
            }
        }
        // The box's two left corners lie inside the polygon.
        EXPECT_EQ(corners, 2);
    }
    Place(boxBody, math::Vec2(1.6f, 0.2f));
    EXPECT_EQ(Contacts().size(), 0u);
    Sim().RemoveBody(boxBody);

    // A circle over the middle of the top side, 0.05 deep: the one edge contact, numbered by its edge from 1.
    util::SharedPtr<Body> circle = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(-0.3f, 1.25f), 0.3f));
    {
        Contacts contacts;
        ASSERT_EQ(contacts.size(), 1u);
        const Contact& c = contacts[0];
        ExpectPointsFromAToB(c);
        EXPECT_EQ(c.GetBody(0), circle.get());
        EXPECT_NEAR(c.GetDepth(), 0.05f, 1e-5f);
        EXPECT_NEAR(c.GetPoint().x, -0.3f, 1e-5f);
        EXPECT_NEAR(c.GetPoint().y, 1.0f, 1e-5f);
        // The top side runs from (1, 1) to (-1, 1) in four edges: -0.3 lies on the third of them, edge 10.
        const Linesegment& edge = square->GetWorldLines()[c.GetID().sub - 1];
        EXPECT_NEAR(edge.Distance(c.GetPoint()), 0.0f, 1e-5f);
        EXPECT_LE(c.GetID().sub, n);
    }
    Sim().RemoveBody(circle);

    // Another polygon, tilted, with one corner pushed 0.1 into the left side.
    util::SharedPtr<Polygon> other = Polygon::CreateBox(math::Vec2(-0.5f, -0.5f), math::Vec2(0.5f, 0.5f));
    const float half = 0.5f * std::sqrt(2.0f);
    util::SharedPtr<Body> otherBody =
        Place(testing::AddDynamic(other), math::Vec2(-1.0f - half + 0.1f, 0.0f), math::PIf / 4.0f);
    {
        Contacts contacts;
        ASSERT_GE(contacts.size(), 1u);
        float deepest = 0.0f;
        for (size_t i = 0; i < contacts.size(); ++i)
        {
            const Contact& c = contacts[i];
            ExpectPointsFromAToB(c);
            // Vertices of the first polygon (the square, added first) count from 1, then those of the other,
            // which meet the square's field and are pushed out through its left side.
            if (c.GetID().sub > n)
            {
                EXPECT_EQ(c.GetPoint(), other->GetWorldVertices()[c.GetID().sub - n - 1]);
                EXPECT_EQ(c.GetBody(1), otherBody.get());
                EXPECT_NEAR(c.GetNormal().x, -1.0f, 0.02f);
                EXPECT_NEAR(c.GetDepth(), c.GetPoint().x + 1.0f, 0.01f);
                deepest = std::max(deepest, c.GetDepth());
            }
        }
        EXPECT_NEAR(deepest, 0.1f, 0.01f);
    }
    Sim().RemoveBody(otherBody);

    // The ground plane just under it.
    testing::AddGround(-0.98f);
    {
        Contacts contacts;
        ASSERT_EQ(contacts.size(), 5u);
        for (size_t i = 0; i < contacts.size(); ++i)
            EXPECT_NEAR(contacts[i].GetDepth(), 0.02f, 1e-5f);
    }
}

TEST_F(WorldTest, Collision_WaterMeetsAPolygonWithinATenthOfItsRadius)
{
    util::SharedPtr<Polygon> square = Polygon::CreateBox(math::Vec2(-1.0f, -1.0f), math::Vec2(1.0f, 1.0f));
    testing::AddDynamic(square);
    const float reach = 0.1f * SPH::GetInstancePtr()->m_radius;
    // One particle above the top side within reach, one beyond it.
    Sim().AddParticle(QLEX_NEW new Particle(math::Vec2(0.1f, 1.0f + 0.5f * reach), math::Vec2(0.0f, 0.0f)));
    Sim().AddParticle(QLEX_NEW new Particle(math::Vec2(-0.1f, 1.0f + 2.0f * reach), math::Vec2(0.0f, 0.0f)));
    {
        Contacts contacts;
        ASSERT_EQ(contacts.size(), 1u);
        const Contact& c = contacts[0];
        EXPECT_EQ(c.GetID().sub, 0u);
        EXPECT_NEAR(c.GetDepth(), 0.5f * reach, 0.2f * reach);
        EXPECT_NEAR(c.GetNormal().y, 1.0f, 0.02f);
        EXPECT_EQ(c.GetBody(1), Sim().GetParticles()[0].get());
    }
    // Collide sets don't part water and shapes; only collideWater does.
    square->SetCollideSet(0);
    EXPECT_EQ(Contacts().size(), 1u);
    square->SetWaterCollide(false);
    EXPECT_EQ(Contacts().size(), 0u);
}

TEST_F(WorldTest, Collision_PolygonRestsOnTheGroundAtItsHeight)
{
    testing::AddGround();
    util::SharedPtr<Body> body =
        testing::AddDynamic(Polygon::CreateBox(math::Vec2(-1.0f, 0.2f), math::Vec2(1.0f, 1.2f)));
    RunSeconds(3.0f);
    EXPECT_NEAR(body->GetPosition().y, 0.5f, 0.01f);
    EXPECT_NEAR(body->GetPosition().x, 0.0f, 0.01f);
    EXPECT_NEAR(body->GetAngle(), 0.0f, 0.01f);
    EXPECT_LT(body->GetVelocity().Length(), 0.02f);

    // A polygon on that polygon stays on it too.
    util::SharedPtr<Body> top =
        testing::AddDynamic(Polygon::CreateBox(math::Vec2(-0.4f, 1.05f), math::Vec2(0.4f, 1.45f)));
    RunSeconds(3.0f);
    EXPECT_NEAR(top->GetPosition().y, 1.2f, 0.02f);
    EXPECT_NEAR(top->GetAngle(), 0.0f, 0.01f);
    EXPECT_LT(top->GetVelocity().Length(), 0.02f);
}

TEST_F(WorldTest, Collision_PolygonAndBoxRestOnEachOther)
{
    // A fixed box as a table, a polygon on it, and a box on the polygon: every pair meets through points of
    // one shape in the other.
    testing::AddStatic(QLEX_NEW new Box(math::Vec2(4.0f, 1.0f), math::Vec2(0.0f, -0.5f)));
    util::SharedPtr<Body> middle =
        testing::AddDynamic(Polygon::CreateBox(math::Vec2(-1.0f, 0.05f), math::Vec2(1.0f, 1.05f)));
    util::SharedPtr<Body> top =
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(0.6f, 0.6f), math::Vec2(0.2f, 1.4f)));
    RunSeconds(3.0f);
    EXPECT_NEAR(middle->GetPosition().y, 0.5f, 0.01f);
    EXPECT_NEAR(middle->GetAngle(), 0.0f, 0.01f);
    EXPECT_NEAR(top->GetPosition().y, 1.3f, 0.02f);
    EXPECT_NEAR(top->GetPosition().x, 0.2f, 0.02f);
    EXPECT_NEAR(top->GetAngle(), 0.0f, 0.01f);
    EXPECT_LT(middle->GetVelocity().Length() + top->GetVelocity().Length(), 0.03f);
}

TEST_F(WorldTest, Collision_ConcavePolygonCatchesACircleInItsNotch)
{
    // A fixed U whose notch is 1 wide between x = 1 and 2, its floor at y = 1.
    const std::vector<math::Vec2> u = {math::Vec2(0.0f, 0.0f), math::Vec2(3.0f, 0.0f), math::Vec2(3.0f, 3.0f),
                                       math::Vec2(2.0f, 3.0f), math::Vec2(2.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                       math::Vec2(1.0f, 3.0f), math::Vec2(0.0f, 3.0f)};
    testing::AddStatic(QLEX_NEW new Polygon(AssertMaxDist(u, 0.1f)));
    // Dropped off-centre, it falls in, knocks against the walls and settles on the notch's floor.
    util::SharedPtr<Body> ball = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(1.6f, 4.0f), 0.3f));
    RunSeconds(4.0f);
    EXPECT_NEAR(ball->GetPosition().y, 1.3f, 0.02f);
    EXPECT_GT(ball->GetPosition().x, 1.3f - 0.02f);
    EXPECT_LT(ball->GetPosition().x, 1.7f + 0.02f);
    EXPECT_LT(ball->GetVelocity().Length(), 0.05f);
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

namespace physics
{
TEST_F(WorldTest, Collision_BoxWithANonFinitePoseMakesNoContact)
{
    for (float angle : {std::numeric_limits<float>::quiet_NaN(), math::INF})
    {
        testing::ResetWorld();
        // A body wraps a non-finite angle to 0, but a shape's own pose takes what it is given.
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.5f)));
        util::SharedPtr<Box> odd = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f));
        odd->SetWorldPose(math::Mat2D::TranslationRotation(math::Vec2(0.0f, 1.0f), angle));
        testing::AddDynamic(odd);
        EXPECT_EQ(Contacts().size(), 0u) << angle;
        EXPECT_FALSE(Logged("Collision detection reported bad contact")) << angle;
    }
}

TEST_F(WorldTest, Collision_ContactsOfAStepAreCappedWithOneWarning)
{
    // Boxes heaped on one spot: every pair overlaps, two contacts each, far more than the cap.
    for (int i = 0; i < 700; ++i)
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 1.0f)));
    Collider collider;
    collider.AssignBodies(Sim().GetBodies(), Sim().GetParticles());
    for (int step = 0; step < 2; ++step)
    {
        util::VectorPOD<Contact*> contacts;
        collider.Collide(contacts);
        EXPECT_EQ(contacts.size(), 200000u);
    }
    const size_t warnings = std::count_if(m_log.begin(), m_log.end(),
                                          [](const std::string& line)
                                          { return line.find("Too many contacts") != std::string::npos; });
    EXPECT_EQ(warnings, 1u);
}
} // namespace physics
