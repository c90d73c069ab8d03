#pragma once

#include "gui/components/Layout.h"

namespace gui
{

// The first child at the start, all others packed against the far end of the running direction: a title
// on the left and buttons on the right, say.
class BorderLayout : public Layout
{
public:
    enum Flags
    {
        Horizontal = 0,
        Vertical = 1,
    };

    explicit BorderLayout(int flags = Horizontal) : m_flags(flags) {}

    void Organize(Component& owner, const std::vector<util::SharedPtr<Component>>& children) override;

private:
    int m_flags;
};

} // namespace gui
