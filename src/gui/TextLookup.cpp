#include "gui/TextLookup.h"

namespace gui
{

namespace
{
TextLookup* s_lookup = nullptr;
} // namespace

void SetTextLookup(TextLookup* lookup)
{
    s_lookup = lookup;
}

TextLookup* GetTextLookup()
{
    return s_lookup;
}

bool HasText(const std::string& key)
{
    return s_lookup && s_lookup->Has(key);
}

std::string GetText(const std::string& key)
{
    if (!s_lookup)
        return "[" + key + "]";
    return s_lookup->Get(key);
}

} // namespace gui
