#pragma once
// The default tool: one pen, and what a stroke means is decided when the button goes up. A straight line
// fixates where it crosses the line just before it, erases what it strikes through, or is remembered for
// two seconds; a zigzag between two shapes is a spring; a closed stroke selects what it surrounds, pins a
// body with a hinge where it is small and round on it, and otherwise becomes a polygon body.

#include "app/tools/StrokeTool.h"

namespace app
{

class SketchTool : public StrokeTool
{
public:
    // A remembered straight line waits this long for a second one across it.
    static constexpr double LAST_LINE_SECONDS = 2.0;

    void Update(float dt) override;
    // The remembered line, fading, and the stroke in progress.
    void Draw() const override;
    // Forgets the remembered line too.
    bool Disband() override;

    const Line& GetLastLine() const { return m_lastLine; }

protected:
    void AnalyzeDrawing() override;

private:
    bool TestFixate();
    bool IsSpring();
    bool IsHinge(const util::SharedPtr<physics::Polygon>& polygon);
    void DecidePolygon(const util::SharedPtr<physics::Polygon>& polygon);

    Line m_lastLine;
    // Seconds of the frame clock.
    double m_lastLineTime = 0;
};

} // namespace app
