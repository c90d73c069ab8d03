#pragma once
// The default tool: one pen, and what a stroke means is decided when the button goes up. A straight line
// fixates where it crosses the line just before it, erases what it strikes through, or is remembered for
// two seconds; a zigzag between two shapes is a spring; a closed stroke selects what it surrounds, pins a
// body with a hinge where it is small and round on it, and otherwise becomes a polygon body.

#include "app/tools/Line.h"
#include "app/tools/Tool.h"
#include "physics/Polygon.h"

namespace app
{

class SketchTool : public Tool
{
public:
    // A remembered straight line waits this long for a second one across it.
    static constexpr double LAST_LINE_SECONDS = 2.0;

    void OnKeyEvent(const input::KeyEvent& event) override;
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Update(float dt) override;
    void Draw() const override;
    bool Disband() override;

    const Line& GetLine() const { return m_line; }
    const Line& GetLastLine() const { return m_lastLine; }

private:
    // Adds the GUI point to the stroke unless it is nearer than the minimum distance to the last point.
    void AddPoint(const math::Vec2& guiPos);
    void AnalyzeDrawing();
    bool TestFixate();
    bool TestEraseLine();
    bool IsSpring();
    util::SharedPtr<physics::Polygon> IsPolygon();
    bool IsHinge(const util::SharedPtr<physics::Polygon>& polygon);
    void DecidePolygon(const util::SharedPtr<physics::Polygon>& polygon);

    Line m_line;
    Line m_lastLine;
    // Seconds of the frame clock.
    double m_lastLineTime = 0;
};

} // namespace app
