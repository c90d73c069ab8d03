// Replays the scene files kept in tests/fuzz_regressions/scene_fuzzer/: scenes that once took the program
// down, or stand for a way of doing it (non-finite numbers, heaps of shapes or water, a hinge too heavy to
// solve, water far away). Each is read, stepped, saved, undone and redone as the scene fuzzer does, and the
// scene must still work afterwards.

#include "SceneTestSupport.h"

#include "app/Snapshot.h"
#include "app/entities/BoxEntity.h"
#include "util/FileSystem.h"

#include <cstdlib>
#include <filesystem>

namespace
{
using scenetest::SceneTest;

TEST_F(SceneTest, FuzzRegressionScenesLoadStepAndSaveCleanly)
{
    const char* source = std::getenv("QLEX_SOURCE");
    ASSERT_TRUE(source) << "QLEX_SOURCE names the source tree";
    const std::filesystem::path dir = std::filesystem::path(source) / "tests/fuzz_regressions/scene_fuzzer";
    ASSERT_TRUE(std::filesystem::is_directory(dir));
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
    {
        SCOPED_TRACE(entry.path().filename().string());
        app::SnapshotPtr before = app::Snapshot::TakeSnapshot();
        Load(util::FileSystem::ReadWholeFile(entry.path().string()));
        sim->m_running = true;
        Step(3);
        for (const app::EntityPtr& entity : scene->GetEntities())
        {
            const math::BoundingBox2 box = entity->GetAABB();
            EXPECT_FALSE(math::IsNaN(box.min.x) || math::IsNaN(box.max.y));
        }
        EXPECT_FALSE(Save().empty());
        app::Undoer::GetInstancePtr()->AddUndo(before, "UndoLoadScene");
        app::Undoer::GetInstancePtr()->Undo();
        app::Undoer::GetInstancePtr()->Redo();
        app::Undoer::GetInstancePtr()->Clear();
        ++inputs;
    }
    EXPECT_GT(inputs, 0u);

    // The scene still works: a box falls onto a plane and rests there.
    Load("Scene.addPlane {normal = [0.0, 1.0]; dist = 0.0};\nScene.addBox {pos = [0.0, 2.0]}");
    sim->m_running = true;
    Step(200);
    auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().y, 0.5f, 0.05f);
}
} // namespace
