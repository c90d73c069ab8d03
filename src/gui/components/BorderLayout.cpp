#include "gui/components/BorderLayout.h"

#include "gui/components/Component.h"
#include "gui/components/LayoutAxis.h"

#include <algorithm>

namespace gui
{

using layout_axis::Get;
using layout_axis::Set;

void BorderLayout::Organize(Component& owner, const std::vector<util::SharedPtr<Component>>& children)
{
    if (children.empty())
        return;
    const int d = (m_flags & Vertical) ? 1 : 0;
    const int c = 1 - d;
    for (const auto& child : children)
        child->SetPropagateFormChanges(false);

    math::Vec2 total(0.0f, 0.0f);
    for (const auto& child : children)
    {
        const math::Vec2 size = child->GetOuterSize();
        Set(total, d, Get(total, d) + Get(size, d));
        Set(total, c, std::max(Get(total, c), Get(size, c)));
    }

    children.front()->SetOuterPos(math::Vec2(0.0f, 0.0f));
    float farEnd = std::max(Get(owner.GetInnerSize(), d), Get(total, d));
    for (size_t i = children.size() - 1; i > 0; --i)
    {
        farEnd -= Get(children[i]->GetOuterSize(), d);
        math::Vec2 pos(0.0f, 0.0f);
        Set(pos, d, farEnd);
        children[i]->SetOuterPos(pos);
    }
    children.front()->SetOuterPos(math::Vec2(0.0f, 0.0f));
    for (const auto& child : children)
        child->SetPropagateFormChanges(true);

    const math::Vec2 inner = owner.GetInnerSize();
    owner.SetInnerSize(math::Vec2(std::max(inner.x, total.x), std::max(inner.y, total.y)));
}

} // namespace gui
