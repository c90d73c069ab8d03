// The language table over files of our own in a scratch work directory: the English table is read once,
// when the table is first used, so every test here shares the English file written below.
#include "app/Language.h"
#include "app/Action.h"
#include "app/AppSettings.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

const char* const ENGLISH_TEXT = "// a comment, as in any script\n"
                                 "Undo = \"Undo\";\n"
                                 "Redo = \"Re\" + \"do\";\n"
                                 "UndoBox = \"draw box\";\n"
                                 "Only_English = \"only here\";\n"
                                 "Sim.gravity;\n";

std::string LanguageDir()
{
    return util::FileSystem::GetInstancePtr()->LanguageDir();
}

void WriteLanguageFile(const std::string& leaf, const std::string& text)
{
    util::FileSystem::WriteFile(LanguageDir() + leaf, text);
}

class LanguageTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        util::FileSystem* files = util::FileSystem::GetInstancePtr();
        files->SetWorkDir(testing::TempDir() + "qlex_language/");
        std::system(("mkdir -p '" + LanguageDir() + "'").c_str());
        WriteLanguageFile("English.cfg", ENGLISH_TEXT);
        app::AppSettings::GetInstancePtr()->m_language = util::String("English");
        app::Language::GetInstancePtr();
    }
    void TearDown() override { Switch("English"); }
    static void Switch(const std::string& name) { app::AppSettings::GetInstancePtr()->m_language = name; }
    static app::Language& Language() { return *app::Language::GetInstancePtr(); }
};

TEST_F(LanguageTest, EnglishTextsComeFromAssignmentsAndOtherStatementsAreSkipped)
{
    EXPECT_EQ(Language().Get("Undo"), "Undo");
    // A value is evaluated, so it may be an expression.
    EXPECT_EQ(Language().Get("Redo"), "Redo");
    EXPECT_TRUE(Language().Has("UndoBox"));
    EXPECT_FALSE(Language().Has("gravity"));
    EXPECT_EQ(Language().GetLanguageName(), "English");
}

TEST_F(LanguageTest, MissingTranslationFallsBackToEnglishAndIsListedOnceAtLoad)
{
    WriteLanguageFile("Testish.cfg", "Undo = \"Zurueck\";\nRedo = \"Nochmal\";\nUndoBox = \"Kasten\";\n"
                                     "Extra = \"extra\";\n");
    logtest::LogCapture log(logging::Error);
    Switch("Testish");
    EXPECT_EQ(Language().GetLanguageName(), "Testish");
    EXPECT_EQ(Language().Get("Undo"), "Zurueck");
    EXPECT_EQ(Language().Get("Only_English"), "only here");
    EXPECT_TRUE(Language().Has("Only_English"));
    EXPECT_EQ(log.Count("Missing Testish translation for Only_English"), 1u);
    EXPECT_EQ(log.Count("Missing Testish translation for"), 1u);
    EXPECT_EQ(log.Count("Testish had \"Extra\" which was not found in the english original"), 1u);
    // A get of a key that English has is no error.
    EXPECT_EQ(log.lines.size(), 2u);
}

TEST_F(LanguageTest, KeyInNeitherTableShowsBracketedAndLogsAtEachGet)
{
    logtest::LogCapture log(logging::Error);
    EXPECT_EQ(Language().Get("NoSuchKey"), "[NoSuchKey]");
    EXPECT_FALSE(Language().Has("NoSuchKey"));
    EXPECT_EQ(log.Count("English and English translation missing for NoSuchKey"), 1u);
}

TEST_F(LanguageTest, UndoStepsAreNamedByTheTable)
{
    class Step : public app::Action
    {
    public:
        Step() : Action("UndoBox") {}
        void Do() override {}
        void Undo() override {}
    };
    util::SharedPtr<app::Action> step = QLEX_NEW new Step();
    EXPECT_EQ(step->Name(), "draw box");
    WriteLanguageFile("Stepish.cfg", "UndoBox = \"Kasten zeichnen\";\n");
    Switch("Stepish");
    EXPECT_EQ(step->Name(), "Kasten zeichnen");
}

TEST_F(LanguageTest, ParseErrorKeepsThePreviousTableAndSaysSo)
{
    WriteLanguageFile("Broken.cfg", "Undo = \"unclosed;\nRedo = (;\n");
    logtest::LogCapture log(logging::Error);
    Switch("Broken");
    EXPECT_EQ(log.Count("Failed to load language Broken"), 1u);
    EXPECT_EQ(Language().Get("Undo"), "Undo");
    EXPECT_EQ(Language().Get("Only_English"), "only here");
}

TEST_F(LanguageTest, UnreadableFileKeepsThePreviousTableAndSaysSo)
{
    WriteLanguageFile("Partial.cfg", "Undo = \"Partial undo\";\n");
    Switch("Partial");
    logtest::LogCapture log(logging::Error);
    Switch("Nowhere");
    EXPECT_EQ(log.Count("Error loading language Nowhere: "), 1u);
    EXPECT_EQ(Language().Get("Undo"), "Partial undo");
    EXPECT_EQ(Language().GetLanguageName(), "Partial");
}

TEST_F(LanguageTest, WrongTypeLosesOnlyThatStatement)
{
    WriteLanguageFile("Typed.cfg", "Undo = [1, 2];\nRedo = \"Again\";\nUndoBox = Sim.nothingHere;\n"
                                   "Only_English = \"also here\";\n");
    logtest::LogCapture log(logging::Error);
    Switch("Typed");
    EXPECT_EQ(log.Count("Error in language file Typed: "), 2u);
    EXPECT_EQ(Language().Get("Redo"), "Again");
    EXPECT_EQ(Language().Get("Only_English"), "also here");
    // What the file got wrong shows in English.
    EXPECT_EQ(Language().Get("Undo"), "Undo");
    EXPECT_EQ(log.Count("Missing Typed translation for Undo"), 2u); // Undo and UndoBox
    EXPECT_EQ(log.Count("Missing Typed translation for"), 2u);
}

TEST_F(LanguageTest, EachLoadRunsTheLoadCallbacksAndAFailedOneDoesNot)
{
    struct Counter : util::Pointee
    {
        void Count() { ++count; }
        int count = 0;
    };
    util::SharedPtr<Counter> counter = QLEX_NEW new Counter();
    Language().AddOnLoadCallback(util::MakeCallback(&Counter::Count, counter.get()));
    WriteLanguageFile("Counted.cfg", "Undo = \"U\";\n");
    Switch("Counted");
    EXPECT_EQ(counter->count, 1);
    Switch("NotThere");
    EXPECT_EQ(counter->count, 1);
}

TEST_F(LanguageTest, HelpFallsBackToEnglishAndThenToAWarning)
{
    logtest::LogCapture log(logging::Error);
    EXPECT_NE(Language().HelpText().find("WARNING: Language file missing"), std::string::npos);
    EXPECT_EQ(log.Count("Missing help file: " + LanguageDir() + "English_help.txt"), 1u);
    WriteLanguageFile("English_help.txt", "Draw things.");
    WriteLanguageFile("Helpish.cfg", "Undo = \"H\";\n");
    Switch("Helpish");
    EXPECT_EQ(Language().HelpText(), "Draw things.");
    WriteLanguageFile("Helpish_help.txt", "Zeichne Dinge.");
    EXPECT_EQ(Language().HelpText(), "Zeichne Dinge.");
    util::FileSystem::EraseFile(LanguageDir() + "English_help.txt");
    util::FileSystem::EraseFile(LanguageDir() + "Helpish_help.txt");
}

TEST_F(LanguageTest, AboutTextIsNameVersionAndTheKeysText)
{
    WriteLanguageFile("About.cfg", "AboutText = \"Made by us.\";\n");
    Switch("About");
    EXPECT_EQ(Language().AboutText(), util::FileSystem::NameAndVersion() + "\nMade by us.");
}

} // namespace
