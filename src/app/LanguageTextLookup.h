#pragma once
// The toolkit's texts by key (the tooltips of its controls) from the language table, while the window
// program runs: App registers it when made and withdraws it when it goes.

#include "gui/TextLookup.h"

namespace app
{

class LanguageTextLookup : public gui::TextLookup
{
public:
    bool Has(const std::string& key) const override;
    std::string Get(const std::string& key) const override;

    static void Register();
    static void Unregister();
};

} // namespace app
