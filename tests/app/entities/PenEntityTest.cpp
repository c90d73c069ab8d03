#include "EntityTestWorld.h"

#include "app/EntitySerializer.h"
#include "app/entities/PenEntity.h"

namespace
{
using PenEntityTest = entitytest::World;

const float PEN_SIZE = 0.1f;

util::SharedPtr<app::PenEntity> PenOn(const app::GeomPtr& geom, math::Vec2 local)
{
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(PEN_SIZE);
    pen->AttachTo(geom, local);
    app::Scene::GetInstancePtr()->AddEntity(pen);
    return pen;
}

TEST_F(PenEntityTest, TrailGrowsByOnePointPerStepWhileRunningAndNotWhileFrozen)
{
    util::SharedPtr<app::CircleEntity> ball = AddCircle(0.2f, math::Vec2(0, 10));
    ball->GetBody()->SetVelocity(math::Vec2(3, 0));
    util::SharedPtr<app::PenEntity> pen = PenOn(ball->GetGeom(), math::Vec2(0, 0));
    EXPECT_TRUE(pen->GetTail().empty());

    for (int i = 1; i <= 30; ++i)
    {
        Sim().Step(true);
        EXPECT_EQ(pen->GetTail().size(), size_t(i));
    }
    // The scene's frames add nothing: only steps do.
    for (int i = 0; i < 5; ++i)
        TheScene().Update(0.016f);
    EXPECT_EQ(pen->GetTail().size(), 30u);

    for (int i = 0; i < 10; ++i)
        Sim().Step(false);
    EXPECT_EQ(pen->GetTail().size(), 30u);
    EXPECT_EQ(pen->GetTail().back().position, pen->GetPos());

    // Normals are unit vectors across the path, here a falling arc going right.
    const app::PenEntity::TailElem& e = pen->GetTail()[10];
    EXPECT_NEAR(e.normal.Length(), 1.0f, 1e-5f);
    EXPECT_GT(e.normal.y, 0.0f);
}

TEST_F(PenEntityTest, PenOnABodyAtRestAddsNothingAfterTheFirstPoint)
{
    AddFloor(0);
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0.5f));
    box->GetGeom()->GetBodyBody()->SetHeld(true);
    util::SharedPtr<app::PenEntity> pen = PenOn(box->GetGeom(), math::Vec2(0.2f, 0.2f));
    for (int i = 0; i < 20; ++i)
        Sim().Step(true);
    EXPECT_EQ(pen->GetTail().size(), 1u);
    EXPECT_EQ(pen->GetTail().front().position, math::Vec2(0.2f, 0.7f));
}

TEST_F(PenEntityTest, SlowMotionReplacesTheHeadInsteadOfGrowingTheTail)
{
    util::SharedPtr<app::CircleEntity> ball = AddCircle(0.2f, math::Vec2(0, 10));
    Sim().m_gravitySwitch = false;
    Sim().m_airSwitch = false;
    util::SharedPtr<app::PenEntity> pen = PenOn(ball->GetGeom(), math::Vec2(0, 0));
    ball->GetBody()->SetVelocity(math::Vec2(0.01f, 0));
    for (int i = 0; i < 40; ++i)
        Sim().Step(true);
    // 0.4 mm a step against a minimum gap of 1 cm: the tail holds the start and the head.
    EXPECT_LE(pen->GetTail().size(), 3u);
    EXPECT_EQ(pen->GetTail().back().position, pen->GetPos());
}

TEST_F(PenEntityTest, PenDiesWithItsBodyAndIsErasedOnlyByAStrokeThrough)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::PenEntity> pen = PenOn(box->GetGeom(), math::Vec2(0.1f, 0));
    EXPECT_TRUE(pen->IsAlive());
    EXPECT_TRUE(pen->IsOnEntity(math::Vec2(0.12f, 0.01f)));
    EXPECT_TRUE(pen->ErasedBy({physics::Linesegment(math::Vec2(-1, 0), math::Vec2(1, 0))}));
    EXPECT_FALSE(pen->ErasedBy({physics::Linesegment(math::Vec2(-1, 0), math::Vec2(0.1f, 0))}));

    TheScene().RemoveEntity(box);
    EXPECT_FALSE(pen->IsAlive());
    TheScene().Update(0);
    EXPECT_FALSE(TheScene().HasEntity(pen));
}

TEST_F(PenEntityTest, MovedPenStaysOnItsShapeOrLandsOnWhatIsUnderIt)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::PenEntity> pen = PenOn(box->GetGeom(), math::Vec2(0, 0));
    pen->StartTransform();
    pen->Transform(math::Mat2D::Translation(math::Vec2(0.3f, 0)));
    pen->EndTransform();
    EXPECT_EQ(pen->m_geom, box->GetGeom());
    EXPECT_NEAR(pen->GetPos().x, 0.3f, 1e-6f);

    pen->StartTransform();
    pen->Transform(math::Mat2D::Translation(math::Vec2(5, 0)));
    pen->EndTransform();
    EXPECT_EQ(pen->m_geom, app::GeomPtr(Sim().GetWorldGeom()));
}

TEST_F(PenEntityTest, RecordOfNoSizeKeepsThePensSize)
{
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(PEN_SIZE);
    app::EntitySerializer record;
    record.Set("size", -2.0f);
    pen->Deserialize(record);
    EXPECT_FLOAT_EQ(pen->m_size, PEN_SIZE);
    record.Set("size", 0.25f);
    pen->Deserialize(record);
    EXPECT_FLOAT_EQ(pen->m_size, 0.25f);
}
} // namespace
