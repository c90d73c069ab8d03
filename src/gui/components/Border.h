#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"

namespace gui
{

// The margin around a component's inner rectangle, and what is drawn there.
class Border : public util::Pointee
{
public:
    virtual ~Border() = default;
    // Draws around and under an inner rectangle of the given size at the local origin.
    virtual void Draw(math::Vec2 innerSize) const = 0;
    virtual float MarginLeft() const = 0;
    virtual float MarginRight() const = 0;
    virtual float MarginTop() const = 0;
    virtual float MarginBottom() const = 0;

    math::Vec2 GetTopLeftSize() const { return math::Vec2(MarginLeft(), MarginTop()); }
    math::Vec2 GetBottomRightSize() const { return math::Vec2(MarginRight(), MarginBottom()); }
    math::Vec2 GetSize() const { return GetTopLeftSize() + GetBottomRightSize(); }
};

} // namespace gui
