#pragma once
// The plain sibling of the sketch tool: a stroke selects what it surrounds, erases what a straight one
// strikes through, or becomes a polygon body; it makes no joints. AppGUI also lends it to a left drag
// that starts on empty background when no other tool takes the drag.

#include "app/tools/StrokeTool.h"

namespace app
{

class BrushTool : public StrokeTool
{
public:
    // A drag that starts on an entity is left to other tools, unless drawing is free.
    void OnDragBegin(const input::DragEvent& event) override;

protected:
    void AnalyzeDrawing() override;

private:
    // Looser than the sketch tool's straight line, and crossings don't count: a wavy stroke that keeps to
    // its chord still strikes through.
    bool IsLine() const;
};

} // namespace app
