#include "app/Language.h"

#include "app/AppSettings.h"
#include "logging/Exception.h"
#include "logging/Log.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/ValueConversions.h"
#include "util/FileSystem.h"

namespace app
{

namespace
{
const size_t TABLE_CAPACITY = 3;
const char* const HELP_SUFFIX = "_help.txt";
const char* const NO_HELP_TEXT =
    "WARNING: Language file missing (see console and Logfile.txt for details)\n\n"
    "Play around a bit, you'll figure it out. Ctrl-Z undos.";
} // namespace

Language::Language() : m_current(TABLE_CAPACITY), m_english(TABLE_CAPACITY)
{
    LoadLanguage(ENGLISH);
    m_english = m_current;
    AppSettings* settings = AppSettings::GetInstancePtr();
    settings->m_language->AddChangeCallback(util::MakeCallback(&Language::OnLanguageSettingChange, this));
    const util::String chosen = settings->m_language;
    if (chosen != ENGLISH)
        LoadLanguage(chosen);
}

Language::~Language() = default;

void Language::OnLanguageSettingChange()
{
    LoadLanguage(AppSettings::GetInstancePtr()->m_language);
}

bool Language::Has(const util::String& key) const
{
    return m_current.Contains(key) || m_english.Contains(key);
}

util::String Language::Get(const util::String& key) const
{
    if (const util::String* text = m_current.TryGet(key))
        return *text;
    if (const util::String* text = m_english.TryGet(key))
        return *text;
    Log(logging::Error, "English and " + m_languageName + " translation missing for " + key);
    return "[" + key + "]";
}

void Language::LoadLanguage(util::String name)
{
    Log(logging::Info, "Loading language " + name + "...");
    try
    {
        const util::String text = util::FileSystem::ReadWholeFile(
            util::FileSystem::GetInstancePtr()->LanguageDir() + name + ".cfg");
        m_current.clear();
        script::Parser* parser = script::Parser::GetInstancePtr();
        const script::ClosurePtr closure =
            QLEX_NEW new script::Closure("Language_closure", parser->GetRootClosure());
        const script::CodeBlockPtr block = parser->Parse(text);
        if (!block)
        {
            Log(logging::Error, "Failed to load language " + name);
            return;
        }
        for (const script::ExpressionPtr& statement : block->GetExpressions())
        {
            const auto assignment = util::dynamic_pointer_cast<script::Assignment>(statement);
            if (!assignment)
                continue;
            try
            {
                const script::ObjectPtr value = assignment->GetValue()->Evaluate(closure);
                m_current[assignment->GetTarget()->GetName()] = script::ObjectToValue<util::String>(value);
            }
            catch (std::exception& e)
            {
                Log(logging::Error, "Error in language file " + name + ": " + e.what());
            }
        }
        m_languageName = name;
        ReportDifferences();
    }
    catch (std::exception& e)
    {
        Log(logging::Error, "Error loading language " + name + ": " + e.what());
        return;
    }
    m_onLoad.CallAll();
}

void Language::ReportDifferences() const
{
    if (m_english.empty())
        return;
    for (const auto& entry : m_english)
    {
        if (!m_current.Contains(entry.first))
            Log(logging::Error, "Missing " + m_languageName + " translation for " + entry.first);
    }
    for (const auto& entry : m_current)
    {
        if (!m_english.Contains(entry.first))
            Log(logging::Error,
                m_languageName + " had \"" + entry.first + "\" which was not found in the english original");
    }
}

util::String Language::HelpText() const
{
    const util::String dir = util::FileSystem::GetInstancePtr()->LanguageDir();
    const util::String chosen = AppSettings::Exists()
                                    ? util::String(AppSettings::GetInstancePtr()->m_language)
                                    : util::String(ENGLISH);
    for (const util::String& path : {dir + chosen + HELP_SUFFIX, dir + ENGLISH + HELP_SUFFIX})
    {
        try
        {
            return util::FileSystem::ReadWholeFile(path);
        }
        catch (std::exception&)
        {
            Log(logging::Error, "Missing help file: " + path);
        }
    }
    return NO_HELP_TEXT;
}

util::String Language::AboutText() const
{
    return util::FileSystem::NameAndVersion() + "\n" + Get("AboutText");
}

} // namespace app
