#pragma once

#include "physics/Circular.h"
#include "physics/Linesegment.h"

#include <vector>

namespace physics
{
class Circle final : public Circular
{
public:
    Circle(const math::Vec2& position, float radius);

    util::SharedPtr<Circle> Clone() const;

    // Crossings of the rim by a segment: 1 when exactly one end is inside, 2 for a chord.
    int IntersectCountWorld(const Linesegment& segment) const;
    int IntersectCountWorld(const std::vector<Linesegment>& segments) const;

private:
    Circle(const Circle& other) = default;
};

} // namespace physics
