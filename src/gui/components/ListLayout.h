#pragma once

#include "gui/components/Layout.h"

namespace gui
{

// Children in a row or a column, each behind the last with a spacing between them; the owner takes the
// size of their bounding box, so a list always grows or shrinks to its content.
class ListLayout : public Layout
{
public:
    enum Flags
    {
        Horizontal = 0,
        Vertical = 1,
        // All children get the same size across the running direction.
        Fill = 2,
        // Children are aligned to the far side across the running direction.
        AlignEnd = 4,
    };

    explicit ListLayout(int flags = Horizontal, float spacing = 0.0f) : m_flags(flags), m_spacing(spacing) {}

    void Organize(Component& owner, const std::vector<util::SharedPtr<Component>>& children) override;

    int GetFlags() const { return m_flags; }
    float GetSpacing() const { return m_spacing; }

private:
    int m_flags;
    float m_spacing;
};

} // namespace gui
