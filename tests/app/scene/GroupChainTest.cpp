#include "SceneTestSupport.h"

#include "app/Chain.h"
#include "app/Group.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PlaneEntity.h"

namespace
{
using scenetest::SceneTest;

struct ChangeCounter : util::Pointee
{
    int count = 0;
    void Count() { ++count; }
};

app::EntityPtr AddBox(SceneTest& test, const std::string& keys)
{
    (void)test;
    script::ObjectPtr object = script::Parser::GetInstancePtr()->Execute("Scene.addBox {" + keys + "}");
    return util::dynamic_pointer_cast<app::Entity>(object);
}

TEST_F(SceneTest, Group_CallbacksRunOnAddEvenAgainButNotOnRemovingAStranger)
{
    app::EntityPtr a = AddBox(*this, "pos = [0, 0]");
    app::EntityPtr b = AddBox(*this, "pos = [3, 0]");
    ASSERT_TRUE(a && b);
    app::GroupPtr group = QLEX_NEW new app::Group("g");
    util::SharedPtr<ChangeCounter> counter = QLEX_NEW new ChangeCounter();
    group->AddOnChangeCallback(util::MakeCallback(&ChangeCounter::Count, counter.get()));
    group->Add(a);
    group->Add(a);
    EXPECT_EQ(counter->count, 2);
    EXPECT_EQ(group->Size(), 1u);
    EXPECT_FALSE(group->Remove(b));
    EXPECT_EQ(counter->count, 2);
    EXPECT_TRUE(group->Remove(a));
    EXPECT_EQ(counter->count, 3);

    group->Add(a);
    EXPECT_TRUE(app::Group::XOR(group, group)->IsEmpty());
    app::GroupPtr other = QLEX_NEW new app::Group(b);
    app::GroupPtr both = app::Group::XOR(group, other);
    EXPECT_EQ(both->Size(), 2u);
    EXPECT_EQ(both->GetDescriptiveName(), "2 Boxes");
    EXPECT_EQ(group->GetDescriptiveName(), "Box");
}

TEST_F(SceneTest, Group_CenterOfPlaneIsTheMouseAndOfPlaneAndBoxTheBox)
{
    Run("Scene.addPlane {pos = [0, -3]; angle = 1.57079637}");
    app::EntityPtr box = AddBox(*this, "pos = [2, 1]");
    app::GroupPtr planes = QLEX_NEW new app::Group(scene->GetEntities().front());
    EXPECT_EQ(planes->CalcCenterByWeight(), scene->GetMousePos());
    app::GroupPtr mixed = QLEX_NEW new app::Group(scene->GetEntities().front());
    mixed->Add(box);
    const math::Vec2 center = mixed->CalcCenterByWeight();
    EXPECT_NEAR(center.x, 2.0f, 1e-5f);
    EXPECT_NEAR(center.y, 1.0f, 1e-5f);
}

TEST_F(SceneTest, Group_HangingOnOneHingeTurnsAroundItAndOnTwoJointsHasNoNaturalCentre)
{
    app::EntityPtr box = AddBox(*this, "pos = [0, 0]; size = [4, 0.5]");
    Run("Scene.addHinge {pos = [1.5, 0]}");
    app::GroupPtr group = QLEX_NEW new app::Group(box);
    std::optional<math::Vec2> center = group->CalcScaleCenter();
    ASSERT_TRUE(center);
    EXPECT_NEAR(center->x, 1.5f, 1e-5f);
    Run("Scene.addHinge {pos = [-1.5, 0]}");
    EXPECT_FALSE(group->CalcScaleCenter());
    EXPECT_NEAR(group->CalcRotationCenter().x, 0.0f, 1e-5f);
}

TEST_F(SceneTest, Group_GlueToBackgroundPutsShapesOnTheWorldBody)
{
    app::EntityPtr box = AddBox(*this, "pos = [0, 3]");
    app::GroupPtr group = QLEX_NEW new app::Group(box);
    EXPECT_TRUE(group->GlueToBackground());
    EXPECT_FALSE(group->GlueToBackground());
    Step(20);
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0]->GetBody(), physics::Simulation::GetInstancePtr()->GetWorldBody());
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().y, 3.0f, 1e-6f);
}

TEST_F(SceneTest, Chain_SlotsGrowToTheIndexAndNeighborsStopAtTheEnds)
{
    app::ChainPtr chain = QLEX_NEW new app::Chain();
    app::EntityPtr single = AddBox(*this, "pos = [0, 10]");
    chain->AddEntity(5, single);
    EXPECT_EQ(chain->GetSlotCount(), 6u);
    EXPECT_EQ(chain->GetEntities().size(), 1u);
    EXPECT_EQ(chain->IndexOf(single.get()), 5);
    EXPECT_EQ(single->m_chain, chain);

    app::ChainPtr six = QLEX_NEW new app::Chain();
    std::vector<app::EntityPtr> links;
    for (int i = 0; i < 6; ++i)
    {
        links.push_back(AddBox(*this, "pos = [" + std::to_string(i) + ", 0]"));
        six->AddEntity(links.back());
    }
    std::vector<app::EntityPtr> second = six->GetNeighbors(links[1], false);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0], links[0]);
    std::vector<app::EntityPtr> third = six->GetNeighbors(links[2], false);
    EXPECT_EQ(third.size(), 3u);
    for (int i : {1, 3, 4})
        EXPECT_NE(std::find(third.begin(), third.end(), links[i]), third.end());
    EXPECT_TRUE(six->GetNeighbors(links[0], false).empty());

    // A link the scene dropped stops the walk.
    scene->RemoveEntity(links[3]);
    EXPECT_EQ(six->GetNeighbors(links[2], false).size(), 1u);

    six->Detach();
    chain->Detach();
    EXPECT_FALSE(links[0]->m_chain);
    const std::string text = Save();
    EXPECT_EQ(text.find("chainNr"), std::string::npos);
}

TEST_F(SceneTest, Chain_SavedChainIsRebuiltInOrder)
{
    Run("Scene.addBox {pos = [0, 0]; chain = 9; chainNr = 1}; Scene.addBox {pos = [2, 0]; chain = 9; chainNr "
        "= 0}");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 2u);
    ASSERT_TRUE(boxes[0]->m_chain);
    EXPECT_EQ(boxes[0]->m_chain, boxes[1]->m_chain);
    EXPECT_EQ(boxes[0]->m_chain->IndexOf(boxes[0].get()), 1);
    Load(Save());
    boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0]->m_chain, boxes[1]->m_chain);
    EXPECT_EQ(boxes[1]->m_chain->IndexOf(boxes[1].get()), 0);
}

} // namespace
