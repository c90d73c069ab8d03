#include "gui/components/Console.h"

#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "input/Clock.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "script/Parser.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <GL/gl.h>

#include <algorithm>

namespace gui
{

namespace
{
// So far back that the console starts shut, with no slide to show.
const double LONG_AGO = 10000.0;
const char* const ECHO_MARK = "> ";
// In GUI units: the lines and the input keep this far from the panel's left edge and bottom, and the text
// this far from both sides of the window.
const float MARGIN = 8.0f;
// The keys that open and shut the console: F11, the keys left of 1 on several keyboards, and the character
// those type.
const SDLKey TOGGLE_KEYS[] = {SDLK_F11, SDLK_WORLD_7, SDLK_WORLD_29, SDLK_BACKQUOTE};
const unsigned char TOGGLE_CHARACTER = 0xA7;
} // namespace

Console::Console()
    : m_settings(ConsoleSettings::GetInstancePtr()), m_scroll(0), m_historyIndex(-1),
      m_toggleTime(input::Clock::Now() - LONG_AGO), m_open(false), m_input(QLEX_NEW new TextField())
{
    SetPriority(PRIORITY);
    m_fontFormater.SetColor(math::Vec4(1.0f, 1.0f, 1.0f, 1.0f));
    // A new box takes the keyboard; the input line takes it only when the console opens.
    m_input->SetEnabled(false);
    m_input->SetEnableByClick(true);
    m_input->SetEnableByDrag(true);
    m_input->SetLoseFocusOutside(false);
    m_input->SetClickReleases(false);
    m_input->SetFloating(true);
    m_input->SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
    // The history of commands is the input's undo: its typing stays out of the scene's history.
    m_input->GetTextEditor()->SetUndoable(false);
    m_settings->SetClearAction([this] { Clear(); });
    script::Parser::GetInstancePtr()->SetOutputFunction([this](const util::String& text) { Print(text); });
}

Console::~Console()
{
    m_settings->SetClearAction(nullptr);
    if (script::Parser::Exists())
        script::Parser::GetInstancePtr()->SetOutputFunction([](const util::String& text)
                                                            { Log(logging::Info, text); });
}

void Console::Print(const std::string& text)
{
    PrintLine(text, false);
}

void Console::PrintLine(const std::string& text, bool echo)
{
    for (const std::string& line : util::Split(text, '\n'))
        m_lines.push_back(echo ? ECHO_MARK + line : line);
    if (m_lines.size() > MAX_LINES)
        m_lines.erase(m_lines.begin(), m_lines.begin() + static_cast<long>(m_lines.size() - MAX_LINES));
    m_scroll = 0;
    m_historyIndex = -1;
    if (!echo)
        return;
    AddToHistory(text);
    const std::string result = script::Parser::GetInstancePtr()->ExecuteToString(text);
    if (!result.empty())
        PrintLine(result, false);
}

void Console::Clear()
{
    m_lines.clear();
    m_scroll = 0;
}

void Console::AddToHistory(const std::string& command)
{
    if (m_history.empty() || m_history.back() != command)
        m_history.push_back(command);
}

void Console::SetInputText(const std::string& text)
{
    // The field only ever grows with its text: let it shrink to a shorter one.
    m_input->SetInnerSize(math::Vec2(0.0f, 0.0f));
    m_input->SetText(text);
}

void Console::Toggle()
{
    m_open = !m_open;
    const double now = input::Clock::Now();
    const double delay = m_settings->GetDelay();
    const double elapsed = now - m_toggleTime;
    // A slide cut short runs back from where it stands: as far into the new slide as the old one had left.
    m_toggleTime = elapsed >= delay ? now : now - (delay - elapsed);
    const std::string left = m_input->GetText();
    if (!left.empty())
    {
        AddToHistory(left);
        SetInputText("");
    }
    m_scroll = 0;
    m_historyIndex = -1;
    if (m_open)
    {
        m_input->SetEnabled(true);
        AddComponent(m_input);
    }
    else
    {
        m_input->SetEnabled(false);
        RemoveComponent(m_input);
    }
}

bool Console::IsToggleKey(const input::KeyEvent& event) const
{
    if (std::find(std::begin(TOGGLE_KEYS), std::end(TOGGLE_KEYS), event.key) != std::end(TOGGLE_KEYS))
        return true;
    if (static_cast<unsigned char>(event.character) == TOGGLE_CHARACTER)
        return true;
    return m_open && event.key == SDLK_ESCAPE;
}

void Console::OnKeyEvent(const input::KeyEvent& event)
{
    if (!event.pressed || event.IsHandled())
    {
        Component::OnKeyEvent(event);
        return;
    }
    if (IsToggleKey(event))
    {
        Toggle();
        event.SetHandled();
        return;
    }
    if (!m_open)
    {
        Component::OnKeyEvent(event);
        return;
    }
    event.SetHandled();
    const int lineCount = static_cast<int>(m_lines.size());
    switch (event.key)
    {
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
    {
        const std::string command = m_input->GetText();
        if (command.empty())
            return;
        SetInputText("");
        PrintLine(command, true);
        m_scroll = 0;
        m_historyIndex = -1;
        return;
    }
    case SDLK_TAB:
        if (event.alt)
            break;
        Complete();
        m_scroll = 0;
        return;
    case SDLK_PAGEUP:
        if (lineCount > 0)
            m_scroll = std::min(m_scroll + 1, lineCount - 1);
        return;
    case SDLK_PAGEDOWN:
        m_scroll = std::max(m_scroll - 1, 0);
        return;
    case SDLK_HOME:
        if (!event.ctrl)
            break;
        m_scroll = std::max(lineCount - 1, 0);
        return;
    case SDLK_END:
        if (!event.ctrl)
            break;
        m_scroll = 0;
        return;
    case SDLK_UP:
        if (m_history.empty())
            break;
        HistoryUp();
        m_scroll = 0;
        return;
    case SDLK_DOWN:
        HistoryDown();
        m_scroll = 0;
        return;
    default:
        break;
    }
    // Everything else is typing, for the input line and whoever listens after the console.
    event.SetHandled(false);
    Component::OnKeyEvent(event);
}

void Console::ShowHistoryEntry()
{
    SetInputText(m_history[static_cast<size_t>(m_historyIndex)]);
    m_input->GetTextEditor()->MoveCursorToEnd();
}

void Console::HistoryUp()
{
    if (m_historyIndex == -1)
    {
        m_historyIndex = static_cast<int>(m_history.size()) - 1;
        // What was typed is kept, one step down from the entry now on show.
        const std::string typed = m_input->GetText();
        if (!typed.empty() && typed != m_history.back())
            m_history.push_back(typed);
    }
    else
        m_historyIndex = std::max(m_historyIndex - 1, 0);
    ShowHistoryEntry();
}

void Console::HistoryDown()
{
    if (m_historyIndex == -1)
    {
        const std::string typed = m_input->GetText();
        if (!typed.empty())
        {
            AddToHistory(typed);
            SetInputText("");
        }
        return;
    }
    if (m_historyIndex >= static_cast<int>(m_history.size()) - 1)
    {
        m_historyIndex = -1;
        SetInputText("");
        return;
    }
    ++m_historyIndex;
    ShowHistoryEntry();
}

void Console::Complete()
{
    const util::SharedPtr<Text>& editor = m_input->GetTextEditor();
    const TextSelection& selection = editor->GetSelection();
    const TextPos end = std::max(selection.first, selection.second);
    const std::string line = editor->GetLines()[end.row].GetText();
    std::string head = line.substr(0, end.column);
    const std::string tail = line.substr(end.column);
    const std::vector<util::String> candidates = script::Parser::GetInstancePtr()->Expand(head);
    editor->SetLineText(end.row, head + tail);
    editor->SetCursor(TextPos(end.row, head.size()));
    if (candidates.size() < 2)
        return;
    Print("");
    for (const util::String& candidate : candidates)
        Print(candidate);
}

void Console::Update(float dt)
{
    float part = 0.0f;
    if (GetShownPart(part) && GUI::Exists())
    {
        const float height = PanelHeight(part);
        // The panel covers what lies under it, so that the mouse there belongs to the console.
        SetInnerSize(math::Vec2(GUI::GetInstancePtr()->GetSize().x, height));
        PlaceInput(height);
    }
    else
        SetInnerSize(math::Vec2(0.0f, 0.0f));
    Component::Update(dt);
}

bool Console::GetShownPart(float& part) const
{
    const bool animated = m_settings->m_fade || m_settings->m_scroll;
    const float delay = m_settings->GetDelay();
    if (!animated || delay <= 0.0f)
    {
        part = m_open ? 1.0f : 0.0f;
        return m_open;
    }
    float t = static_cast<float>((input::Clock::Now() - m_toggleTime) / delay);
    if (!m_open)
        t = 1.0f - t;
    if (t <= 0.0f)
        return false;
    if (t > 1.0f)
    {
        if (!m_open)
            return false;
        t = 1.0f;
    }
    part = t;
    return true;
}

float Console::PanelHeight(float part) const
{
    const float size = m_settings->GetScreenSize() * (m_settings->m_scroll ? part : 1.0f);
    return size * GUI::GetInstancePtr()->GetSize().y;
}

void Console::PlaceInput(float panelHeight) const
{
    const float width = GUI::GetInstancePtr()->GetSize().x - 2.0f * MARGIN;
    m_input->SetMaxSize(math::Vec2(std::max(width, 0.0f), math::INF));
    m_input->SetOuterPos(math::Vec2(MARGIN, panelHeight - MARGIN - m_input->GetOuterSize().y));
}

void Console::DrawBackground(float alpha, float height) const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    rendering::ColorPusher restore;
    if (m_settings->m_fade)
    {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    math::Vec4 color = m_settings->m_color;
    color.w *= alpha;
    renderer.SetColor4(color);
    renderer.DrawRectGUI(math::Vec2(0.0f, 0.0f), math::Vec2(GUI::GetInstancePtr()->GetSize().x, height));
}

void Console::DrawCompAndChildren() const
{
    float part = 0.0f;
    if (!GetShownPart(part) || !GUI::Exists())
        return;
    util::ScopeProfiler profiler("Console::Draw");
    const float height = PanelHeight(part);
    DrawBackground(part, height);

    FontFormater formater = m_fontFormater;
    rendering::ColorPusher restore;
    if (m_settings->m_fade)
    {
        math::Vec4 color = formater.GetColor();
        color.w *= part;
        formater.SetColor(color);
    }
    formater.SetMaxWidth(GUI::GetInstancePtr()->GetSize().x - 2.0f * MARGIN);
    PlaceInput(height);

    // Bottom up from just above the input, as far as the top of the window.
    float y = m_input->GetOuterPos().y;
    for (int i = static_cast<int>(m_lines.size()) - 1 - m_scroll; i >= 0; --i)
    {
        const TextFormat format = formater.FormatText(m_lines[static_cast<size_t>(i)]);
        // An empty line is a row of its own.
        y -= std::max(format.height, formater.GetCharHeight());
        if (y < 0.0f)
            break;
        formater.DrawText(math::Vec2(MARGIN, y), format);
    }
    if (m_settings->m_fade)
        rendering::Renderer::GetInstancePtr()->MulColor4(math::Vec4(1.0f, 1.0f, 1.0f, part));
    DrawChildren();
}

void PrintConsole(const std::string& text)
{
    if (GUI::Exists() && GUI::GetInstancePtr()->GetConsole())
        GUI::GetInstancePtr()->GetConsole()->Print(text);
}

} // namespace gui
