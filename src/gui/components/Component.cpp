#include "gui/components/Component.h"

#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "gui/components/ListLayout.h"
#include "gui/components/TextBox.h"
#include "input/Clock.h"
#include "input/Input.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"

#include <GL/gl.h>

#include <algorithm>

namespace gui
{

namespace
{
// Tooltips: shown after the mouse rested this long, faded in and out over the fade time (seconds).
const double TOOLTIP_DELAY = 0.4;
const double TOOLTIP_FADE = 0.2;
// Where a tooltip stands relative to the mouse, in GUI units: beside and below the cursor's picture.
const math::Vec2 TOOLTIP_OFFSET(8.0f, 12.0f);
} // namespace

Component::Component(util::SharedPtr<Layout> layout)
    : InputDelegator(PRIORITY), m_outerPos(0.0f, 0.0f), m_innerSize(0.0f, 0.0f), m_minSize(0.0f, 0.0f),
      m_maxSize(math::INF, math::INF), m_fillOwner(false), m_propagateFormChanges(true),
      m_fontFormater(LookAndFeel::GetDefault()->GetFontFormater()),
      m_border(LookAndFeel::GetDefault()->GetEmptyBorder()), m_layout(std::move(layout)), m_floating(false),
      m_color(1.0f, 1.0f, 1.0f, 1.0f), m_mouseOverOuter(false), m_hoverTime(input::Clock::Now()),
      m_sortChildrenCallback(util::MakeCallback(&Component::SortChildren, this))
{
}

Component::~Component()
{
    if (m_tooltip && GUI::Exists())
        GUI::GetInstancePtr()->GetTooltipLayer()->RemoveComponent(m_tooltip);
}

void Component::AddComponent(util::SharedPtr<Component> child)
{
    QLEX_ASSERT(child);
    QLEX_ASSERT(child.get() != this);
    if (Component* oldOwner = child->GetOwner())
        oldOwner->RemoveComponent(child);
    m_children.push_back(child);
    child->m_owner = this;
    child->OnOwnerFormChange();
    AddListener(child);
    OnChildFormChange();
    child->AddPriorityChangeCallback(m_sortChildrenCallback);
    SortChildren();
}

void Component::RemoveComponent(util::SharedPtr<Component> child)
{
    RemoveListener(child);
    auto found = std::find(m_children.begin(), m_children.end(), child);
    if (found == m_children.end())
        return;
    m_children.erase(found);
    if (child->m_owner.get() == this)
        child->m_owner = nullptr;
    OnChildFormChange();
}

void Component::RemoveAllComponents()
{
    const std::vector<util::SharedPtr<Component>> children = m_children;
    for (const auto& child : children)
        RemoveComponent(child);
}

bool Component::HasComponent(util::SharedPtr<Component> child) const
{
    return std::find(m_children.begin(), m_children.end(), child) != m_children.end();
}

void Component::SortChildren()
{
    if (!m_layout)
        std::stable_sort(m_children.begin(), m_children.end(), CompPrioComparator());
}

void Component::SetOuterPos(math::Vec2 pos)
{
    if (pos == m_outerPos)
        return;
    m_outerPos = pos;
    OnFormChange();
}

void Component::SetInnerSize(math::Vec2 size)
{
    if (size == m_innerSize)
        return;
    m_innerSize = size;
    OnFormChange();
}

void Component::SetOuterSize(math::Vec2 size)
{
    SetInnerSize(size - m_border->GetSize());
}

void Component::SetMinSize(math::Vec2 size)
{
    m_minSize = size;
}

void Component::SetMaxSize(math::Vec2 size)
{
    if (size == m_maxSize)
        return;
    m_maxSize = size;
    SetInnerSize(math::Vec2(std::min(m_innerSize.x, size.x), std::min(m_innerSize.y, size.y)));
}

void Component::SetLayout(util::SharedPtr<Layout> layout)
{
    m_layout = std::move(layout);
    Reorganize();
}

void Component::SetLayout(int listLayoutFlags)
{
    SetLayout(QLEX_NEW new ListLayout(listLayoutFlags, 0.0f));
}

void Component::SetBorder(const util::SharedPtr<Border>& border)
{
    QLEX_ASSERT(border);
    m_border = border;
    OnFormChange();
}

math::BoundingBox2f Component::GetOuterBB() const
{
    return math::BoundingBox2f(m_outerPos, m_outerPos + GetOuterSize());
}

math::BoundingBox2f Component::GetOuterBBLocal() const
{
    const math::Vec2 from = -GetInnerOffset();
    return math::BoundingBox2f(from, from + GetOuterSize());
}

math::BoundingBox2f Component::GetInnerBBLocal() const
{
    return math::BoundingBox2f(math::Vec2(0.0f, 0.0f), m_innerSize);
}

math::TMatrix3<float> Component::CalcWorldToLocalTransform() const
{
    const math::TMatrix3<float> toOwner =
        m_owner ? m_owner->CalcWorldToLocalTransform() : math::TMatrix3<float>();
    return math::TMatrix3<float>::Translation2D(-GetInnerPos()) * toOwner;
}

math::Vec2 Component::GUIToLocal(math::Vec2 pos) const
{
    return math::TransformCoordinate(CalcWorldToLocalTransform(), pos);
}

math::Vec2 Component::LocalToGUI(math::Vec2 pos) const
{
    return math::TransformCoordinate(math::Inverted(CalcWorldToLocalTransform()), pos);
}

math::Vec2 Component::GetMousePosLocal() const
{
    return GUIToLocal(input::Input::GetInstancePtr()->GetMousePos());
}

void Component::SetMouseOverOuter(bool over)
{
    if (over == m_mouseOverOuter)
        return;
    m_mouseOverOuter = over;
    m_hoverTime = input::Clock::Now();
    if (over)
        OnMouseEnter();
    else
        OnMouseLeave();
}

bool Component::IsMouseOverInner() const
{
    return m_mouseOverOuter && GetInnerBBLocal().Contains(GetMousePosLocal());
}

void Component::OnFormChange()
{
    Reorganize();
    if (m_propagateFormChanges)
    {
        ForwardEvent([](Component& child) { child.OnOwnerFormChange(); });
        if (Component* owner = GetOwner())
            owner->OnChildFormChange();
    }
    m_formChangeCallbacks.CallAll();
}

void Component::OnChildFormChange()
{
    Reorganize();
}

void Component::OnOwnerFormChange()
{
    Component* owner = GetOwner();
    if (!m_fillOwner || !owner)
        return;
    SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
    SetInnerSize(owner->GetInnerSize());
    SetOuterPos(math::Vec2(0.0f, 0.0f));
}

void Component::Reorganize()
{
    if (!m_layout)
        return;
    std::vector<util::SharedPtr<Component>> placed;
    for (const auto& child : m_children)
        if (!child->IsFloating())
            placed.push_back(child);
    // The layout is held for the call: Organize may reach code that replaces it.
    util::SharedPtr<Layout> layout = m_layout;
    layout->Organize(*this, placed);
}

void Component::Update(float dt)
{
    ForwardEvent([dt](Component& child) { child.Update(dt); });
    UpdateTooltip();
}

void Component::UpdateTooltip()
{
    if (!m_tooltip)
        return;
    const double t = input::Clock::Now() - m_hoverTime;
    const bool overDue = m_mouseOverOuter && t > TOOLTIP_DELAY;
    if (!overDue && m_mouseOverOuter)
        return;
    const util::SharedPtr<Component> layer = GUI::GetInstancePtr()->GetTooltipLayer();
    const bool shown = layer->HasComponent(m_tooltip);
    math::Vec4 color = m_tooltip->GetColor();
    if (overDue)
    {
        if (!shown)
        {
            const math::Vec2 pos = input::Input::GetInstancePtr()->GetMousePos() + TOOLTIP_OFFSET;
            m_tooltip->SetOuterPos(pos);
            m_tooltip->SetInnerSize(math::Vec2(0.0f, 0.0f));
            const float mainWidth = GUI::GetInstancePtr()->GetMainComponent()->GetInnerSize().x;
            m_tooltip->SetMaxSize(math::Vec2(mainWidth - pos.x, math::INF));
            layer->AddComponent(m_tooltip);
        }
        color.w = static_cast<float>(std::clamp((t - TOOLTIP_DELAY) / TOOLTIP_FADE, 0.0, 1.0));
        m_tooltip->SetColor(color);
    }
    else if (shown)
    {
        const double alpha = 1.0 - t / TOOLTIP_FADE;
        if (alpha > 0.0)
        {
            color.w = static_cast<float>(alpha);
            m_tooltip->SetColor(color);
        }
        else
            layer->RemoveComponent(m_tooltip);
    }
}

void Component::SetTooltip(util::SharedPtr<Component> tooltip)
{
    if (m_tooltip && GUI::Exists())
        GUI::GetInstancePtr()->GetTooltipLayer()->RemoveComponent(m_tooltip);
    m_tooltip = std::move(tooltip);
}

void Component::SetTooltipText(const std::string& text)
{
    util::SharedPtr<TextBox> box = QLEX_NEW new TextBox(text);
    box->SetNonEditable();
    box->SetBorder(LookAndFeel::GetDefault()->GetTooltipBorder());
    box->SetFloating(true);
    SetTooltip(box);
}

void Component::DrawCompAndChildren() const
{
    rendering::ColorPusher restore;
    rendering::Renderer::GetInstancePtr()->MulColor4(m_color);
    DrawComp();
    DrawChildren();
}

void Component::DrawComp() const
{
    m_border->Draw(m_innerSize);
}

void Component::DrawChildren() const
{
    for (const auto& child : m_children)
    {
        const math::Vec2 pos = child->GetInnerPos();
        glPushMatrix();
        glTranslatef(pos.x, pos.y, 0.0f);
        child->DrawCompAndChildren();
        glPopMatrix();
    }
}

} // namespace gui
