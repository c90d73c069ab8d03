#pragma once
// The pen that the sketch tool and the brush share. A left drag records a stroke in world coordinates,
// with points no closer than the minimum point distance, so that its density depends on the screen and not
// on the zoom; while Shift is held nothing is recorded, and the stroke runs straight to where the mouse is
// when Shift comes up. What the stroke means is for each tool to decide when the button goes up.

#include "app/tools/Line.h"
#include "app/tools/Tool.h"
#include "physics/Polygon.h"

namespace app
{

class StrokeTool : public Tool
{
public:
    void OnKeyEvent(const input::KeyEvent& event) override;
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    // The stroke in progress, up to the mouse.
    void Draw() const override;
    bool Disband() override;

    const Line& GetLine() const { return m_line; }

protected:
    // Called with the finished stroke, which has at least two points.
    virtual void AnalyzeDrawing() = 0;

    // Erases what the stroke strikes through, in one undo step: the whole selection if it strikes one of
    // its members, and a plane only when it strikes nothing else. False when it strikes nothing.
    bool TestEraseLine();
    // The loop of a closed stroke as a new polygon, not yet in the scene; null for an open stroke, one
    // that is mostly tail, or an outline the polygon refuses.
    util::SharedPtr<physics::Polygon> IsPolygon();

    Line m_line;

private:
    // Adds the GUI point unless it is nearer than the minimum distance to the last point.
    void AddPoint(const math::Vec2& guiPos);
};

} // namespace app
