#include "app/entities/Entity.h"
#include "app/Chain.h"
#include "app/EntitySerializer.h"
#include "app/Scene.h"
#include "physics/Polygon.h"

#include <limits>

#include <gtest/gtest.h>

namespace
{
// The least entity there is: everything geometric is empty.
class BareEntity : public app::Entity
{
public:
    void Draw() const override {}
    bool IsOnEntity(math::Vec2) const override { return false; }
    bool ErasedBy(const std::vector<physics::Linesegment>&) const override { return false; }
    bool IsContainedBy(const physics::Polygon&) const override { return false; }
    void AddToSimulation() override {}
    void RemoveFromSimulation() override {}
    void Transform(const math::TMat2D<float>&) override {}
    math::BoundingBox2 GetAABB() const override { return math::BoundingBox2(m_min, m_max); }
    void GetBoundPoints(std::vector<math::Vec2>&) override {}

    math::Vec2 m_min{0, 0};
    math::Vec2 m_max{1, 1};
};

TEST(Entity, ColorIsKeptWithThreeDecimals)
{
    util::SharedPtr<BareEntity> e = QLEX_NEW new BareEntity();
    e->SetColor(math::Vec4(0.12345f, 0.5f, 1.0f, 0.99961f));
    EXPECT_FLOAT_EQ(e->GetColor().x, 0.123f);
    EXPECT_FLOAT_EQ(e->GetColor().y, 0.5f);
    EXPECT_FLOAT_EQ(e->GetColor().z, 1.0f);
    EXPECT_FLOAT_EQ(e->GetColor().w, 1.0f);
    EXPECT_FLOAT_EQ(app::LimitPrecision(-0.0004f), 0.0f);

    // A hand-made file may hold anything; what is kept stays a colour that can be written back.
    e->SetColor(math::Vec4(std::numeric_limits<float>::quiet_NaN(), 2.0f, -1.0f, math::INF));
    EXPECT_EQ(e->GetColor(), math::Vec4(0.0f, 1.0f, 0.0f, 1.0f));
}

TEST(Entity, NewEntitiesHaveDistinctIdsAndVisibleColors)
{
    util::SharedPtr<BareEntity> a = QLEX_NEW new BareEntity();
    util::SharedPtr<BareEntity> b = QLEX_NEW new BareEntity();
    EXPECT_EQ(b->GetID(), a->GetID() + 1);
    EXPECT_EQ(a->GetColor().w, 1.0f);
    EXPECT_GT(a->GetColor().x + a->GetColor().y + a->GetColor().z, 0.0f);
}

TEST(Entity, CopyFromTakesColorDepthAndKeysButNotIdOrChain)
{
    util::SharedPtr<BareEntity> source = QLEX_NEW new BareEntity();
    source->SetColor(math::Vec4(0.25f, 0.5f, 0.75f, 1));
    source->m_zDepth = 7;
    source->m_buttonDestroy.Assign(SDLK_d);
    source->m_buttonMirror.Deserialize("toggle left_ctrl m");
    util::SharedPtr<app::Chain> chain = QLEX_NEW new app::Chain();
    chain->AddEntity(source);

    util::SharedPtr<BareEntity> copy = QLEX_NEW new BareEntity();
    copy->CopyFrom(source.get());
    EXPECT_EQ(copy->GetColor(), source->GetColor());
    EXPECT_EQ(copy->m_zDepth, 7.0f);
    EXPECT_TRUE(copy->m_buttonDestroy == source->m_buttonDestroy);
    EXPECT_TRUE(copy->m_buttonMirror == source->m_buttonMirror);
    EXPECT_TRUE(copy->m_buttonMirror.GetToggle());
    EXPECT_NE(copy->GetID(), source->GetID());
    EXPECT_FALSE(copy->GetChain());
    EXPECT_EQ(source->GetChain(), chain);
}

TEST(Entity, RecordHoldsTheBaseKeys)
{
    util::SharedPtr<BareEntity> e = QLEX_NEW new BareEntity();
    e->SetColor(math::Vec4(0.1f, 0.2f, 0.3f, 0.4f));
    e->m_zDepth = 3;
    util::SharedPtr<app::Chain> chain = QLEX_NEW new app::Chain();
    util::SharedPtr<BareEntity> first = QLEX_NEW new BareEntity();
    chain->AddEntity(first);
    chain->AddEntity(e);
    app::EntitySerializer record;
    e->SerializeTo(record);
    EXPECT_EQ(record.Get<math::Vec4>("color"), e->GetColor());
    EXPECT_EQ(record.Get<unsigned long>("entityID"), e->GetID());
    EXPECT_EQ(record.Get<float>("zDepth"), 3.0f);
    EXPECT_EQ(record.Get<int>("chainNr"), 1);
    EXPECT_FALSE(record.Has("buttonDestroy"));

    util::SharedPtr<BareEntity> read = QLEX_NEW new BareEntity();
    read->Deserialize(record);
    EXPECT_EQ(read->GetColor(), e->GetColor());
    EXPECT_EQ(read->m_zDepth, 3.0f);
    EXPECT_NE(read->GetID(), e->GetID());
}

TEST(Entity, IsInViewComparesTheBoxWithTheView)
{
    util::SharedPtr<BareEntity> e = QLEX_NEW new BareEntity();
    EXPECT_TRUE(e->IsInView(math::BoundingBox2(math::Vec2(0.5f, 0.5f), math::Vec2(3, 3))));
    EXPECT_FALSE(e->IsInView(math::BoundingBox2(math::Vec2(2, 2), math::Vec2(3, 3))));
}

TEST(Entity, DestroyKeyRemovesEveryEntityBoundToTheSameCombination)
{
    app::Scene& scene = *app::Scene::GetInstancePtr();
    scene.ClearScene();
    std::vector<util::SharedPtr<BareEntity>> bound;
    for (int i = 0; i < 3; ++i)
    {
        bound.push_back(QLEX_NEW new BareEntity());
        bound.back()->m_buttonDestroy.Deserialize("left_ctrl x");
        scene.AddEntity(bound.back());
    }
    util::SharedPtr<BareEntity> other = QLEX_NEW new BareEntity();
    other->m_buttonDestroy.Assign(SDLK_x);
    scene.AddEntity(other);

    bound[1]->m_buttonDestroy.SetOn(true);
    for (const util::SharedPtr<BareEntity>& e : bound)
        EXPECT_FALSE(scene.HasEntity(e));
    EXPECT_TRUE(scene.HasEntity(other));

    // For an entity the scene has dropped, the key does nothing.
    util::SharedPtr<BareEntity> dropped = QLEX_NEW new BareEntity();
    dropped->m_buttonDestroy.Assign(SDLK_x);
    dropped->m_buttonDestroy.SetOn(true);
    EXPECT_TRUE(scene.HasEntity(other));
    scene.ClearScene();
}
} // namespace
