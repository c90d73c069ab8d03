#include "SceneTestSupport.h"

#include "app/Camera.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "physics/Particle.h"

#include <algorithm>

namespace
{
using scenetest::SceneTest;

const char* const MIXED_SCENE = R"(
Scene.addPlane {angle = 1.57079637; pos = [0, -1]};
Scene.addBox {pos = [0, 1]; size = [2, 1]; color = [0.5, 0.25, 0.125, 1.0]};
Scene.addCircle {pos = [3, 1]; radius = 0.5};
Scene.addPolygon {pos = [-3, 1]; vecs = [[0, 0], [1, 0], [1, 1], [0, 1]]};
Scene.addHinge {pos = [0, 1]; motor = true};
Scene.addSpring {world0pos = [3, 1]; world1pos = [0, 1.2]};
Scene.addWater {vecs = [[5, 5], [5.1, 5]]}
)";

TEST_F(SceneTest, Serializer_SaveLoadSaveIsStable)
{
    Run(MIXED_SCENE);
    ASSERT_EQ(scene->GetEntities().size(), 6u);
    const std::string first = Save();
    Load(first);
    ASSERT_EQ(scene->GetEntities().size(), 6u);
    const std::string second = Save();
    Load(second);
    const std::string third = Save();
    EXPECT_EQ(scenetest::NormalizeIds(second), scenetest::NormalizeIds(third));
    EXPECT_EQ(physics::Simulation::GetInstancePtr()->GetParticles().size(), 2u);
}

TEST_F(SceneTest, Serializer_HeaderAndSettingsComeFirst)
{
    Run("Scene.addBox {}");
    const std::string text = Save();
    EXPECT_EQ(text.rfind("// Qlex scene created by ", 0), 0u) << text;
    EXPECT_NE(text.find("\n\nFileInfo.version = 2;\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("FileInfo.title"), std::string::npos);
    EXPECT_NE(text.find("Scene.addGroup {\n"), std::string::npos) << text;
    EXPECT_NE(text.back(), '\n');
}

TEST_F(SceneTest, Serializer_EmptyFunctionMakesUnitBoxAndNumberFailsWithHelperMessage)
{
    Run("Scene.addBox {}");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    const math::BoundingBox2 box = boxes[0]->GetAABB();
    EXPECT_NEAR(box.GetSize().x, 1.0f, 1e-5f);
    EXPECT_NEAR(box.GetCenter().y, 0.0f, 1e-5f);

    Run("Scene.addBox 3");
    EXPECT_EQ(All<app::BoxEntity>().size(), 1u);
}

TEST_F(SceneTest, Serializer_GluedShapesShareOneBodyAfterLoad)
{
    Run("Scene.addBox {pos = [0, 0]; body = 7}; Scene.addBox {pos = [2, 0]; body = 7}; Scene.addBox {pos = "
        "[5, 0]}");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_EQ(boxes[0]->GetBody(), boxes[1]->GetBody());
    EXPECT_NE(boxes[0]->GetBody(), boxes[2]->GetBody());
    const std::string text = Save();
    Load(text);
    boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_EQ(boxes[0]->GetBody(), boxes[1]->GetBody());
    EXPECT_NE(boxes[0]->GetBody(), boxes[2]->GetBody());
}

TEST_F(SceneTest, Serializer_HingeToBackgroundNamesGeomZero)
{
    Run("Scene.addBox {pos = [0, 0]}; Scene.addHinge {pos = [0.2, 0.2]}");
    ASSERT_EQ(All<app::HingeEntity>().size(), 1u);
    const std::string text = Save();
    EXPECT_TRUE(std::regex_search(text, std::regex("geom[01] = 0[;\n]"))) << text;
}

TEST_F(SceneTest, Serializer_UnknownGeomIdIsLoggedAndJointAttachesAtItsPoint)
{
    Run("Scene.addBox {pos = [0, 0]; geomID = 4}");
    Run("Scene.addHinge {geom0 = 4; geom0pos = [0, 0]; geom1 = 99; world1pos = [0.1, 0.1]}");
    auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 1u);
    EXPECT_TRUE(hinges[0]->m_geoms[1]);
}

TEST_F(SceneTest, Serializer_OldFormatLoadsWithAlphaOne)
{
    app::Serializer::GetInstancePtr()->Deserialize("version = 1;\n{ type = \"box\"; pos = [0, 0]; color = "
                                                   "[0.5, 0.5, 0.5] };\n{ type = \"circle\"; radius = 2 }");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_FLOAT_EQ(boxes[0]->GetColor().w, 1.0f);
    EXPECT_EQ(All<app::CircleEntity>().size(), 1u);
}

TEST_F(SceneTest, Serializer_OldFormatReadsJointsAndPensAfterTheShapesTheyName)
{
    // Every record that hangs on a shape comes before it in the file, and names it only by its id.
    app::Serializer::GetInstancePtr()->Deserialize(R"(version = 1;
{ type = "spring"; geom0 = 3; geom0pos = [0.5, 0]; geom1 = 4; geom1pos = [0, 0] };
{ type = "fixjoint"; geom0 = 4; geom0pos = [0, 0.5]; geom1 = 6; geom1pos = [0, -0.5] };
{ type = "pen"; geom = 5; relPoint = [0, 0] };
{ type = "water"; vecs = [[5, 5]] };
{ type = "plane"; pos = [0, -1]; id = 1 };
{ type = "box"; pos = [0, 1]; size = [2, 1]; id = 3 };
{ type = "box"; pos = [3, 1]; size = [1, 1]; id = 4 };
{ type = "polygon"; vecs = [[5, 0], [6, 0], [5.5, 1]]; id = 5 };
{ type = "circle"; pos = [3, 2]; radius = 0.5; id = 6 })");
    EXPECT_EQ(All<app::PlaneEntity>().size(), 1u);
    EXPECT_EQ(All<app::BoxEntity>().size(), 2u);
    EXPECT_EQ(physics::Simulation::GetInstancePtr()->GetParticles().size(), 1u);

    const auto springs = All<app::SpringEntity>();
    ASSERT_EQ(springs.size(), 1u);
    EXPECT_NEAR(springs[0]->m_worldPos[0].x, 0.5f, 1e-5f);
    EXPECT_NEAR(springs[0]->m_worldPos[1].x, 3.0f, 1e-5f);

    const auto welds = All<app::FixJointEntity>();
    const auto circles = All<app::CircleEntity>();
    ASSERT_EQ(welds.size(), 1u);
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_EQ(welds[0]->m_geoms[1], circles[0]->GetGeom());
    EXPECT_TRUE(welds[0]->IsAlive());

    const auto pens = All<app::PenEntity>();
    const auto polygons = All<app::PolyEntity>();
    ASSERT_EQ(pens.size(), 1u);
    ASSERT_EQ(polygons.size(), 1u);
    EXPECT_EQ(pens[0]->m_geom, polygons[0]->GetGeom());
}

TEST_F(SceneTest, Serializer_WaterPositionsSurviveAndVelocitiesAreZero)
{
    Run("Scene.addWater {vecs = [[1, 2], [3, 4]]}");
    auto& particles = physics::Simulation::GetInstancePtr()->GetParticles();
    ASSERT_EQ(particles.size(), 2u);
    particles[0]->SetVelocity(math::Vec2(5, 5));
    Load(Save());
    ASSERT_EQ(particles.size(), 2u);
    EXPECT_EQ(particles[0]->GetPosition(), math::Vec2(1, 2));
    EXPECT_EQ(particles[0]->GetVelocity(), math::Vec2(0, 0));
}

size_t CountGroupsNamed(app::Scene* scene, const std::string& name)
{
    size_t count = 0;
    for (const app::GroupPtr& group : scene->GetGroups())
        count += group->GetName() == name ? 1 : 0;
    return count;
}

TEST_F(SceneTest, Tracking_OneGroupAtATimeAndItFollowsALoneShapesPosition)
{
    Run("Scene.addBox {pos = [3, 4]; tracked = true}");
    Run("Scene.addCircle {pos = [-6, 1]; tracked = true}");
    EXPECT_EQ(CountGroupsNamed(scene, "tracked"), 1u);
    ASSERT_TRUE(scene->GetTrackedGroup());
    ASSERT_EQ(scene->GetTrackedGroup()->Size(), 1u);
    EXPECT_TRUE(util::dynamic_pointer_cast<app::CircleEntity>(scene->GetTrackedGroup()->GetFirst()));
    EXPECT_EQ(app::Camera::GetGroupCenter(scene->GetTrackedGroup()), math::Vec2(-6, 1));

    // A saved scene names one tracked group, and reads back to one.
    Load(Save());
    EXPECT_EQ(CountGroupsNamed(scene, "tracked"), 1u);
    EXPECT_TRUE(scene->GetCamera()->IsTracking());
    ASSERT_TRUE(scene->GetTrackedGroup());
    EXPECT_TRUE(util::dynamic_pointer_cast<app::CircleEntity>(scene->GetTrackedGroup()->GetFirst()));
}

TEST_F(SceneTest, Tracking_EndsWhenTheGroupEmptiesAndTheGroupGoes)
{
    Run("Scene.addBox {pos = [3, 4]; tracked = true}");
    ASSERT_TRUE(scene->GetTrackedGroup());
    scene->RemoveEntity(scene->GetEntities().front());
    scene->GetTrackedGroup()->Trim();
    scene->GetCamera()->Update(0.01f);
    scene->Update(0.01f);
    EXPECT_FALSE(scene->GetCamera()->IsTracking());
    EXPECT_FALSE(scene->GetTrackedGroup());
    EXPECT_EQ(CountGroupsNamed(scene, "tracked"), 0u);
    EXPECT_EQ(Save().find("\"tracked\""), std::string::npos);
}

TEST_F(SceneTest, Tracking_TheSelectionIsFollowedByItsMembersAndKeepsItsName)
{
    Run("Scene.addBox {pos = [3, 4]}");
    scene->SetSelection(scene->GetAsGroup());
    scene->SetTrackedGroup(scene->GetSelection());
    EXPECT_EQ(scene->GetSelection()->GetName(), "selected");
    ASSERT_TRUE(scene->GetTrackedGroup());
    EXPECT_EQ(scene->GetTrackedGroup()->Size(), 1u);
    EXPECT_EQ(CountGroupsNamed(scene, "selected"), 1u);
    EXPECT_EQ(CountGroupsNamed(scene, "tracked"), 1u);
}

TEST_F(SceneTest, Tracking_AGroupWithoutACentreIsNotFollowed)
{
    scene->SetTrackedGroup(QLEX_NEW new app::Group());
    EXPECT_FALSE(scene->GetCamera()->IsTracking());
    EXPECT_FALSE(scene->GetTrackedGroup());
    EXPECT_EQ(CountGroupsNamed(scene, "tracked"), 0u);
}
TEST_F(SceneTest, Serializer_FailedRecordsLeaveNoPhysicsBehind)
{
    // Each of these fails after its object was made: a colour of one number, a negative chain index. None may
    // leave a weld or a wall that the scene doesn't show.
    Run("Scene.addBox {pos = [0, 0]; color = [0.5, 0.5, 0.5, 1]}");
    Run("Scene.addFixjoint {pos = [0, 0]; color = [1]}");
    Run("Scene.addBox {pos = [3, 0]; body = 0; chain = 1; chainNr = -1}");
    Run("Scene.addCircle {pos = [3, 2]; radius = 0.5}");
    EXPECT_EQ(scene->GetEntities().size(), 2u);
    EXPECT_TRUE(All<app::HingeEntity>().empty());
    Step(100);
    auto boxes = All<app::BoxEntity>();
    auto circles = All<app::CircleEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    ASSERT_EQ(circles.size(), 1u);
    // One second of free fall is about 4.9 m.
    EXPECT_LT(boxes[0]->GetGeom()->GetPosition().y, -4.0f);
    EXPECT_LT(circles[0]->GetGeom()->GetPosition().y, -1.0f);
    EXPECT_EQ(physics::Simulation::GetInstancePtr()->GetWorldBody()->GetGeoms().size(), 1u);
}

TEST_F(SceneTest, Serializer_AnUnknownKeyNameLeavesTheHingeWithTheKeysItCouldRead)
{
    Run("Scene.addBox {pos = [0, 0]}");
    Run("Scene.addHinge {pos = [0, 0]; buttonForward = \"zz\"; buttonBack = \"left_ctrl qq a\"}");
    const auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 1u);
    EXPECT_FALSE(hinges[0]->m_buttonForward.IsBound());
    EXPECT_EQ(hinges[0]->m_buttonBack.Serialize(), "left_ctrl a");
    const std::string saved = Save();
    EXPECT_EQ(saved.find("buttonForward"), std::string::npos) << saved;
    EXPECT_NE(saved.find("buttonBack = \"left_ctrl a\""), std::string::npos) << saved;
}
// Both ends of a joint that the file puts at one point must lie at that point after reading.
void ExpectEndsAt(const util::SharedPtr<app::HingeEntity>& hinge, math::Vec2 point)
{
    for (int i = 0; i < 2; ++i)
    {
        ASSERT_TRUE(hinge->m_geoms[i]);
        const math::Vec2 world =
            math::TransformCoordinate(hinge->m_geoms[i]->GetPose(), hinge->m_localPos[i]);
        EXPECT_NEAR(world.x, point.x, 1e-5f) << "end " << i;
        EXPECT_NEAR(world.y, point.y, 1e-5f) << "end " << i;
    }
}

TEST_F(SceneTest, Serializer_JointOnAPlaneOfNormalAndDistanceKeepsItsPoint)
{
    // The plane y = 0 (solid below), given by its equation: its line is folded into its pose.
    Run("Scene.addPlane {normal = [0, 1]; dist = 0; geomID = 5}; Scene.addBox {pos = [0, 0.3]; geomID = 6}");
    Run("Scene.addHinge {pos = [0.3, 0]}");
    // A local anchor of the file is relative to the pose the file gave the plane, here none.
    Run("Scene.addHinge {geom0 = 6; geom0pos = [-0.2, -0.3]; geom1 = 5; geom1pos = [-0.2, 0]}");
    auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 2u);
    ExpectEndsAt(hinges[0], math::Vec2(0.3f, 0));
    ExpectEndsAt(hinges[1], math::Vec2(-0.2f, 0));
}
const char* const RICH_SCENE = R"(
Scene.addBox {pos = [0, 1]; chain = 4; chainNr = 0; body = 7};
Scene.addBox {pos = [1, 1]; chain = 4; chainNr = 1; body = 7; friction = {0.25 + 0.5}};
Scene.addCircle {pos = [4, 1]; radius = 0.5; entityID = 40};
Scene.addFixjoint {pos = [0.5, 1]};
Scene.addHinge {pos = [4, 1]; controller = "arrowkeys"; motorSpeed = -2};
Scene.addPen {pos = [4.2, 1]; fadeTime = 3};
Scene.addGroup {name = "pair"; entityIDs = [40]};
Scene.addGroup {name = "tracked"; entityIDs = [40]}
)";

// The groups of a scene are written in the order of a set of pointers: they are compared as a sorted list.
std::string GroupsSorted(const std::string& text)
{
    const size_t first = text.find("Scene.addGroup");
    std::vector<std::string> groups;
    for (size_t at = first; at != std::string::npos;)
    {
        const size_t next = text.find("Scene.addGroup", at + 1);
        std::string group = text.substr(at, next == std::string::npos ? std::string::npos : next - at);
        if (group.size() >= 2 && group.compare(group.size() - 2, 2, ";\n") == 0)
            group.resize(group.size() - 2);
        groups.push_back(group);
        at = next;
    }
    std::sort(groups.begin(), groups.end());
    std::string result = text.substr(0, first);
    for (const std::string& group : groups)
        result += group + "\n";
    return result;
}

TEST_F(SceneTest, Serializer_RichSceneReadsBackToTheSameText)
{
    Run(RICH_SCENE);
    ASSERT_EQ(scene->GetEntities().size(), 6u);
    const std::string first = Save();
    for (const char* key : {"chainNr = 1", "friction = {0.25 + 0.5}", "buttonForward", "name = \"pair\"",
                            "name = \"tracked\"", "addFixjoint", "fadeTime = 3.0"})
        EXPECT_NE(first.find(key), std::string::npos) << key << "\n" << first;
    Load(first);
    ASSERT_EQ(scene->GetEntities().size(), 6u);
    const std::string second = Save();
    EXPECT_EQ(GroupsSorted(scenetest::NormalizeIds(first)), GroupsSorted(scenetest::NormalizeIds(second)));
    Load(second);
    EXPECT_EQ(GroupsSorted(scenetest::NormalizeIds(second)), GroupsSorted(scenetest::NormalizeIds(Save())));
}
} // namespace
