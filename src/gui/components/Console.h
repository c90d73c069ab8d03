#pragma once

#include "gui/components/Component.h"
#include "gui/components/ConsoleSettings.h"
#include "gui/components/TextBox.h"

#include <string>
#include <vector>

namespace gui
{

// The panel that slides down from the top of the window: the user types statements of the script language
// into its input line and reads what they give, what scripts print, and the log. Its settings are
// "Console" of the scripts (ConsoleSettings).
//
// It listens above a focused text box, so that it sees keys first: while shut it takes only the keys that
// open it; while open it keeps Return, Tab, the arrows up and down and the page keys to itself and passes
// the rest on to its input line.
class Console : public Component
{
public:
    static const int PRIORITY = 76;
    // Lines kept for scrolling back; older ones go.
    static const size_t MAX_LINES = 5000;

    Console();
    ~Console() override;

    // Without echo: what scripts print and the log shows.
    void Print(const std::string& text);
    // Each line of the text joins the lines, behind "> " when echoed. An echoed text is a command: it joins
    // the history, unless it equals the last entry, and runs; a result that isn't empty is printed.
    void PrintLine(const std::string& text, bool echo);
    void Clear();
    // Opens or shuts. A toggle during the slide turns it back from where it stands. Text left in the input
    // joins the history.
    void Toggle();
    bool IsOpen() const { return m_open; }
    void SetInputText(const std::string& text);
    std::string GetInputText() const { return m_input->GetText(); }

    const std::vector<std::string>& GetLines() const { return m_lines; }
    const std::vector<std::string>& GetHistory() const { return m_history; }
    // Lines hidden at the bottom.
    int GetScroll() const { return m_scroll; }
    const util::SharedPtr<TextField>& GetInput() const { return m_input; }
    // How far the panel has come down, from 0 (shut) to 1 (open); false while nothing of it shows.
    bool GetShownPart(float& part) const;

    void OnKeyEvent(const input::KeyEvent& event) override;
    void Update(float dt) override;
    // Across the window's width, from the top down to `height`, in the background colour at `alpha`.
    void DrawBackground(float alpha, float height) const;
    void DrawCompAndChildren() const override;

private:
    bool IsToggleKey(const input::KeyEvent& event) const;
    // Completes the dotted name before the cursor; more than one candidate are listed.
    void Complete();
    void HistoryUp();
    void HistoryDown();
    void AddToHistory(const std::string& command);
    void ShowHistoryEntry();
    // The panel's height in GUI units for the shown part, and the input's place at its bottom.
    float PanelHeight(float part) const;
    void PlaceInput(float panelHeight) const;

    util::SharedPtr<ConsoleSettings> m_settings;
    std::vector<std::string> m_lines;
    std::vector<std::string> m_history;
    int m_scroll;
    int m_historyIndex;
    double m_toggleTime;
    bool m_open;
    util::SharedPtr<TextField> m_input;
};

// Shows a line of the log in the console of the GUI, if there is one.
void PrintConsole(const std::string& text);

} // namespace gui
