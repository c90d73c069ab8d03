#include "core/CommandLine.h"

#include <gtest/gtest.h>

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
