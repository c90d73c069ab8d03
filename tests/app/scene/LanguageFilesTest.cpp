// The language files that ship, read as the program reads them.
#include "app/AppSettings.h"
#include "app/Language.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

TEST(LanguageFiles, GermanReadsWithEveryTranslationAndSwitchesBack)
{
    app::Language* language = app::Language::GetInstancePtr();
    app::AppSettings* settings = app::AppSettings::GetInstancePtr();
    ASSERT_EQ(language->Get("Undo"), "Undo");
    {
        logtest::LogCapture errors(logging::Error);
        settings->m_language = util::String("German");
        EXPECT_TRUE(errors.lines.empty()) << errors.lines.front();
    }
    EXPECT_EQ(language->GetLanguageName(), "German");
    // Latin-1, as the font is.
    EXPECT_EQ(language->Get("Undo"), "R\xfc"
                                     "ckg\xe4ngig");
    EXPECT_NE(language->HelpText().find("Zeichnen"), std::string::npos);
    settings->m_language = util::String("English");
    EXPECT_EQ(language->Get("Undo"), "Undo");
    EXPECT_NE(language->HelpText().find("Drawing"), std::string::npos);
}

} // namespace
