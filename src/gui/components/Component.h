#pragma once

#include "gui/FontFormater.h"
#include "gui/components/Border.h"
#include "gui/components/Layout.h"
#include "input/InputDelegator.h"
#include "math/Math.h"
#include "util/Callback.h"

#include <vector>

namespace gui
{

// The base of everything on the screen: a rectangle that draws itself and its children, lays them out,
// and passes every event on to them.
//
// Geometry: the outer rectangle is what the owner places, at the outer position in the owner's inner
// coordinates; it is the inner rectangle plus the border. Children and content stand in the inner
// rectangle, whose top-left corner is the origin of local coordinates, so a bordered component's outer
// rectangle starts at negative local coordinates. Sizes are in GUI units (pixels over the GUI scale).
//
// Events: every child is a listener and gets every event; each receiver tests the handled flag and
// IsMouseOverInner/IsMouseOverOuter itself. gui::GUI keeps the mouse-over flags true along one branch
// only, so a panel in front shields what lies under it without any routing.
class Component : public input::InputDelegator
{
public:
    static const int PRIORITY = 50;

    explicit Component(util::SharedPtr<Layout> layout = nullptr);
    ~Component() override;

    // Tree. A child added to a second owner leaves the first.
    void AddComponent(util::SharedPtr<Component> child);
    void RemoveComponent(util::SharedPtr<Component> child);
    void RemoveAllComponents();
    bool HasComponent(util::SharedPtr<Component> child) const;
    const std::vector<util::SharedPtr<Component>>& GetChildren() const { return m_children; }
    Component* GetOwner() const { return m_owner.get(); }

    // Form: position, size and border. Setters do nothing for an unchanged value, which is what lets a
    // layout's sizing settle.
    virtual void SetOuterPos(math::Vec2 pos);
    virtual void SetInnerSize(math::Vec2 size);
    void SetInnerSize(float width, float height) { SetInnerSize(math::Vec2(width, height)); }
    void SetInnerSize(math::TVector2<unsigned int> size)
    {
        SetInnerSize(math::Vec2(float(size.x), float(size.y)));
    }
    void SetOuterSize(math::Vec2 size);
    virtual void SetMinSize(math::Vec2 size);
    // An upper bound on the inner size; the inner size is clipped to it at once.
    virtual void SetMaxSize(math::Vec2 size);
    void SetLayout(util::SharedPtr<Layout> layout);
    // A ListLayout of these flags and no spacing.
    void SetLayout(int listLayoutFlags);
    void SetBorder(const util::SharedPtr<Border>& border);

    math::Vec2 GetOuterPos() const { return m_outerPos; }
    math::Vec2 GetInnerSize() const { return m_innerSize; }
    math::Vec2 GetMinSize() const { return m_minSize; }
    math::Vec2 GetMaxSize() const { return m_maxSize; }
    const util::SharedPtr<Border>& GetBorder() const { return m_border; }
    const util::SharedPtr<Layout>& GetLayout() const { return m_layout; }

    // A fill-owner component keeps the size of its owner's inner rectangle, without border.
    void SetFillOwner(bool fill) { m_fillOwner = fill; }
    bool IsFillOwner() const { return m_fillOwner; }
    // Cleared by a layout while it moves this child, so that the moves don't call back into it.
    void SetPropagateFormChanges(bool propagate) { m_propagateFormChanges = propagate; }
    // The owner's layout passes over a floating child.
    void SetFloating(bool floating) { m_floating = floating; }
    bool IsFloating() const { return m_floating; }

    // Multiplied into the drawing colour of this component and all under it.
    void SetColor(const math::Vec4& color) { m_color = color; }
    math::Vec4 GetColor() const { return m_color; }

    const FontFormater& GetFontFormater() const { return m_fontFormater; }
    FontFormater& GetFontFormater() { return m_fontFormater; }

    // Geometry.
    math::Vec2 GetInnerOffset() const { return m_border->GetTopLeftSize(); }
    math::Vec2 GetInnerPos() const { return m_outerPos + GetInnerOffset(); }
    math::Vec2 GetOuterSize() const { return m_innerSize + m_border->GetSize(); }
    // In the owner's inner coordinates.
    math::BoundingBox2f GetOuterBB() const;
    math::BoundingBox2f GetOuterBBLocal() const;
    math::BoundingBox2f GetInnerBBLocal() const;
    math::Vec2 GUIToLocal(math::Vec2 pos) const;
    math::Vec2 LocalToGUI(math::Vec2 pos) const;
    math::Vec2 GetMousePosLocal() const;

    // Mouse.
    bool IsMouseOverOuter() const { return m_mouseOverOuter; }
    // Runs OnMouseEnter or OnMouseLeave when the value changes, and restarts the hover time.
    void SetMouseOverOuter(bool over);
    bool IsMouseOverInner() const;
    double GetHoverTime() const { return m_hoverTime; }

    // Tooltip: shown in the tooltip layer of gui::GUI when the mouse has rested on this component.
    void SetTooltip(util::SharedPtr<Component> tooltip);
    void SetTooltipText(const std::string& text);
    const util::SharedPtr<Component>& GetTooltip() const { return m_tooltip; }

    void AddFormChangeCallback(util::CallbackPtr callback) { m_formChangeCallbacks.Add(callback); }

    virtual void DrawCompAndChildren() const;
    virtual void DrawChildren() const;
    virtual void DrawComp() const;
    virtual void Update(float dt);
    // From GUI coordinates to this component's local ones: the owner's transform, then the translation
    // by minus the inner position.
    virtual math::TMatrix3<float> CalcWorldToLocalTransform() const;
    virtual void Reorganize();
    virtual void OnFormChange();
    virtual void OnChildFormChange();
    virtual void OnOwnerFormChange();
    virtual void OnMouseEnter() {}
    virtual void OnMouseLeave() {}

    // Calls f on each child from the last to the first, holding each; f may remove children.
    template <class F> void ForwardEvent(const F& f)
    {
        for (size_t i = m_children.size(); i-- > 0;)
        {
            if (i >= m_children.size())
                continue;
            util::SharedPtr<Component> child = m_children[i];
            f(*child);
        }
    }

    // Without a layout, children are drawn in ascending priority: the higher on top, and first to get
    // events. With a layout the order of adding stands, as it is the order of the list.
    void SortChildren();

protected:
    math::Vec2 m_outerPos;
    math::Vec2 m_innerSize;
    math::Vec2 m_minSize;
    math::Vec2 m_maxSize;
    bool m_fillOwner;
    bool m_propagateFormChanges;
    std::vector<util::SharedPtr<Component>> m_children;
    util::WeakPtr<Component> m_owner;
    FontFormater m_fontFormater;
    util::SharedPtr<Border> m_border;
    util::SharedPtr<Layout> m_layout;
    bool m_floating;
    math::Vec4 m_color;
    util::SharedPtr<Component> m_tooltip;
    bool m_mouseOverOuter;
    double m_hoverTime;
    util::CallbackSet m_formChangeCallbacks;

private:
    void UpdateTooltip();

    util::CallbackPtr m_sortChildrenCallback;
};

// Ascending priority, for a stable sort of the children.
struct CompPrioComparator
{
    bool operator()(const util::SharedPtr<Component>& a, const util::SharedPtr<Component>& b) const
    {
        return a->GetPriority() < b->GetPriority();
    }
};

} // namespace gui
