#include "app/TextEditAction.h"

#include "app/Undoer.h"

namespace app
{

namespace
{
TextUndoSink s_sink;
} // namespace

TextEditAction::TextEditAction(util::SharedPtr<gui::TextEditUndoer> edit)
    : Action("UndoTextEdit"), m_edit(std::move(edit))
{
}

void TextUndoSink::AddUndo(util::SharedPtr<gui::TextEditUndoer> edit)
{
    Undoer::GetInstancePtr()->AddUndo(QLEX_NEW new TextEditAction(std::move(edit)));
}

bool TextUndoSink::IsNewest(const gui::TextEditUndoer& edit) const
{
    const util::SharedPtr<Action> newest = Undoer::GetInstancePtr()->GetNextUndo();
    const TextEditAction* text = dynamic_cast<const TextEditAction*>(newest.get());
    return text && text->GetEdit().get() == &edit;
}

void TextUndoSink::Register()
{
    gui::SetTextUndoSink(&s_sink);
}

void TextUndoSink::Unregister()
{
    if (gui::GetTextUndoSink() == &s_sink)
        gui::SetTextUndoSink(nullptr);
}

} // namespace app
