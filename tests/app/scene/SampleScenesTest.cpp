#include "SceneTestSupport.h"
#include "logging/LogCapture.h"

#include "app/SceneFiles.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "physics/Particle.h"
#include "util/FileSystem.h"

#include <cstdlib>

namespace
{
using scenetest::SceneTest;

// Our sample scenes as the build stages them.
std::vector<std::string> SampleScenes()
{
    const char* stage = std::getenv("QLEX_STAGE");
    const std::string dir = std::string(stage ? stage : ".") + "/scenes/";
    return {dir + "welcome.qlx", dir + "chain_bridge.qlx", dir + "waterfall.qlx", dir + "cradle.qlx",
            dir + "seesaw.qlx"};
}

TEST_F(SceneTest, SampleScenes_LoadWithoutMessagesAndStayFiniteWhileRunning)
{
    for (const std::string& path : SampleScenes())
        ASSERT_TRUE(util::FileSystem::FileExists(path)) << path;
    logtest::LogCapture log(logging::Error | logging::Warning);
    std::vector<std::string>& messages = log.lines;
    for (const std::string& path : SampleScenes())
    {
        app::LoadSceneFile(path, true);
        logging::Logger::GetInstancePtr()->Update();
        EXPECT_TRUE(messages.empty()) << path << ": " << (messages.empty() ? "" : messages.front());
        EXPECT_FALSE(scene->GetEntities().empty()) << path;
        EXPECT_FALSE(util::String(scene->m_title).empty()) << path;

        physics::Simulation::GetInstancePtr()->m_running = true;
        Step(200);
        for (const app::EntityPtr& entity : scene->GetEntities())
        {
            const math::BoundingBox2 box = entity->GetAABB();
            EXPECT_FALSE(math::IsNaN(box.min.x) || math::IsNaN(box.max.y)) << path;
        }
        messages.clear();
    }
}

TEST_F(SceneTest, SampleScenes_WelcomeIsAliveAtOnce)
{
    app::LoadSceneFile(SampleScenes().front(), true);
    EXPECT_TRUE(physics::Simulation::GetInstancePtr()->m_running);
    auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(hinges.size(), 1u);
    EXPECT_TRUE(hinges[0]->m_motor);
    EXPECT_FALSE(All<app::SpringEntity>().empty());
    EXPECT_FALSE(physics::Simulation::GetInstancePtr()->GetParticles().empty());

    // The motor turns the windmill: its blades leave their first angle.
    auto blade = util::dynamic_pointer_cast<app::GeomEntity>(scene->GetEntities().at(1));
    ASSERT_TRUE(blade);
    const float angle = blade->GetGeom()->GetAngle();
    Step(100);
    EXPECT_GT(std::fabs(blade->GetGeom()->GetAngle() - angle), 0.5f);
}

} // namespace
