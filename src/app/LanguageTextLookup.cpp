#include "app/LanguageTextLookup.h"

#include "app/Language.h"

namespace app
{

namespace
{
LanguageTextLookup s_lookup;
} // namespace

bool LanguageTextLookup::Has(const std::string& key) const
{
    return Language::GetInstancePtr()->Has(key);
}

std::string LanguageTextLookup::Get(const std::string& key) const
{
    return Language::GetInstancePtr()->Get(key);
}

void LanguageTextLookup::Register()
{
    gui::SetTextLookup(&s_lookup);
}

void LanguageTextLookup::Unregister()
{
    if (gui::GetTextLookup() == &s_lookup)
        gui::SetTextLookup(nullptr);
}

} // namespace app
