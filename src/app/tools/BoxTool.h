#pragma once
// A box from one corner to the other by a left drag; with Shift held, a square. Without "freeDrawing" a
// rectangle drawn around entities selects them instead.

#include "app/tools/Tool.h"
#include "math/Math.h"

namespace app
{

class BoxTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    // The rectangle up to the mouse.
    void Draw() const override;
    bool Disband() override;

    // The corner opposite `start` of the square on the larger extent of the drag to `p`. Each side keeps
    // the sign of its own extent, so a drag along an axis gives a flat result.
    static math::Vec2 SquareCorner(const math::Vec2& start, const math::Vec2& p);

private:
    // The far corner for the mouse at the world point p.
    math::Vec2 GetEndPos(const math::Vec2& p) const;

    bool m_dragging = false;
    math::Vec2 m_start;
};

} // namespace app
