#pragma once

#include "util/SharedPtr.h"

#include <vector>

namespace gui
{

class Component;

// Places the children of a component and sizes the component to them.
class Layout : public util::Pointee
{
public:
    virtual ~Layout() = default;
    // children are the owner's children that are not floating, in order.
    virtual void Organize(Component& owner, const std::vector<util::SharedPtr<Component>>& children) = 0;
};

} // namespace gui
