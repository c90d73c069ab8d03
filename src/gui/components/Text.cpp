#include "gui/components/Text.h"

#include "gui/components/AutoUndoer.h"
#include "input/Clock.h"
#include "input/Input.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"

#include <GL/gl.h>

#include <algorithm>
#include <cctype>
#include <cmath>

namespace gui
{

namespace
{
// The cursor blinks this many times a second: on for the first half of each period.
const double CURSOR_BLINKS_PER_SECOND = 2.0;
const char* const INSERT_CURSOR = "|";
const char* const OVERWRITE_CURSOR = " ";

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (char c : text)
    {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}
} // namespace

TextSelection Sort(const TextPos& a, const TextPos& b)
{
    return b < a ? TextSelection(b, a) : TextSelection(a, b);
}

// Line

Line::Line(FontProxy font, float maxWidth, const std::string& text)
    : m_font(std::move(font)), m_maxWidth(maxWidth), m_text(text)
{
    Wrap();
}

void Line::SetText(const std::string& text)
{
    m_text = text;
    Wrap();
}

void Line::SetMaxWidth(float maxWidth)
{
    m_maxWidth = maxWidth;
    Wrap();
}

void Line::SetFont(FontProxy font)
{
    m_font = std::move(font);
    Wrap();
}

void Line::Wrap()
{
    m_rowStarts.clear();
    m_rowStarts.append(0);
    const unsigned long n = (unsigned long)m_text.size();
    unsigned long start = 0;
    float sum = 0.0f;
    for (unsigned long i = 0; i < n;)
    {
        sum += m_font->GetWidth(static_cast<unsigned char>(m_text[i]));
        if (sum > m_maxWidth && i > start)
        {
            // The blank that passes the width may hang over the row's end: a row breaks behind a blank,
            // never in front of one.
            unsigned long next = i;
            for (unsigned long j = i + 1; j-- > start;)
                if (std::isspace(static_cast<unsigned char>(m_text[j])))
                {
                    next = j + 1;
                    break;
                }
            if (next >= n)
                break;
            m_rowStarts.append(next);
            start = next;
            sum = 0.0f;
            i = next;
            continue;
        }
        ++i;
    }
}

std::pair<unsigned long, unsigned long> Line::GetRowBounds(unsigned long row) const
{
    const unsigned long begin = m_rowStarts[std::min<size_t>(row, m_rowStarts.size() - 1)];
    const unsigned long end = row + 1 < m_rowStarts.size() ? m_rowStarts[row + 1] : m_text.size();
    return std::make_pair(begin, end);
}

std::string Line::GetRow(unsigned long row) const
{
    const auto bounds = GetRowBounds(row);
    return m_text.substr(bounds.first, bounds.second - bounds.first);
}

float Line::Width(unsigned long begin, unsigned long end) const
{
    float width = 0.0f;
    for (unsigned long i = begin; i < end && i < m_text.size(); ++i)
        width += m_font->GetWidth(static_cast<unsigned char>(m_text[i]));
    return width;
}

float Line::GetWidth() const
{
    float widest = 0.0f;
    for (unsigned long row = 0; row < NRows(); ++row)
    {
        const auto bounds = GetRowBounds(row);
        widest = std::max(widest, Width(bounds.first, bounds.second));
    }
    return widest;
}

unsigned long Line::RowOfColumn(unsigned long column) const
{
    unsigned long row = 0;
    while (row + 1 < NRows() && m_rowStarts[row + 1] <= column)
        ++row;
    return row;
}

// Text

Text::Text(FontProxy font)
    : InputListener(PRIORITY), m_overwrite(false), m_font(std::move(font)), m_maxWidth(math::INF),
      m_maxLines(std::numeric_limits<unsigned long>::max()), m_cursorTime(input::Clock::Now())
{
    m_lines.emplace_back(m_font, m_maxWidth);
}

Text::~Text() = default;

std::string Text::GetText() const
{
    std::string text;
    for (size_t i = 0; i < m_lines.size(); ++i)
    {
        if (i > 0)
            text += '\n';
        text += m_lines[i].GetText();
    }
    return text;
}

void Text::SetText(const std::string& text)
{
    std::vector<std::string> lines = SplitLines(text);
    if (lines.size() > m_maxLines)
        lines.resize(std::max<unsigned long>(m_maxLines, 1));
    m_lines.clear();
    for (const std::string& line : lines)
        m_lines.emplace_back(m_font, m_maxWidth, line);
    ClampCursorPos();
    OnChange();
}

void Text::SetLineText(unsigned long row, const std::string& text)
{
    if (row >= m_lines.size())
        return;
    m_lines[row].SetText(text);
    ClampCursorPos();
    OnChange();
}

std::string Text::GetSelectedText() const
{
    const TextSelection s = Sort(m_selection.first, m_selection.second);
    if (s.first.row == s.second.row)
        return m_lines[s.first.row].GetText().substr(s.first.column, s.second.column - s.first.column);
    std::string text = m_lines[s.first.row].GetText().substr(s.first.column);
    for (unsigned long row = s.first.row + 1; row < s.second.row; ++row)
        text += '\n' + m_lines[row].GetText();
    return text + '\n' + m_lines[s.second.row].GetText().substr(0, s.second.column);
}

void Text::SelectAll()
{
    SetCursor(TextSelection(TextPos(0, 0), TextPos(m_lines.size() - 1, m_lines.back().GetText().size())));
}

void Text::SetCursor(const TextPos& pos)
{
    SetCursor(TextSelection(pos, pos));
}

void Text::SetCursor(const TextSelection& selection)
{
    m_selection = selection;
    ClampCursorPos();
    m_cursorTime = input::Clock::Now();
}

void Text::MoveCursor(const TextPos& pos, bool keepAnchor)
{
    SetCursor(TextSelection(keepAnchor ? m_selection.first : pos, pos));
}

void Text::MoveCursorToEnd()
{
    SetCursor(TextPos(m_lines.size() - 1, m_lines.back().GetText().size()));
}

void Text::ClampCursorPos()
{
    for (TextPos* pos : {&m_selection.first, &m_selection.second})
    {
        pos->row = std::min<unsigned long>(pos->row, m_lines.size() - 1);
        pos->column = std::min<unsigned long>(pos->column, m_lines[pos->row].GetText().size());
    }
}

void Text::EraseSelected()
{
    if (m_selection.first == m_selection.second)
        return;
    const TextSelection s = Sort(m_selection.first, m_selection.second);
    const std::string head = m_lines[s.first.row].GetText().substr(0, s.first.column);
    const std::string tail = m_lines[s.second.row].GetText().substr(s.second.column);
    m_lines.erase(m_lines.begin() + long(s.first.row) + 1, m_lines.begin() + long(s.second.row) + 1);
    m_lines[s.first.row].SetText(head + tail);
    m_selection = TextSelection(s.first, s.first);
    m_cursorTime = input::Clock::Now();
    OnChange();
}

TextSelection Text::PasteText(const std::string& text)
{
    EraseSelected();
    const TextPos start = m_selection.second;
    // The edit works on plain strings and wraps each changed line once at the end.
    std::vector<std::string> lines;
    for (const Line& line : m_lines)
        lines.push_back(line.GetText());
    TextPos at = start;
    for (char c : text)
    {
        std::string& line = lines[at.row];
        if (c == '\n')
        {
            if (lines.size() >= m_maxLines)
                break;
            const std::string rest = line.substr(at.column);
            line.erase(at.column);
            lines.insert(lines.begin() + long(at.row) + 1, rest);
            at = TextPos(at.row + 1, 0);
        }
        else if (m_overwrite && at.column < line.size())
            line[at.column++] = c;
        else
            line.insert(line.begin() + long(at.column++), c);
    }
    // Only the lines from the start's to the last inserted one changed.
    const size_t added = lines.size() - m_lines.size();
    m_lines[start.row].SetText(lines[start.row]);
    for (size_t i = 1; i <= added; ++i)
        m_lines.insert(m_lines.begin() + long(start.row + i), Line(m_font, m_maxWidth, lines[start.row + i]));
    m_selection = TextSelection(at, at);
    m_cursorTime = input::Clock::Now();
    OnChange();
    return TextSelection(start, at);
}

void Text::SetMaxWidth(float maxWidth)
{
    if (maxWidth == m_maxWidth)
        return;
    m_maxWidth = maxWidth;
    for (Line& line : m_lines)
        line.SetMaxWidth(maxWidth);
    OnChange();
}

void Text::SetFont(FontProxy font)
{
    m_font = std::move(font);
    for (Line& line : m_lines)
        line.SetFont(m_font);
    OnChange();
}

void Text::SetMaxLines(unsigned long maxLines)
{
    m_maxLines = std::max<unsigned long>(maxLines, 1);
    if (m_lines.size() > m_maxLines)
        SetText(GetText());
}

unsigned long Text::NRows() const
{
    unsigned long rows = 0;
    for (const Line& line : m_lines)
        rows += line.NRows();
    return rows;
}

math::Vec2 Text::GetSize() const
{
    float width = 0.0f;
    for (const Line& line : m_lines)
        width = std::max(width, line.GetWidth());
    return math::Vec2(width, float(NRows()));
}

math::Vec2 Text::CursorToPos(TextPos pos) const
{
    pos.row = std::min<unsigned long>(pos.row, m_lines.size() - 1);
    const Line& line = m_lines[pos.row];
    pos.column = std::min<unsigned long>(pos.column, line.GetText().size());
    unsigned long rowsAbove = 0;
    for (unsigned long row = 0; row < pos.row; ++row)
        rowsAbove += m_lines[row].NRows();
    const unsigned long displayRow = line.RowOfColumn(pos.column);
    const float x = line.Width(line.GetRowBounds(displayRow).first, pos.column);
    return math::Vec2(x, float(rowsAbove + displayRow));
}

TextPos Text::PosToCursor(math::Vec2 pos) const
{
    const float rows = float(NRows());
    unsigned long displayRow = (unsigned long)std::clamp(std::floor(pos.y), 0.0f, rows - 1.0f);
    unsigned long row = 0;
    while (row + 1 < m_lines.size() && displayRow >= m_lines[row].NRows())
        displayRow -= m_lines[row++].NRows();
    const Line& line = m_lines[row];
    const auto bounds = line.GetRowBounds(displayRow);
    float x = 0.0f;
    for (unsigned long column = bounds.first; column < bounds.second; ++column)
    {
        const float width = m_font->GetWidth(static_cast<unsigned char>(line.GetText()[column]));
        if (x + width / 2.0f > pos.x)
            return TextPos(row, column);
        x += width;
    }
    return TextPos(row, bounds.second);
}

void Text::Draw(bool showCursor, bool inverse) const
{
    const Font& font = *m_font.operator->();
    const Font::Flags plain = inverse ? Font::INVERSE : Font::PLAIN;
    const Font::Flags selected = inverse ? Font::PLAIN : Font::INVERSE;
    const TextSelection s = Sort(m_selection.first, m_selection.second);
    const bool hasSelection = s.first != s.second;

    font.BeginDraw();
    glPushMatrix();
    for (unsigned long row = 0; row < m_lines.size(); ++row)
    {
        const Line& line = m_lines[row];
        // The columns of this line that are selected: [from, to).
        const bool lineSelected = hasSelection && s.first.row <= row && row <= s.second.row;
        const unsigned long from = row == s.first.row ? s.first.column : 0;
        const unsigned long to = row == s.second.row ? s.second.column : line.GetText().size();
        for (unsigned long displayRow = 0; displayRow < line.NRows(); ++displayRow)
        {
            const auto bounds = line.GetRowBounds(displayRow);
            const unsigned long a = std::clamp(from, bounds.first, bounds.second);
            const unsigned long b = std::clamp(to, bounds.first, bounds.second);
            const std::string& text = line.GetText();
            if (!showCursor || !lineSelected || a >= b)
                font.Draw(line.GetRow(displayRow), plain);
            else
            {
                float x = DrawTextAt(m_font, 0.0f, text.substr(bounds.first, a - bounds.first), plain);
                x += DrawTextAt(m_font, x, text.substr(a, b - a), selected);
                DrawTextAt(m_font, x, text.substr(b, bounds.second - b), plain);
            }
            glTranslatef(0.0f, 1.0f, 0.0f);
        }
    }
    glPopMatrix();

    const double sinceMove = input::Clock::Now() - m_cursorTime;
    if (showCursor && !hasSelection && int(std::floor(CURSOR_BLINKS_PER_SECOND * sinceMove)) % 2 == 0)
    {
        const math::Vec2 pos = CursorToPos(m_selection.second);
        glPushMatrix();
        glTranslatef(0.0f, pos.y, 0.0f);
        if (m_overwrite)
            DrawTextAt(m_font, pos.x, OVERWRITE_CURSOR, inverse ? Font::PLAIN : Font::INVERSE);
        else
            DrawTextAt(m_font, pos.x - font.GetWidth('|') / 2.0f, INSERT_CURSOR, plain);
        glPopMatrix();
    }
    font.EndDraw();
}

void Text::OnChange()
{
    m_onChange.CallAll();
}

void Text::Type(char c)
{
    TextUndoSink* sink = m_undoable ? GetTextUndoSink() : nullptr;
    const util::SharedPtr<TextEditUndoer> last = m_lastTyping.get();
    // Typing on from where the last typed character went makes that record longer: one undo takes
    // back a whole run of typing, not one letter.
    if (sink && last && sink->IsNewest(*last) && last->GetNewSelection() == m_selection &&
        last->GetNewText() == GetText())
    {
        PasteText(std::string(1, c));
        last->SetNewState(GetText(), m_selection);
        return;
    }
    const std::string before = GetText();
    const TextSelection selectionBefore = m_selection;
    PasteText(std::string(1, c));
    if (!sink)
        return;
    util::SharedPtr<TextEditUndoer> record =
        QLEX_NEW new TextEditUndoer(this, before, GetText(), selectionBefore, m_selection);
    m_lastTyping = record.get();
    sink->AddUndo(record);
}

void Text::EraseBeside(bool forward)
{
    if (m_selection.first == m_selection.second)
    {
        const TextPos at = m_selection.second;
        TextPos other = at;
        if (forward)
        {
            if (at.column < m_lines[at.row].GetText().size())
                ++other.column;
            else if (at.row + 1 < m_lines.size())
                other = TextPos(at.row + 1, 0);
        }
        else if (at.column > 0)
            --other.column;
        else if (at.row > 0)
            other = TextPos(at.row - 1, m_lines[at.row - 1].GetText().size());
        if (other == at)
            return;
        m_selection = TextSelection(other, at);
    }
    AutoUndoer undo(this);
    EraseSelected();
}

void Text::OnKeyEvent(const input::KeyEvent& event)
{
    InputListener::OnKeyEvent(event);
    if (event.IsHandled() || !event.pressed || event.key == SDLK_ESCAPE)
        return;
    const bool ctrl = event.ctrl;
    const bool shift = event.shift;
    const TextPos cursor = m_selection.second;
    const Line& line = m_lines[cursor.row];
    input::Input* input = input::Input::GetInstancePtr();

    if (ctrl && (event.key == SDLK_v || event.key == SDLK_c || event.key == SDLK_x || event.key == SDLK_a))
    {
        if (event.key == SDLK_v)
        {
            AutoUndoer undo(this);
            PasteText(input->GetClipboardText());
        }
        else if (event.key == SDLK_a)
            SelectAll();
        else
        {
            input->SetClipboardText(GetSelectedText());
            if (event.key == SDLK_x)
            {
                AutoUndoer undo(this);
                EraseSelected();
            }
        }
        event.SetHandled();
        return;
    }

    switch (event.key)
    {
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        if (m_lines.size() < m_maxLines)
        {
            AutoUndoer undo(this);
            PasteText("\n");
        }
        m_onReturn.CallAll();
        break;
    case SDLK_TAB:
        m_onTab.CallAll();
        break;
    case SDLK_INSERT:
        if (shift)
        {
            AutoUndoer undo(this);
            PasteText(input->GetClipboardText());
        }
        else
            m_overwrite = !m_overwrite;
        break;
    case SDLK_BACKSPACE:
        EraseBeside(false);
        break;
    case SDLK_DELETE:
        EraseBeside(true);
        break;
    case SDLK_LEFT:
        if (cursor.column > 0)
            MoveCursor(TextPos(cursor.row, cursor.column - 1), shift);
        else if (cursor.row > 0)
            MoveCursor(TextPos(cursor.row - 1, m_lines[cursor.row - 1].GetText().size()), shift);
        else
            MoveCursor(cursor, shift);
        break;
    case SDLK_RIGHT:
        if (cursor.column < line.GetText().size())
            MoveCursor(TextPos(cursor.row, cursor.column + 1), shift);
        else if (cursor.row + 1 < m_lines.size())
            MoveCursor(TextPos(cursor.row + 1, 0), shift);
        else
            MoveCursor(cursor, shift);
        break;
    case SDLK_UP:
        MoveCursor(PosToCursor(CursorToPos(cursor) - math::Vec2(0.0f, 1.0f)), shift);
        break;
    case SDLK_DOWN:
        MoveCursor(PosToCursor(CursorToPos(cursor) + math::Vec2(0.0f, 1.0f)), shift);
        break;
    case SDLK_HOME:
        MoveCursor(TextPos(ctrl ? 0 : cursor.row, 0), shift);
        break;
    case SDLK_END:
    {
        const unsigned long row = ctrl ? m_lines.size() - 1 : cursor.row;
        MoveCursor(TextPos(row, m_lines[row].GetText().size()), shift);
        break;
    }
    default:
        // Control characters have keys of their own above, or no place in a line.
        if (event.character == 0 || ctrl || static_cast<unsigned char>(event.character) < ' ' ||
            event.character == '\x7f')
            return;
        Type(event.character);
        break;
    }
    event.SetHandled();
}

} // namespace gui
