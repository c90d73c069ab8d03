#pragma once
// Every text that a user sees, by key. A language is a script file of assignments, "language/NAME.cfg";
// English stands behind the chosen language, so a missing translation shows in English and a key that
// neither has shows as "[key]".

#include "util/Callback.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"

namespace app
{

class Language : public util::Pointee, public util::Singleton<Language>
{
public:
    static constexpr const char* ENGLISH = "English";

    // Loads English, then the language of the setting "App.language", and follows that setting.
    Language();
    ~Language() override;

    bool Has(const util::String& key) const;
    util::String Get(const util::String& key) const;
    util::String HelpText() const;
    util::String AboutText() const;
    // A language that can't be read leaves the table as it was.
    void LoadLanguage(util::String name);

    const util::String& GetLanguageName() const { return m_languageName; }
    // Run after each load, so that what shows texts can be rebuilt.
    void AddOnLoadCallback(util::CallbackPtr callback) { m_onLoad.Add(callback); }

private:
    void OnLanguageSettingChange();
    void ReportDifferences() const;

    util::HashMap<util::String, util::String> m_current;
    util::HashMap<util::String, util::String> m_english;
    util::String m_languageName;
    util::CallbackSet m_onLoad;
};

} // namespace app
