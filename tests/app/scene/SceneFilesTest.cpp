#include "SceneTestSupport.h"
#include "logging/LogCapture.h"

#include "app/FileInfo.h"
#include "app/SceneFiles.h"
#include "logging/Log.h"
#include "util/FileSystem.h"

namespace
{
using scenetest::SceneTest;

TEST_F(SceneTest, SceneFiles_NamesGainAndLoseTheSceneDirectoryAndExtension)
{
    const std::string dir = util::FileSystem::GetInstancePtr()->SceneDir();
    EXPECT_EQ(app::MakeLongFileName("pile"), dir + "pile.qlx");
    EXPECT_EQ(app::MakeLongFileName("pile.QLX"), dir + "pile.QLX");
    EXPECT_EQ(app::MakeLongFileName("/tmp/pile"), "/tmp/pile.qlx");
    EXPECT_EQ(app::MakeShortFileName(dir + "pile.qlx"), "pile");
    EXPECT_EQ(app::MakeShortFileName("/tmp/pile.Qlx"), "/tmp/pile");
    EXPECT_EQ(app::NameFromDir("/some/where/My scene.qlx"), "My scene");
    EXPECT_EQ(app::NameFromDir("bare"), "bare");
}

TEST_F(SceneTest, SceneFiles_FadeSettingsAndMetaDataStayOutUntilTheyMatter)
{
    std::string text = Save();
    EXPECT_EQ(text.find("App.fadeScale"), std::string::npos);
    EXPECT_EQ(text.find("FileInfo.author"), std::string::npos);
    Run("App.fadeColor = [0.5, 0.0, 0.0]; Scene.author = \"Someone\"");
    text = Save();
    EXPECT_NE(text.find("App.fadeScale = "), std::string::npos) << text;
    EXPECT_NE(text.find("App.fadeRotate = "), std::string::npos);
    EXPECT_NE(text.find("FileInfo.author = \"Someone\";"), std::string::npos);
    // A new scene puts the settings it saves back to their defaults.
    scene->NewScene();
    EXPECT_EQ(Save().find("App.fadeScale"), std::string::npos);
}

TEST_F(SceneTest, SceneFiles_NewerVersionWarnsAndLoadingGoesOn)
{
    logtest::LogCapture warnings(logging::Warning);
    app::Serializer::GetInstancePtr()->Deserialize("FileInfo.version = 3;\nScene.addBox {}");
    EXPECT_TRUE(warnings.Has("Loading scene from a newer version of Qlex"));
    EXPECT_EQ(scene->GetEntities().size(), 1u);
    app::FileInfo::GetInstancePtr()->m_version = app::FileInfo::VERSION_LATEST;
}

TEST_F(SceneTest, SceneFiles_SaveMakesTheFolderAndLoadIsOneStep)
{
    util::FileSystem* files = util::FileSystem::GetInstancePtr();
    const std::string workDir = files->WorkDir();
    const std::string scratch = testing::TempDir() + "qlex_scene_files/";
    files->SetWorkDir(scratch);
    Run("Scene.addCircle {pos = [1, 1]}");
    EXPECT_TRUE(app::SaveSceneFile("round", false));
    EXPECT_TRUE(util::FileSystem::FileExists(scratch + "scenes/round.qlx"));
    scene->ClearScene();
    app::LoadSceneFile("round", false);
    EXPECT_EQ(scene->GetEntities().size(), 1u);
    EXPECT_FALSE(physics::Simulation::GetInstancePtr()->m_running);
    EXPECT_EQ(util::String(scene->m_title), "round");
    EXPECT_EQ(app::Undoer::GetInstancePtr()->GetUndoCount(), 1u);
    files->SetWorkDir(workDir);
    util::FileSystem::EraseFile(scratch + "scenes/round.qlx");
}

} // namespace
