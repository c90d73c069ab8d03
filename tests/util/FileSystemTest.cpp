#include "util/FileSystem.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"
#include "util/FILEWrapper.h"
#include "util/Random.h"
#include "util/Timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace
{
// A fresh directory under the system's temporary folder, removed afterwards.
class FileSystemDir : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = std::filesystem::temp_directory_path() /
                ("qlex_fs_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(m_dir);
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }
    std::string Path(const std::string& leaf) const { return (m_dir / leaf).string(); }

    std::filesystem::path m_dir;
};

std::string ExceptionText(const std::function<void()>& f)
{
    try
    {
        f();
    }
    catch (std::exception& e)
    {
        return e.what();
    }
    return "no exception";
}
} // namespace

TEST(FileSystem_Layout, AllDirectoriesFollowTheWorkDirectory)
{
    util::FileSystem* fs = util::FileSystem::GetInstancePtr();
    fs->SetWorkDir("C:\\qlex\\run");
    EXPECT_EQ("C:/qlex/run/", fs->WorkDir());
    EXPECT_EQ("C:/qlex/run/", fs->ConfigDir());
    EXPECT_EQ("C:/qlex/run/data/", fs->DataDir());
    EXPECT_EQ("C:/qlex/run/data/fonts/", fs->FontsDir());
    EXPECT_EQ("C:/qlex/run/data/language/", fs->LanguageDir());
    EXPECT_EQ("C:/qlex/run/data/shaders/", fs->ShaderDir());
    EXPECT_EQ("C:/qlex/run/data/textures/cursors/", fs->CursorDir());
    EXPECT_EQ("C:/qlex/run/scenes/", fs->SceneDir());
    EXPECT_EQ("C:/qlex/run/scenes/qlexlets/", fs->QlexletDir());
    EXPECT_EQ("Qlex beta 4.21", util::FileSystem::NameAndVersion());
}

TEST(FileSystem_Layout, ExecutableDirIsTheFolderOfTheRunningProgram)
{
    std::string dir = util::FileSystem::ExecutableDir("ignored");
    ASSERT_FALSE(dir.empty());
    EXPECT_EQ('/', dir.back());
    EXPECT_TRUE(std::filesystem::exists(dir + "util_tests"));
}

TEST_F(FileSystemDir, WriteReadSizeRenameErase)
{
    std::string path = Path("a.cfg");
    EXPECT_FALSE(util::FileSystem::FileExists(path));
    std::string text = "line one\nline two\n";
    text += std::string(3000, 'x'); // longer than one read chunk
    text += '\0';
    text += "after a zero byte";
    util::FileSystem::WriteFile(path, text);
    EXPECT_TRUE(util::FileSystem::FileExists(path));
    EXPECT_EQ(static_cast<long>(text.size()), util::FileSystem::GetFileSize(path));
    EXPECT_EQ(text, util::FileSystem::ReadWholeFile(path));

    util::FileSystem::WriteFile(path, "short");
    EXPECT_EQ("short", util::FileSystem::ReadWholeFile(path));

    util::FileSystem::RenameFile(path, Path("b.cfg"));
    EXPECT_FALSE(util::FileSystem::FileExists(path));
    EXPECT_EQ("short", util::FileSystem::ReadWholeFile(Path("b.cfg")));
    util::FileSystem::EraseFile(Path("b.cfg"));
    EXPECT_FALSE(util::FileSystem::FileExists(Path("b.cfg")));
    util::FileSystem::EraseFile(Path("never-there"));
}

TEST_F(FileSystemDir, MissingFilesThrowTheOpenFailure)
{
    std::string path = Path("missing.cfg");
    EXPECT_EQ("Failed to open file \"" + path + "\"",
              ExceptionText([&] { util::FileSystem::ReadWholeFile(path); }));
    EXPECT_EQ("Failed to open file \"" + path + "\"",
              ExceptionText([&] { util::FileSystem::GetFileSize(path); }));
    // A failed rename is logged, not thrown, naming both paths in quotes.
    logtest::LogCapture errors(logging::Error);
    util::FileSystem::RenameFile(path, Path("other.cfg"));
    EXPECT_FALSE(util::FileSystem::FileExists(Path("other.cfg")));
    const std::string expected = "Failed to rename \"" + path + "\" to \"" + Path("other.cfg") + "\": ";
    EXPECT_TRUE(errors.Has(expected)) << expected;
}

TEST_F(FileSystemDir, ListingSeparatesDirectoriesAndMatchesPatterns)
{
    std::filesystem::create_directories(m_dir / "qlexlets");
    std::filesystem::create_directories(m_dir / "more.qlx");
    util::FileSystem::WriteFile(Path("welcome.qlx"), "");
    util::FileSystem::WriteFile(Path("_AUTOSAVE.qlx"), "");
    util::FileSystem::WriteFile(Path("notes.txt"), "");

    std::vector<std::string> dirs = util::FileSystem::DirsInDir(m_dir.string());
    std::sort(dirs.begin(), dirs.end());
    EXPECT_EQ((std::vector<std::string>{"more.qlx", "qlexlets"}), dirs);

    std::vector<std::string> scenes = util::FileSystem::FilesInDir(m_dir.string(), "*.qlx");
    std::sort(scenes.begin(), scenes.end());
    EXPECT_EQ((std::vector<std::string>{"_AUTOSAVE.qlx", "welcome.qlx"}), scenes);
    EXPECT_EQ(3u, util::FileSystem::FilesInDir(m_dir.string(), "*").size());

    EXPECT_TRUE(util::FileSystem::FilesInDir(Path("nowhere"), "*").empty());
    EXPECT_TRUE(util::FileSystem::DirsInDir(Path("nowhere")).empty());
}

TEST_F(FileSystemDir, FILEWrapperReportsEveryFailure)
{
    std::string path = Path("data.bin");
    EXPECT_EQ("Failed to open file \"" + path + "\"", ExceptionText([&] { util::FILEWrapper(path, "rb"); }));
    // A folder isn't a file, though fopen takes it.
    EXPECT_EQ("Failed to open file \"" + m_dir.string() + "\"",
              ExceptionText([&] { util::FILEWrapper(m_dir.string(), "rb"); }));
    EXPECT_EQ("Failed to open file \"" + m_dir.string() + "\"",
              ExceptionText([&] { util::FileSystem::GetFileSize(m_dir.string()); }));
    EXPECT_EQ("Failed to open file \"" + m_dir.string() + "\"",
              ExceptionText([&] { util::FileSystem::ReadWholeFile(m_dir.string()); }));

    util::FILEWrapper out(path, "wb");
    const char bytes[] = {1, 2, 3, 4};
    out.Write(bytes, sizeof(bytes));
    out.Close();

    util::FILEWrapper in(path, "rb");
    char back[4] = {};
    in.Read(back, 4);
    EXPECT_EQ(0, std::memcmp(bytes, back, 4));
    EXPECT_EQ("Failed to read 1 bytes", ExceptionText([&] { in.Read(back, 1); }));
    EXPECT_EQ("Failed to seek in FILE", ExceptionText([&] { in.Seek(-100, SEEK_SET); }));
    in.Close();
}

TEST(FileSystem_Random, DrawsStayInTheirRanges)
{
    util::Random random;
    for (int i = 0; i < 1000; ++i)
    {
        float u = random.GetUniform(-2.0f, 3.0f);
        EXPECT_GE(u, -2.0f);
        EXPECT_LE(u, 3.0f);
        int n = random.GetUniformInt(5, 8);
        EXPECT_GE(n, 5);
        EXPECT_LT(n, 8);
        math::Vec2 v = random.GetUniformVec2();
        EXPECT_LE(std::abs(v.x), 1.0f);
        EXPECT_LE(std::abs(v.y), 1.0f);
        math::Vec2 p = random.GetPointInCircle(2.0f);
        EXPECT_LE(p.x * p.x + p.y * p.y, 4.0f + 1e-5f);
    }
    EXPECT_EQ(3, random.GetUniformInt(3, 4));
    EXPECT_THROW(random.GetUniformInt(4, 4), BadCoderException);
    EXPECT_THROW(random.GetUniform(1.0f, 0.0f), BadCoderException);
}

TEST(FileSystem_Random, ASeedRepeatsEveryDrawOfOldAndNewGenerators)
{
    // A generator made before the seed, used before and after it, and generators made after it.
    util::Random old;
    old.GetUniform(0.0f, 1.0f);
    auto draws = [&old]
    {
        std::vector<float> values;
        for (int i = 0; i < 3; ++i)
            values.push_back(old.GetUniform(0.0f, 1.0f));
        util::Random fresh;
        values.push_back(fresh.GetNormalVec2().x);
        util::Random another;
        values.push_back(another.GetUniform(0.0f, 1.0f));
        return values;
    };
    util::Random::SetSeed(42);
    EXPECT_EQ(42u, util::Random::GetSeed());
    const std::vector<float> first = draws();
    util::Random::SetSeed(42);
    EXPECT_EQ(first, draws());
    util::Random::SetSeed(43);
    EXPECT_NE(first, draws());
}
