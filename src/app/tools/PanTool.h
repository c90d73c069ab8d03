#pragma once

#include "app/tools/Tool.h"

namespace app
{

// Moves the view with the mouse, any button. Its drag ends only with the right button, which starts it
// from AppGUI; the small gestures that AppGUI hands it in the middle of other drags end with the left.
class PanTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    bool Disband() override;
    util::String GetCursorName() const override;
};

} // namespace app
