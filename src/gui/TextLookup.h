#pragma once
// The texts that the toolkit shows by key (tooltips of its controls). The toolkit has no language table of
// its own: the application implements this and registers it at start.

#include <string>

namespace gui
{

class TextLookup
{
public:
    virtual ~TextLookup() = default;
    virtual bool Has(const std::string& key) const = 0;
    virtual std::string Get(const std::string& key) const = 0;
};

// Null to unregister.
void SetTextLookup(TextLookup* lookup);
TextLookup* GetTextLookup();

// Through the registered lookup; without one no key is known.
bool HasText(const std::string& key);
// Without a lookup, or for an unknown key, the key in square brackets.
std::string GetText(const std::string& key);

} // namespace gui
