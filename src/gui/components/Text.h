#pragma once

#include "gui/Font.h"
#include "input/InputListener.h"
#include "math/Math.h"
#include "util/Callback.h"
#include "util/VectorPOD.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace gui
{

class TextEditUndoer;

// A place in a text: the logical line and the character in it.
struct TextPos
{
    TextPos() = default;
    TextPos(unsigned long row_, unsigned long column_) : row(row_), column(column_) {}

    bool operator<(const TextPos& o) const { return row < o.row || (row == o.row && column < o.column); }
    bool operator==(const TextPos& o) const { return row == o.row && column == o.column; }
    bool operator!=(const TextPos& o) const { return !(*this == o); }
    bool operator<=(const TextPos& o) const { return !(o < *this); }

    unsigned long row = 0;
    unsigned long column = 0;
};

// First the anchor, second the cursor; equal when nothing is selected.
using TextSelection = std::pair<TextPos, TextPos>;

// The two positions, the earlier first.
TextSelection Sort(const TextPos& a, const TextPos& b);

// One logical line, between two line breaks, wrapped into display rows at a width in font units.
class Line
{
public:
    Line(FontProxy font, float maxWidth, const std::string& text = "");

    // Wraps anew: a row breaks behind the last blank before the character that passes the width, or
    // before that character when the row has no blank. A row always holds at least one character.
    void SetText(const std::string& text);
    const std::string& GetText() const { return m_text; }
    void SetMaxWidth(float maxWidth);
    void SetFont(FontProxy font);

    unsigned long NRows() const { return (unsigned long)m_rowStarts.size(); }
    std::string GetRow(unsigned long row) const;
    // Begin and end column of a display row.
    std::pair<unsigned long, unsigned long> GetRowBounds(unsigned long row) const;
    // The widest display row.
    float GetWidth() const;
    // The display row a column stands in: a column at the end of a row that isn't the last belongs to
    // the next.
    unsigned long RowOfColumn(unsigned long column) const;
    // The width of the characters [begin, end).
    float Width(unsigned long begin, unsigned long end) const;

private:
    void Wrap();

    FontProxy m_font;
    float m_maxWidth;
    std::string m_text;
    util::VectorPOD<unsigned long> m_rowStarts;
};

// The editor without a place on the screen: lines, a selection, the cursor, the keyboard, and its own
// edits offered to the undo history. Positions are in the font's units.
class Text : public input::InputListener
{
public:
    static const int PRIORITY = 50;

    explicit Text(FontProxy font);
    ~Text() override;

    // The lines joined by "\n".
    std::string GetText() const;
    // A line break at or beyond the maximal lines ends the text there.
    void SetText(const std::string& text);
    void SetLineText(unsigned long row, const std::string& text);
    std::string GetSelectedText() const;
    const std::vector<Line>& GetLines() const { return m_lines; }

    const TextSelection& GetSelection() const { return m_selection; }
    void SelectAll();
    // Anchor and cursor to one place.
    void SetCursor(const TextPos& pos);
    void SetCursor(const TextSelection& selection);
    void MoveCursorToEnd();
    void ClampCursorPos();
    void EraseSelected();
    // Replaces the selection by the text; the cursor stands behind it. Returns where the text went.
    TextSelection PasteText(const std::string& text);

    bool IsOverwrite() const { return m_overwrite; }
    void SetOverwrite(bool overwrite) { m_overwrite = overwrite; }
    void SetMaxWidth(float maxWidth);
    float GetMaxWidth() const { return m_maxWidth; }
    void SetMaxLines(unsigned long maxLines);
    unsigned long GetMaxLines() const { return m_maxLines; }
    const FontProxy& GetFont() const { return m_font; }
    void SetFont(FontProxy font);

    // Display rows of all lines.
    unsigned long NRows() const;
    // The widest row by the number of rows, in font units.
    math::Vec2 GetSize() const;
    // The top left of the character at pos: x the widths before it in its display row, y the display
    // rows above.
    math::Vec2 CursorToPos(TextPos pos) const;
    // The reverse: the row under y (clamped to the text), the first column whose character's middle
    // lies right of x, or the row's end.
    TextPos PosToCursor(math::Vec2 pos) const;

    // In font units from the origin. The cursor blinks half a second on, half off from its last move:
    // a bar in insert mode, an inverted blank in overwrite mode.
    void Draw(bool showCursor, bool inverse) const;

    void OnKeyEvent(const input::KeyEvent& event) override;

    void OnChange();
    void AddChangeCallback(util::CallbackPtr callback) { m_onChange.Add(callback); }
    void AddReturnCallback(util::CallbackPtr callback) { m_onReturn.Add(callback); }
    void AddTabCallback(util::CallbackPtr callback) { m_onTab.Add(callback); }

    // Whether edits join the application's history: not for a line whose text lives elsewhere once it is
    // given, as the console's input.
    void SetUndoable(bool undoable) { m_undoable = undoable; }
    bool IsUndoable() const { return m_undoable; }

    // The time of the last move of the cursor, for the blink.
    double GetCursorTime() const { return m_cursorTime; }

private:
    // Moves the cursor; the anchor follows unless `keepAnchor`.
    void MoveCursor(const TextPos& pos, bool keepAnchor);
    // Backspace and delete: with nothing selected, the character (or line break) before or behind the
    // cursor is selected first.
    void EraseBeside(bool forward);
    // A typed character: one undo step for a run of typing.
    void Type(char c);

    std::vector<Line> m_lines;
    TextSelection m_selection;
    bool m_overwrite;
    FontProxy m_font;
    float m_maxWidth;
    unsigned long m_maxLines;
    double m_cursorTime;
    util::CallbackSet m_onChange;
    util::CallbackSet m_onReturn;
    util::CallbackSet m_onTab;
    // The record of the run of typing that goes on, while it does.
    util::WeakPtr<TextEditUndoer> m_lastTyping;
    bool m_undoable = true;
};

} // namespace gui
