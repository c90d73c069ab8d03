#include "gui/components/AutoUndoer.h"

#include "logging/Exception.h"

namespace gui
{

namespace
{
TextUndoSink* s_sink = nullptr;
} // namespace

TextEditUndoer::TextEditUndoer(util::SharedPtr<Text> text, std::string oldText, std::string newText,
                               TextSelection oldSelection, TextSelection newSelection)
    : m_text(std::move(text)), m_oldText(std::move(oldText)), m_newText(std::move(newText)),
      m_oldSelection(oldSelection), m_newSelection(newSelection)
{
}

void TextEditUndoer::Undo()
{
    m_text->SetText(m_oldText);
    m_text->SetCursor(m_oldSelection);
}

void TextEditUndoer::Redo()
{
    m_text->SetText(m_newText);
    m_text->SetCursor(m_newSelection);
}

void TextEditUndoer::SetNewState(const std::string& text, const TextSelection& selection)
{
    m_newText = text;
    m_newSelection = selection;
}

void SetTextUndoSink(TextUndoSink* sink)
{
    s_sink = sink;
}

TextUndoSink* GetTextUndoSink()
{
    return s_sink;
}

AutoUndoer::AutoUndoer(Text* text)
    : m_text(text), m_oldText(text->GetText()), m_oldSelection(text->GetSelection())
{
}

AutoUndoer::~AutoUndoer()
{
    if (!s_sink || !m_text->IsUndoable())
        return;
    try
    {
        const std::string newText = m_text->GetText();
        // A step that changes nothing would make undo seem to do nothing.
        if (newText == m_oldText)
            return;
        s_sink->AddUndo(
            QLEX_NEW new TextEditUndoer(m_text, m_oldText, newText, m_oldSelection, m_text->GetSelection()));
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
    }
}

} // namespace gui
