// The language files that ship, read as the program reads them.
#include "app/AppSettings.h"
#include "app/Language.h"
#include "logging/Log.h"

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
    std::vector<std::string> errors;
    logging::Logger::GetInstancePtr()->Update();
    logging::Logger::GetInstancePtr()->Update();
    util::SharedPtr<logging::ILogger> sink = QLEX_NEW new logging::FunctionLogger(
        logging::Error, [&errors](const std::string& text) { errors.push_back(text); });
    logging::Logger::GetInstancePtr()->AddLogger(sink);
    settings->m_language = util::String("German");
    logging::Logger::GetInstancePtr()->RemoveLogger(sink);
    EXPECT_TRUE(errors.empty()) << errors.front();
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
