#pragma once

// INTERIM STAND-IN for the GUI toolkit's component, built on its own branch: a rectangle with children that
// updates and draws them, and nothing else (no borders, layouts or events). The build picks this folder up
// only while src/gui/components/Component.h does not exist; delete it when it does.

#include "math/Math.h"
#include "script/Reflected.h"
#include "util/SharedPtr.h"

#include <vector>

namespace gui
{
class Component : public script::Reflected
{
public:
    Component() = default;
    ~Component() override = default;

    void AddComponent(util::SharedPtr<Component> child)
    {
        child->m_owner = this;
        m_children.push_back(child);
        child->OnOwnerFormChange();
    }
    const std::vector<util::SharedPtr<Component>>& GetChildren() const { return m_children; }
    Component* GetOwner() const { return m_owner; }

    virtual void SetInnerSize(math::Vec2 size)
    {
        if (size == m_innerSize)
            return;
        m_innerSize = size;
        OnFormChange();
    }
    void SetOuterSize(math::Vec2 size) { SetInnerSize(size); }
    math::Vec2 GetInnerSize() const { return m_innerSize; }
    math::Vec2 GetOuterSize() const { return m_innerSize; }

    // The mouse in local coordinates, and whether it is over this component; set from outside.
    void SetMouse(math::Vec2 pos, bool over)
    {
        m_mousePos = pos;
        m_mouseOver = over;
    }
    math::Vec2 GetMousePosLocal() const { return m_mousePos; }
    bool IsMouseOverInner() const { return m_mouseOver; }

    virtual void DrawCompAndChildren() const
    {
        DrawComp();
        DrawChildren();
    }
    virtual void DrawChildren() const
    {
        for (const util::SharedPtr<Component>& child : m_children)
            child->DrawCompAndChildren();
    }
    virtual void DrawComp() const {}
    virtual void Update(float dt)
    {
        for (size_t i = 0; i < m_children.size(); ++i)
            m_children[i]->Update(dt);
    }
    virtual void OnFormChange()
    {
        for (const util::SharedPtr<Component>& child : m_children)
            child->OnOwnerFormChange();
    }
    virtual void OnOwnerFormChange() {}

private:
    std::vector<util::SharedPtr<Component>> m_children;
    Component* m_owner = nullptr;
    math::Vec2 m_innerSize;
    math::Vec2 m_mousePos;
    bool m_mouseOver = false;
};
} // namespace gui
