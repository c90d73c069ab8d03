#pragma once

#include "gui/components/Text.h"
#include "util/SharedPtr.h"

#include <string>

namespace gui
{

// One edit of a text, as a step of the application's history: the text and selection before and after.
// Do does nothing, since the edit has already happened when the record is made.
class TextEditUndoer : public util::Pointee
{
public:
    TextEditUndoer(util::SharedPtr<Text> text, std::string oldText, std::string newText,
                   TextSelection oldSelection, TextSelection newSelection);

    void Do() {}
    void Undo();
    void Redo();

    const util::SharedPtr<Text>& GetText() const { return m_text; }
    const std::string& GetOldText() const { return m_oldText; }
    const std::string& GetNewText() const { return m_newText; }
    const TextSelection& GetNewSelection() const { return m_newSelection; }
    // A run of typing that goes on makes its record longer.
    void SetNewState(const std::string& text, const TextSelection& selection);

private:
    util::SharedPtr<Text> m_text;
    std::string m_oldText;
    std::string m_newText;
    TextSelection m_oldSelection;
    TextSelection m_newSelection;
};

// Where text edits go to join the application's history. The toolkit knows no application: the
// application implements this and registers it at start. Without one, edits are simply not undoable.
class TextUndoSink
{
public:
    virtual ~TextUndoSink() = default;
    virtual void AddUndo(util::SharedPtr<TextEditUndoer> edit) = 0;
    // Whether the edit is the newest step of the history, which more typing may still join.
    virtual bool IsNewest(const TextEditUndoer& edit) const = 0;
};

// Null to unregister.
void SetTextUndoSink(TextUndoSink* sink);
TextUndoSink* GetTextUndoSink();

// A scope around an edit of a text: the state at construction and at destruction become one step of the
// history, if the text changed.
class AutoUndoer
{
public:
    explicit AutoUndoer(Text* text);
    ~AutoUndoer();
    AutoUndoer(const AutoUndoer&) = delete;
    AutoUndoer& operator=(const AutoUndoer&) = delete;

private:
    Text* m_text;
    std::string m_oldText;
    TextSelection m_oldSelection;
};

} // namespace gui
