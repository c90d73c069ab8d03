#pragma once

#include "app/Snapshot.h"
#include "app/Transformer.h"
#include "app/tools/Tool.h"

namespace app
{

// Moves the selection, and with it all that hangs on it unless Alt is held, by the left button.
class MoveTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    // Puts everything back as it was before the gesture, and still reports false: Escape then goes on
    // to close a popup, as if no move had run.
    bool Disband() override;
    util::String GetCursorName() const override;

private:
    SnapshotPtr m_snapshot;
    util::SharedPtr<Transformer> m_transformer;
};

// A press at p on an entity selects it unless it is selected already; false where no entity lies at p.
bool SelectForGesture(math::Vec2 p);
// The selection, widened to all that hangs on it unless Alt is held.
GroupPtr SelectionForGesture();

} // namespace app
