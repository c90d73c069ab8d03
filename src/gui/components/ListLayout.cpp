#include "gui/components/ListLayout.h"

#include "gui/components/Component.h"
#include "gui/components/LayoutAxis.h"

namespace gui
{

using layout_axis::Get;
using layout_axis::Set;

void ListLayout::Organize(Component& owner, const std::vector<util::SharedPtr<Component>>& children)
{
    const int d = (m_flags & Vertical) ? 1 : 0;
    const int c = 1 - d;
    if (children.empty())
    {
        owner.SetInnerSize(math::Vec2(0.0f, 0.0f));
        return;
    }
    for (const auto& child : children)
        child->SetPropagateFormChanges(false);

    math::Vec2 cursor(0.0f, 0.0f);
    math::BoundingBox2f box = math::BoundingBox2f::Empty();
    for (const auto& child : children)
    {
        // A width limit of the owner reaches the children, and wraps their text.
        math::Vec2 maxSize = child->GetMaxSize();
        if (Get(owner.GetMaxSize(), c) < Get(maxSize, c))
            Set(maxSize, c, Get(owner.GetMaxSize(), c));
        child->SetMaxSize(maxSize);
        child->SetOuterPos(cursor);
        Set(cursor, d, Get(cursor, d) + Get(child->GetOuterSize(), d) + m_spacing);
        box.Include(child->GetOuterBB());
    }

    if (m_flags & Fill)
        for (const auto& child : children)
        {
            math::Vec2 size = child->GetOuterSize();
            Set(size, c, Get(box.GetSize(), c));
            child->SetOuterSize(size);
        }
    if (m_flags & AlignEnd)
        for (const auto& child : children)
        {
            math::Vec2 pos = child->GetOuterPos();
            Set(pos, c, Get(box.GetMax(), c) - Get(child->GetOuterSize(), c));
            child->SetOuterPos(pos);
        }

    for (const auto& child : children)
        child->SetPropagateFormChanges(true);
    // All children floating leaves the box empty, and the inner size as it is set above.
    if (box.IsFinite())
        owner.SetInnerSize(box.GetSize());
}

} // namespace gui
