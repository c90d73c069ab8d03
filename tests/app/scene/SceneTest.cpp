#include "SceneTestSupport.h"

#include "app/SceneLoader.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PolyEntity.h"
#include "physics/Particle.h"
#include "util/FileSystem.h"

#include <cstdio>

namespace
{
using scenetest::SceneTest;

app::EntityPtr Add(const std::string& command)
{
    return util::dynamic_pointer_cast<app::Entity>(script::Parser::GetInstancePtr()->Execute(command));
}

TEST_F(SceneTest, Scene_DepthFollowsTheListAndMoveToFrontSwaps)
{
    app::EntityPtr first = Add("Scene.addBox {pos = [0, 0]}");
    app::EntityPtr second = Add("Scene.addBox {pos = [0, 0]}");
    scene->AddEntity(second);
    ASSERT_EQ(scene->GetEntities().size(), 2u);
    EXPECT_EQ(first->m_zDepth, 0.0f);
    EXPECT_EQ(second->m_zDepth, 1.0f);
    EXPECT_EQ(scene->GetEntityAt(math::Vec2(0, 0)), second);

    scene->MoveToFront(QLEX_NEW new app::Group(first));
    EXPECT_EQ(scene->GetEntities().back(), first);
    EXPECT_EQ(first->m_zDepth, 1.0f);
    EXPECT_EQ(second->m_zDepth, 0.0f);
    EXPECT_EQ(scene->GetEntityAt(math::Vec2(0, 0)), first);

    // Equal depths keep the order of insertion.
    second->m_zDepth = 1.0f;
    scene->SortByDepth();
    EXPECT_EQ(scene->GetEntities().back(), first);
}

TEST_F(SceneTest, Scene_EmptyGroupsVanishButNotTheSelection)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [0, 0]}");
    app::GroupPtr named = QLEX_NEW new app::Group("named");
    named->Add(box);
    scene->AddGroup(named);
    scene->Update(0.01f);
    EXPECT_TRUE(scene->GetGroupByName("named"));
    named->Clear();
    scene->Update(0.01f);
    EXPECT_FALSE(scene->GetGroupByName("named"));
    EXPECT_TRUE(scene->GetGroupByName(app::SelectedName));
}

TEST_F(SceneTest, Scene_ClickSelectsAndEmptyClickClears)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [0, 0]}");
    EXPECT_TRUE(scene->SelectAt(math::Vec2(0.1f, 0.1f)));
    EXPECT_TRUE(scene->GetSelection()->Contains(box));
    EXPECT_FALSE(scene->SelectAt(math::Vec2(30, 30)));
    EXPECT_TRUE(scene->GetSelection()->IsEmpty());
}

TEST_F(SceneTest, Scene_CloneWithoutOffsetLiesOnTheOriginalAndKeepsGlue)
{
    Run("Scene.addBox {pos = [0, 0]; body = 4; color = [0.5, 0.5, 0.5, 1]};"
        "Scene.addBox {pos = [1, 0]; body = 4}; Scene.addHinge {pos = [0.5, 0]}");
    app::GroupPtr all = scene->GetAsGroup();
    app::GroupPtr clones = scene->CreateClone(all, math::Vec2(0, 0));
    ASSERT_EQ(clones->Size(), 3u);
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 4u);
    std::vector<util::SharedPtr<app::BoxEntity>> cloned;
    for (const auto& box : boxes)
    {
        if (clones->Contains(box))
            cloned.push_back(box);
    }
    ASSERT_EQ(cloned.size(), 2u);
    EXPECT_EQ(cloned[0]->GetBody(), cloned[1]->GetBody());
    EXPECT_NE(cloned[0]->GetBody(), boxes[0]->GetBody());
    for (const auto& box : cloned)
    {
        bool onOriginal = false;
        for (const auto& original : boxes)
            onOriginal = onOriginal || (!clones->Contains(original) &&
                                        original->GetGeom()->GetPosition() == box->GetGeom()->GetPosition());
        EXPECT_TRUE(onOriginal);
    }
    EXPECT_EQ(All<app::HingeEntity>().size(), 2u);
    // Clones stand above their originals through equal depths keeping insertion order.
    EXPECT_TRUE(clones->Contains(scene->GetEntities().back()));
}

TEST_F(SceneTest, Scene_CloneWithOffsetMovesTheCopies)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [0, 0]}");
    app::GroupPtr clones = scene->CreateClone(QLEX_NEW new app::Group(box), math::Vec2(3, 1));
    auto clone = util::dynamic_pointer_cast<app::BoxEntity>(clones->GetFirst());
    ASSERT_TRUE(clone);
    EXPECT_NEAR(clone->GetGeom()->GetPosition().x, 3.0f, 1e-5f);
    EXPECT_NEAR(clone->GetGeom()->GetPosition().y, 1.0f, 1e-5f);
}

TEST_F(SceneTest, Scene_ScalingARotatedBoxUnevenlyMakesAPolygonAndKeepsGlue)
{
    Run("Scene.addBox {pos = [0, 0]; angle = 0.785398163; body = 2; color = [0.25, 0.5, 0.75, 1]};"
        "Scene.addBox {pos = [2, 0]; body = 2}");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 2u);
    app::GroupPtr group = scene->GetAsGroup();
    scene->ScaleTransform(group, math::Mat3::Scale2D(math::Vec2(2, 1)));
    auto polygons = All<app::PolyEntity>();
    ASSERT_EQ(polygons.size(), 1u);
    EXPECT_EQ(polygons[0]->GetColor(), math::Vec4(0.25f, 0.5f, 0.75f, 1));
    auto remaining = All<app::BoxEntity>();
    ASSERT_EQ(remaining.size(), 1u);
    EXPECT_NEAR(remaining[0]->GetGeom()->GetPosition().x, 4.0f, 1e-4f);
    EXPECT_EQ(remaining[0]->GetBody(), polygons[0]->GetBody());
    EXPECT_TRUE(group->Contains(polygons[0]));
    EXPECT_EQ(group->Size(), 2u);
}

TEST_F(SceneTest, Scene_ScalingToNothingKeepsTheShapes)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [1, 0]; size = [2, 1]}");
    app::EntityPtr circle = Add("Scene.addCircle {pos = [-2, 0]}");
    scene->ScaleTransform(scene->GetAsGroup(), math::Mat3::Scale2D(math::Vec2(0, 1)));
    scene->Update(0.01f);
    EXPECT_TRUE(scene->HasEntity(box));
    EXPECT_TRUE(scene->HasEntity(circle));
    EXPECT_NEAR(box->GetAABB().GetSize().x, 2.0f, 1e-5f);
}

TEST_F(SceneTest, Scene_UnselectedHingeFallsToTheBackgroundWhenItsShapeShrinksAway)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [0, 0]; size = [4, 1]}");
    Run("Scene.addHinge {pos = [1.8, 0]}");
    scene->ScaleTransform(QLEX_NEW new app::Group(box), math::Mat3::Scale2D(math::Vec2(0.25f, 1)));
    auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 1u);
    const util::SharedPtr<physics::Geom> world = physics::Simulation::GetInstancePtr()->GetWorldGeom();
    EXPECT_TRUE(hinges[0]->m_geoms[0] == world || hinges[0]->m_geoms[1] == world);
    EXPECT_TRUE(hinges[0]->m_geoms[0] != hinges[0]->m_geoms[1]);
}

TEST_F(SceneTest, Scene_MirroringASquareUsesTheHorizontalAxisAndIsOneUndoStep)
{
    app::EntityPtr circle = Add("Scene.addCircle {pos = [1, 2]; angle = 0.5}");
    scene->MirrorLongestAxis(QLEX_NEW new app::Group(circle));
    auto circles = All<app::CircleEntity>();
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_NEAR(circles[0]->GetGeom()->GetPosition().x, 1.0f, 1e-5f);
    EXPECT_NEAR(circles[0]->GetGeom()->GetPosition().y, 2.0f, 1e-5f);
    ASSERT_TRUE(app::Undoer::GetInstancePtr()->GetNextUndo());
    EXPECT_STREQ(app::Undoer::GetInstancePtr()->GetNextUndo()->GetKey(), "UndoMirror");
}

TEST_F(SceneTest, Scene_BoxOfAFarAwayDropIsTheBoxAlone)
{
    Run("Scene.addBox {pos = [0, 0]; size = [2, 2]}; Scene.addWater {vecs = [[100, 100]]}");
    const math::BoundingBox2 box = scene->CalcAABB();
    EXPECT_NEAR(box.GetSize().x, 2.0f, 1e-4f);
    Run("Scene.addWater {vecs = [[1.2, 0]]}");
    EXPECT_NEAR(scene->CalcAABB().GetSize().x, 2.0f, 1e-4f);
}

TEST_F(SceneTest, Scene_MoveToOrigoCentresEntitiesAndWater)
{
    Run("Scene.addBox {pos = [10, 10]; size = [2, 2]}; Scene.addWater {vecs = [[10.5, 10.5]]}");
    scene->MoveToOrigo();
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().x, 0.0f, 1e-4f);
    EXPECT_NEAR(physics::Simulation::GetInstancePtr()->GetParticles()[0]->GetPosition().x, 0.5f, 1e-4f);
}

TEST_F(SceneTest, Scene_DeadEntityLeavesAtUpdateAndItsHingeWithIt)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [0, 0]}");
    Run("Scene.addHinge {pos = [0.1, 0.1]}");
    ASSERT_EQ(scene->GetEntities().size(), 2u);
    physics::Simulation::GetInstancePtr()->RemoveBody(
        util::dynamic_pointer_cast<app::BoxEntity>(box)->GetBody());
    scene->Update(0.01f);
    scene->Update(0.01f);
    EXPECT_TRUE(scene->GetEntities().empty());
}

TEST_F(SceneTest, Qlexlet_ImportsAtTheMouseAsOneStep)
{
    app::EntityPtr box = Add("Scene.addBox {pos = [5, 5]; color = [0.5, 0.5, 0.5, 1]}");
    Run("Scene.addHinge {pos = [5, 5]}");
    const std::string text = app::Serializer::GetInstancePtr()->SerializeQlexlet(scene->GetAsGroup());
    EXPECT_EQ(text.rfind("// Qlexlet created by ", 0), 0u);
    EXPECT_EQ(text.find("Sim.gravity"), std::string::npos);
    EXPECT_EQ(text.find("addGroup"), std::string::npos);

    const std::string path = testing::TempDir() + "piece.qlx";
    util::FileSystem::WriteFile(path, text);
    scene->ClearScene();
    app::Undoer::GetInstancePtr()->Do(QLEX_NEW new app::SceneLoader(true, path));
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    const math::Vec2 mouse = scene->GetMousePos();
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().x, mouse.x, 1e-4f);
    EXPECT_EQ(All<app::HingeEntity>().size(), 1u);
    EXPECT_EQ(scene->GetSelection()->Size(), 2u);
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_TRUE(scene->GetEntities().empty());
    std::remove(path.c_str());
}

TEST_F(SceneTest, Qlexlet_HingeWithoutItsShapeAttachesToWhatIsThereAtPasteTime)
{
    Run("Scene.addBox {pos = [2, 1]}");
    app::EntityPtr hinge = Add("Scene.addHinge {pos = [2.2, 1.1]}");
    const std::string text =
        app::Serializer::GetInstancePtr()->SerializeQlexlet(QLEX_NEW new app::Group(hinge));
    // The shape stays outside the fragment: its end is written as a world point, the background's by id.
    EXPECT_NE(text.find("geom0 = -1"), std::string::npos) << text;
    EXPECT_NE(text.find("world0pos = [2.20000005, 1.10000002]"), std::string::npos) << text;
    EXPECT_NE(text.find("geom1 = 0"), std::string::npos) << text;

    scene->ClearScene();
    app::EntityPtr circle = Add("Scene.addCircle {pos = [2, 1]; radius = 0.5}");
    app::Serializer::GetInstancePtr()->Deserialize(text);
    auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 1u);
    EXPECT_EQ(hinges[0]->m_geoms[0], util::dynamic_pointer_cast<app::GeomEntity>(circle)->GetGeom());
    EXPECT_EQ(hinges[0]->m_geoms[1], physics::Simulation::GetInstancePtr()->GetWorldGeom());
}

} // namespace
