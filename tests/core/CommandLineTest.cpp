#include "core/CommandLine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/stat.h>

using core::AsksForVersion;
using core::SceneToOpen;

TEST(CommandLine, ArgumentsSkipTheProgramName)
{
    char program[] = "qlex";
    char first[] = "a";
    char second[] = "b c";
    char* argv[] = {program, first, second};
    EXPECT_EQ(core::ArgumentsOf(3, argv), (std::vector<std::string>{"a", "b c"}));
    EXPECT_TRUE(core::ArgumentsOf(1, argv).empty());
}

TEST(CommandLine, VersionIsAskedByEitherSpellingAnywhere)
{
    EXPECT_TRUE(AsksForVersion({"-version"}));
    EXPECT_TRUE(AsksForVersion({"/version"}));
    EXPECT_TRUE(AsksForVersion({"scene.qlx", "--version"}));
    EXPECT_TRUE(AsksForVersion({"x-versions"}));
    EXPECT_FALSE(AsksForVersion({}));
    EXPECT_FALSE(AsksForVersion({"version", "-v", "-Version"}));
}

TEST(CommandLine, SceneIsTheWholeLineWhenTheLastArgumentIsAScene)
{
    EXPECT_EQ(SceneToOpen({"/home/u/boat.qlx"}), "/home/u/boat.qlx");
    EXPECT_EQ(SceneToOpen({"BOAT.QLX"}), "BOAT.QLX");
    // A path with blanks arrives in pieces and is joined with one blank each.
    EXPECT_EQ(SceneToOpen({"/home/u/my", "boat.qlx"}), "/home/u/my boat.qlx");
    EXPECT_EQ(SceneToOpen({"/a", "b", "c.Qlx"}), "/a b c.Qlx");
}

TEST(CommandLine, NoSceneUnlessTheLastArgumentEndsInTheExtension)
{
    EXPECT_EQ(SceneToOpen({}), std::nullopt);
    EXPECT_EQ(SceneToOpen({"boat.qlx", "-fast"}), std::nullopt);
    EXPECT_EQ(SceneToOpen({"boat.qlx.txt"}), std::nullopt);
    EXPECT_EQ(SceneToOpen({"qlx"}), std::nullopt);
    EXPECT_EQ(SceneToOpen({".qlx"}), ".qlx");
}

TEST(CommandLine, FileAddressBecomesItsAbsolutePath)
{
    EXPECT_EQ(SceneToOpen({"file:///home/u/boat.qlx"}), "/home/u/boat.qlx");
    EXPECT_EQ(SceneToOpen({"FILE:///home/u/my", "boat.qlx"}), "/home/u/my boat.qlx");
    // Only a leading scheme is an address.
    EXPECT_EQ(SceneToOpen({"/x/file:///boat.qlx"}), "/x/file:///boat.qlx");
}

TEST(CommandLine, FileAddressDecodesItsEscapes)
{
    EXPECT_EQ(SceneToOpen({"file:///home/u/my%20boat%2Fnew.qlx"}), "/home/u/my boat/new.qlx");
    EXPECT_EQ(SceneToOpen({"file:///home/u/100%25.qlx"}), "/home/u/100%.qlx");
    // A "%" without two hex digits behind it stands for itself.
    EXPECT_EQ(SceneToOpen({"file:///home/u/50%off%2.qlx"}), "/home/u/50%off%2.qlx");
    // A plain path is a path even where it holds what an address would escape.
    EXPECT_EQ(SceneToOpen({"/home/u/my%20boat.qlx"}), "/home/u/my%20boat.qlx");
}

TEST(CommandLine, HelpIsAskedByItsOwnArgumentOnly)
{
    EXPECT_TRUE(core::AsksForHelp({"--help"}));
    EXPECT_TRUE(core::AsksForHelp({"scene.qlx", "-h"}));
    EXPECT_FALSE(core::AsksForHelp({}));
    EXPECT_FALSE(core::AsksForHelp({"help", "--helpful", "-help.qlx"}));
}

TEST(CommandLine, HelpGivesALineToEachArgument)
{
    std::vector<std::string> lines;
    std::istringstream text(core::HelpText());
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 4u) << core::HelpText();
    EXPECT_EQ(lines[0].rfind("Usage: qlex ", 0), 0u);
    const std::vector<std::vector<std::string>> arguments{
        {"SCENE.qlx", "file:///"}, {"-version", "/version"}, {"--help", "-h"}};
    for (size_t i = 0; i < arguments.size(); ++i)
    {
        for (const std::string& name : arguments[i])
            EXPECT_NE(lines[i + 1].find(name), std::string::npos) << name << " in: " << lines[i + 1];
    }
}

class ScenePathTest : public testing::Test
{
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/qlex-scenepath-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        std::filesystem::create_directories(m_dir / "here" / "sub");
        std::filesystem::create_directories(m_dir / "scenes" / "sub");
    }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }

    std::string Write(const std::string& name, const std::string& text) const
    {
        const std::filesystem::path path = m_dir / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }
    std::string Path(const std::string& name) const { return (m_dir / name).string(); }
    std::string Resolve(const std::string& path) const
    {
        return core::ResolveScenePath(path, Path("here"), Path("scenes") + "/");
    }

    std::filesystem::path m_dir;
};

TEST_F(ScenePathTest, RelativePathsStartInTheCurrentFolderAndBareNamesFallBackToTheScenes)
{
    Write("here/boat.qlx", "");
    Write("scenes/welcome.qlx", "");
    Write("scenes/boat.qlx", "");
    Write("scenes/sub/deep.qlx", "");

    EXPECT_EQ(Resolve("/elsewhere/my boat.qlx"), "/elsewhere/my boat.qlx");
    EXPECT_EQ(Resolve("boat.qlx"), Path("here/boat.qlx"));
    EXPECT_EQ(Resolve("./sub/../boat.qlx"), Path("here/boat.qlx"));
    EXPECT_EQ(Resolve("welcome.qlx"), Path("scenes/welcome.qlx"));
    // A path with folders is the user's, even where the scenes folder has one of that name.
    EXPECT_EQ(Resolve("sub/deep.qlx"), Path("here/sub/deep.qlx"));
    // Found nowhere: the path the user meant, for the message that says it's missing.
    EXPECT_EQ(Resolve("my boat.qlx"), Path("here/my boat.qlx"));
}

TEST_F(ScenePathTest, SceneFilesAreTextThatQlexWroteOrThatParses)
{
    EXPECT_EQ(core::WhyNoScene(Write("saved.qlx", "// Qlex scene created by Qlex 1\nScene.addBox {\n")),
              std::nullopt);
    EXPECT_EQ(core::WhyNoScene(Write("qlexlet.qlx", "// Qlexlet created by Qlex 1\n")), std::nullopt);
    EXPECT_EQ(core::WhyNoScene(Write("old.qlx", "version = 1;\n")), std::nullopt);
    EXPECT_EQ(core::WhyNoScene(
                  Write("by hand.qlx", "// mine\r\nScene.addBox {\n\tpos = [0, 1]; size = [1, 1]\n};\n")),
              std::nullopt);
}

TEST_F(ScenePathTest, EveryOtherFileSaysWhyItIsNoScene)
{
    const auto why = [](const std::string& path) { return core::WhyNoScene(path).value_or("a scene"); };
    EXPECT_EQ(why(Path("missing.qlx")), "there is no such file");
    EXPECT_EQ(why(Path("scenes")), "it is a folder");
    EXPECT_EQ(why(Write("empty.qlx", "")), "it is empty");
    EXPECT_EQ(why(Write("picture.qlx", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16))), "it is not text");
    // Data that only shows past the first bytes.
    EXPECT_EQ(why(Write("late.qlx", std::string(100000, 'x') + '\0')), "it is not text");
    EXPECT_EQ(why(Write("broken.qlx", "Scene.addBox {\n    pos = [0, 1\n")),
              "its text is no script that Qlex can read");
    EXPECT_EQ(why(Write("quote.qlx", "\"an open quote\n")), "its text is no script that Qlex can read");
    ASSERT_EQ(mkfifo(Path("pipe.qlx").c_str(), 0600), 0);
    EXPECT_EQ(why(Path("pipe.qlx")), "it is no ordinary file");
}
