#include "gui/TextProbe.h"

#include "gui/components/TextBox.h"
#include "logging/Log.h"

#include <cstdlib>

namespace gui
{

namespace
{
const char* const PROBE_VARIABLE = "QLEX_TEXT_PROBE";
// In GUI units: clear of the window's corner, and wide enough to click into.
const math::Vec2 PROBE_POS(8.0f, 8.0f);
const math::Vec2 PROBE_SIZE(320.0f, 16.0f);

class TextProbe : public TextField
{
public:
    explicit TextProbe(const std::string& text) : TextField(text)
    {
        GetTextEditor()->AddChangeCallback(util::MakeCallback(&TextProbe::LogText, this));
    }
    void LogText() { Log(logging::Info, "Text probe: " + GetText()); }
};
} // namespace

void AddTextProbe(Component& root)
{
    const char* text = std::getenv(PROBE_VARIABLE);
    if (!text)
        return;
    util::SharedPtr<TextProbe> probe = QLEX_NEW new TextProbe(text);
    probe->SetInnerSize(PROBE_SIZE);
    probe->SetOuterPos(PROBE_POS);
    probe->GetTextEditor()->MoveCursorToEnd();
    root.AddComponent(probe);
    probe->SetEnabled(true);
    probe->LogText();
}

} // namespace gui
