#include "SceneTestSupport.h"
#include "logging/LogCapture.h"

#include "app/Action.h"
#include "app/Chain.h"
#include "app/SceneFiles.h"
#include "app/SceneLoader.h"
#include "app/Snapshot.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "logging/Log.h"
#include "physics/Particle.h"
#include "util/FileSystem.h"

#include <cstdio>
#include <string>
#include <vector>

namespace
{
using scenetest::SceneTest;

const char* const PENDULUM = R"(
Scene.addBox {pos = [0, 0]; size = [4, 0.5]; body = 3};
Scene.addBox {pos = [1.5, 0.5]; size = [0.5, 0.5]; body = 3};
Scene.addCircle {pos = [3, 2]; radius = 0.3};
Scene.addHinge {pos = [0, 0]};
Scene.addSpring {world0pos = [3, 2]; world1pos = [1.5, 0.5]};
Scene.addPen {pos = [3, 2]};
Scene.addWater {vecs = [[-1, 3], [-0.9, 3], [-1, 3.1]]}
)";

// Counts calls of the history's change callbacks.
struct ChangeCounter : util::Pointee
{
    int count = 0;
    void Count() { ++count; }
};

class CountingAction : public app::Action
{
public:
    explicit CountingAction(int& log) : app::Action("UndoSnapshot"), m_log(log) {}
    void Do() override { m_log += 1; }
    void Undo() override { m_log -= 1; }

private:
    int& m_log;
};

TEST_F(SceneTest, Snapshot_StepsUndoneGiveBackTheSavedTextAndRedoTheLater)
{
    Run(PENDULUM);
    Step(20);
    const std::string before = Save();
    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();
    Step(100);
    app::Undoer::GetInstancePtr()->AddUndo(snapshot, "UndoSimStart");
    const std::string after = Save();
    ASSERT_NE(before, after);

    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_EQ(Save(), before);
    app::Undoer::GetInstancePtr()->Redo();
    EXPECT_EQ(Save(), after);
    // Alternating over the same snapshots gives the same scenes again.
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_EQ(Save(), before);
}

TEST_F(SceneTest, Snapshot_SameObjectsReturnWithVelocitiesOfTheMoment)
{
    Run(PENDULUM);
    Step(30);
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 2u);
    app::GroupPtr named = app::GroupPtr(QLEX_NEW new app::Group("two"));
    named->Add(boxes[0]);
    scene->AddGroup(named);
    scene->GetSelection()->Add(boxes[1]);
    const util::SharedPtr<physics::Body> body = boxes[0]->GetBody();
    const math::Vec2 velocity = body->GetVelocity();
    const auto& particles = physics::Simulation::GetInstancePtr()->GetParticles();
    const math::Vec2 waterVelocity = particles[0]->GetVelocity();
    const double time = physics::Simulation::GetInstancePtr()->GetSimulatedTime();
    scene->GetCamera()->SetPan(math::Vec2(2, 3));
    scene->GetCamera()->SetZoom(60);
    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();

    // Break the glue and drop everything.
    scene->RemoveEntity(boxes[1]);
    Step(10);
    scene->ClearScene();

    snapshot->Restore();
    auto restored = All<app::BoxEntity>();
    ASSERT_EQ(restored.size(), 2u);
    EXPECT_EQ(restored[0], boxes[0]);
    EXPECT_EQ(restored[1], boxes[1]);
    EXPECT_EQ(boxes[0]->GetBody(), boxes[1]->GetBody());
    EXPECT_EQ(boxes[0]->GetBody()->GetVelocity(), velocity);
    ASSERT_EQ(particles.size(), 3u);
    EXPECT_EQ(particles[0]->GetVelocity(), waterVelocity);
    EXPECT_EQ(physics::Simulation::GetInstancePtr()->GetSimulatedTime(), time);
    EXPECT_NEAR(scene->GetCamera()->GetPan().x, 2.0f, 1e-5f);
    EXPECT_NEAR(scene->GetCamera()->GetPan().y, 3.0f, 1e-5f);
    EXPECT_NEAR(scene->GetCamera()->GetZoom(), 60.0f, 1e-3f);
    EXPECT_TRUE(scene->GetSelection()->Contains(boxes[1]));
    EXPECT_EQ(scene->GetSelection()->Size(), 1u);
    app::GroupPtr group = scene->GetGroupByName("two");
    ASSERT_TRUE(group);
    EXPECT_TRUE(group->Contains(boxes[0]));
    ASSERT_EQ(All<app::HingeEntity>().size(), 1u);
    EXPECT_TRUE(All<app::HingeEntity>()[0]->IsAlive());
}

TEST_F(SceneTest, Snapshot_PenTrailReturnsToItsPoints)
{
    Run(PENDULUM);
    auto pens = All<app::PenEntity>();
    ASSERT_EQ(pens.size(), 1u);
    Step(50);
    const size_t length = pens[0]->m_tail.size();
    ASSERT_GT(length, 1u);
    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();
    Step(50);
    ASSERT_NE(pens[0]->m_tail.size(), length);
    snapshot->Restore();
    EXPECT_EQ(pens[0]->m_tail.size(), length);
}

TEST_F(SceneTest, Snapshot_DeletedHingeReturnsWithNewPhysicsAndOldAnchors)
{
    Run(PENDULUM);
    auto hinge = All<app::HingeEntity>().at(0);
    const math::Vec2 anchor = hinge->m_localPos[0];
    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();
    scene->RemoveEntity(hinge);
    snapshot->Restore();
    ASSERT_TRUE(scene->HasEntity(hinge));
    EXPECT_EQ(hinge->m_localPos[0], anchor);
    EXPECT_TRUE(hinge->IsAlive());
}

TEST_F(SceneTest, Undoer_StacksFollowMaxUndoAndNewActionsClearRedo)
{
    app::Undoer* undoer = app::Undoer::GetInstancePtr();
    util::SharedPtr<ChangeCounter> counter = QLEX_NEW new ChangeCounter();
    undoer->AddOnChangeCallback(util::MakeCallback(&ChangeCounter::Count, counter.get()));
    int log = 0;
    for (int i = 0; i < 30; ++i)
        undoer->Do(QLEX_NEW new CountingAction(log));
    EXPECT_EQ(log, 30);
    EXPECT_EQ(undoer->GetUndoCount(), app::Undoer::DEFAULT_MAX_UNDO);
    EXPECT_EQ(counter->count, 30);

    undoer->Undo();
    undoer->Undo();
    EXPECT_EQ(log, 28);
    EXPECT_EQ(undoer->GetRedoCount(), 2u);
    undoer->Do(QLEX_NEW new CountingAction(log));
    EXPECT_EQ(undoer->GetRedoCount(), 0u);
    EXPECT_FALSE(undoer->GetNextRedo());

    undoer->Clear();
    const int calls = counter->count;
    undoer->Undo();
    undoer->Redo();
    EXPECT_EQ(counter->count, calls);
}

// Fails when taken back, or when done again, as it is told.
class FailingAction : public app::Action
{
public:
    FailingAction(bool failUndo, bool failRedo)
        : app::Action("UndoSnapshot"), m_failUndo(failUndo), m_failRedo(failRedo)
    {
    }
    void Do() override {}
    void Undo() override
    {
        if (m_failUndo)
            throw BadDataException("undo failed");
    }
    void Redo() override
    {
        if (m_failRedo)
            throw BadDataException("redo failed");
    }

private:
    bool m_failUndo;
    bool m_failRedo;
};

TEST_F(SceneTest, Undoer_FailedStepInEitherDirectionIsDroppedAndNamedInAWarning)
{
    app::Undoer* undoer = app::Undoer::GetInstancePtr();
    util::SharedPtr<ChangeCounter> counter = QLEX_NEW new ChangeCounter();
    undoer->AddOnChangeCallback(util::MakeCallback(&ChangeCounter::Count, counter.get()));
    logtest::LogCapture warningLog(logging::Warning);
    const std::vector<std::string>& warnings = warningLog.lines;

    undoer->Do(QLEX_NEW new FailingAction(false, true));
    undoer->Undo();
    EXPECT_EQ(undoer->GetRedoCount(), 1u);
    EXPECT_TRUE(warnings.empty());
    undoer->Redo();
    EXPECT_EQ(undoer->GetUndoCount(), 0u);
    EXPECT_EQ(undoer->GetRedoCount(), 0u);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings.back().find("Undoer::Redo: redo failed"), std::string::npos) << warnings.back();

    // A failed undo leaves the steps before it usable.
    int log = 0;
    undoer->Do(QLEX_NEW new CountingAction(log));
    undoer->Do(QLEX_NEW new FailingAction(true, false));
    undoer->Undo();
    EXPECT_EQ(undoer->GetUndoCount(), 1u);
    EXPECT_EQ(undoer->GetRedoCount(), 0u);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_NE(warnings.back().find("Undoer::Undo: undo failed"), std::string::npos) << warnings.back();
    // A failed step changes the history, so listeners hear of it too: three doings, three steps.
    EXPECT_EQ(counter->count, 6);
    undoer->Undo();
    EXPECT_EQ(log, 0);
    EXPECT_EQ(undoer->GetRedoCount(), 1u);
}

TEST_F(SceneTest, Undoer_SimStartUndoStopsAtTheStartAndRedoRunsAgain)
{
    Run(PENDULUM);
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    sim->m_running = false;
    const std::string atStart = Save();
    app::Undoer::GetInstancePtr()->Do(QLEX_NEW new app::SimStart());
    EXPECT_TRUE(sim->m_running);
    Step(40);
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_FALSE(sim->m_running);
    EXPECT_EQ(Save(), atStart);
    app::Undoer::GetInstancePtr()->Redo();
    EXPECT_TRUE(sim->m_running);
    EXPECT_EQ(Save(), atStart);
}

TEST_F(SceneTest, SceneLoader_MissingFileChangesNothingButIsAStep)
{
    Run("Scene.addBox {}");
    const std::string text = Save();
    app::Undoer::GetInstancePtr()->Do(QLEX_NEW new app::SceneLoader(false, "/nonexistent/nothing.qlx"));
    EXPECT_EQ(Save(), text);
    EXPECT_EQ(app::Undoer::GetInstancePtr()->GetUndoCount(), 1u);
}

TEST_F(SceneTest, SceneLoader_ParseErrorLoadsNothingAndUndoBringsBackThePreviousScene)
{
    const std::string path = testing::TempDir() + "broken_scene.qlx";
    util::FileSystem::WriteFile(path, "Scene.addBox {pos = [0, 0]};\nScene.addCircle {pos = [1, (]}");
    Run("Scene.addCircle {pos = [4, 4]}; Scene.addCircle {pos = [8, 4]}");
    const std::string previous = Save();
    app::LoadSceneFile(path, true);
    EXPECT_TRUE(scene->GetEntities().empty());
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_EQ(Save(), previous);
    std::remove(path.c_str());
}

TEST_F(SceneTest, SceneLoader_FileWithoutCameraIsZoomedAndOneWithPanKeepsIt)
{
    const std::string path = testing::TempDir() + "camera_scene.qlx";
    util::FileSystem::WriteFile(path, "Scene.addBox {pos = [10, 20]}");
    app::LoadSceneFile(path, true);
    EXPECT_NEAR(scene->GetCamera()->GetPan().x, 10.0f, 1e-4f);
    EXPECT_NEAR(scene->GetCamera()->GetPan().y, 20.0f, 1e-4f);
    util::FileSystem::WriteFile(path, "Scene.Camera.pan = [1.0, 2.0];\nScene.addBox {pos = [10, 20]}");
    app::LoadSceneFile(path, true);
    EXPECT_EQ(scene->GetCamera()->GetPan(), math::Vec2(1.0f, 2.0f));
    // Outside the scene directory the title keeps the path; only the extension goes.
    EXPECT_EQ(util::String(scene->m_title), testing::TempDir() + "camera_scene");
    std::remove(path.c_str());
}

TEST_F(SceneTest, EraseEntities_RemovesShapesWithTheirJointsAndUndoBringsAllBack)
{
    Run("Scene.addBox {pos = [0, 0]; color = [0.5, 0.5, 0.5, 1]}; Scene.addHinge {pos = [0.1, 0.1]}");
    const std::string before = Save();
    app::EntitySet all = scene->GetAsGroup()->GetEntities();
    app::Undoer::GetInstancePtr()->Do(QLEX_NEW new app::EraseEntities(all));
    EXPECT_TRUE(scene->GetEntities().empty());
    EXPECT_EQ(physics::Simulation::GetInstancePtr()->GetConstraints().size(), 0u);
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_EQ(Save(), before);
    app::Undoer::GetInstancePtr()->Redo();
    EXPECT_TRUE(scene->GetEntities().empty());
}
class NoAction : public app::Action
{
public:
    NoAction() : app::Action("UndoSnapshot") {}
    void Do() override {}
    void Undo() override {}
};

TEST_F(SceneTest, Undoer_MaxUndoOfTheApplicationBoundsEachStack)
{
    app::Undoer* undoer = app::Undoer::GetInstancePtr();
    Run("App.maxUndo = 3");
    for (int i = 0; i < 5; ++i)
        undoer->Do(QLEX_NEW new NoAction());
    EXPECT_EQ(undoer->GetUndoCount(), 3u);
    undoer->Undo();
    undoer->Undo();
    EXPECT_EQ(undoer->GetRedoCount(), 2u);
    Run("App.maxUndo = 1");
    undoer->OnMaxUndoChange();
    EXPECT_EQ(undoer->GetUndoCount(), 1u);
    EXPECT_EQ(undoer->GetRedoCount(), 1u);
    Run("App.maxUndo = 25");
}

TEST_F(SceneTest, Snapshot_ChainLinksReturnToTheirPlaces)
{
    Run("Scene.addBox {pos = [0, 0]; chain = 1; chainNr = 0}; Scene.addBox {pos = [2, 0]; chain = 1; chainNr "
        "= 1};"
        "Scene.addBox {pos = [4, 0]; chain = 1; chainNr = 2}");
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 3u);
    app::ChainPtr chain = boxes[0]->m_chain;
    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();
    chain->Detach();
    scene->RemoveEntity(boxes[1]);
    snapshot->Restore();
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_EQ(boxes[i]->m_chain, chain);
        EXPECT_EQ(chain->IndexOf(boxes[i].get()), i);
    }
}
TEST_F(SceneTest, Snapshot_GroupsAreNotFilledThroughIdsOfAnEarlierFile)
{
    // B leaves the scene but stays in its named group; a file then uses B's id for another entity.
    Run("Scene.addBox {pos = [0, 0]}");
    app::EntityPtr b = scene->GetEntities().back();
    app::GroupPtr group = scene->GetOrCreateGroupByName("G");
    group->Add(b);
    scene->RemoveEntity(b);
    app::Serializer::GetInstancePtr()->Deserialize(
        "Scene.addBox {pos = [5, 0]; entityID = " + std::to_string(b->GetID()) + "}");
    app::EntityPtr a = scene->GetEntities().back();
    ASSERT_NE(a, b);

    app::SnapshotPtr snapshot = app::Snapshot::TakeSnapshot();
    snapshot->Restore();
    app::GroupPtr restored = scene->GetGroupByName("G");
    EXPECT_FALSE(restored && restored->Contains(a));
    EXPECT_TRUE(scene->HasEntity(a));
}
} // namespace
