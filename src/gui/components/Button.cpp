#include "gui/components/Button.h"

#include "gui/LookAndFeel.h"
#include "gui/components/Label.h"
#include "gui/components/ListLayout.h"
#include "input/Key.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"

namespace gui
{

namespace
{
// The frame around a button under the mouse: its width in GUI units and its grey, darker while pressed.
const float HIGHLIGHT_WIDTH = 2.0f;
const float HIGHLIGHT_PRESSED_GREY = 0.4f;
const float HIGHLIGHT_GREY = 0.9f;
} // namespace

AbstractButton::AbstractButton() : m_pressed(false), m_enabled(true)
{
    SetLayout(QLEX_NEW new ListLayout(ListLayout::Horizontal, 0.0f));
    SetBorder(LookAndFeel::GetDefault()->GetButtonBorder());
}

void AbstractButton::OnClick()
{
    m_onClick.CallAll();
}

void AbstractButton::OnKeyEvent(const input::KeyEvent& event)
{
    Component::OnKeyEvent(event);
    if (event.IsHandled())
        return;
    if (event.pressed && m_hotKeys.count(event.key) && !event.shift && !event.ctrl && !event.alt && m_enabled)
    {
        OnClick();
        event.SetHandled();
        return;
    }
    if (event.key == SDLKey(input::Key::MOUSE_LEFT))
    {
        if (event.pressed && IsMouseOverInner() && m_enabled)
            m_pressed = true;
        else if (!event.pressed)
            m_pressed = false;
    }
}

void AbstractButton::OnClick(const input::ClickEvent& event)
{
    Component::OnClick(event);
    // Every click counts, so a double click clicks twice.
    if (event.IsHandled() || event.button != SDLKey(input::Key::MOUSE_LEFT) || !IsMouseOverInner() ||
        !m_enabled)
        return;
    OnClick();
    event.SetHandled();
}

void AbstractButton::DrawCompAndChildren() const
{
    Component::DrawCompAndChildren();
    if (!IsMouseOverInner() || !m_enabled)
        return;
    rendering::ColorPusher restore;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const float grey = m_pressed ? HIGHLIGHT_PRESSED_GREY : HIGHLIGHT_GREY;
    renderer.SetColor4(grey, grey, grey, renderer.GetColor4().w);
    const math::BoundingBox2f outer = GetOuterBBLocal();
    renderer.DrawFrame(outer.min, outer.max - outer.min, HIGHLIGHT_WIDTH);
}

Button::Button() = default;

Button::Button(const std::string& text, util::CallbackPtr callback)
{
    AddComponent(QLEX_NEW new Label(text));
    AddOnClickCallback(callback);
}

Button::Button(util::SharedPtr<Component> content, util::CallbackPtr callback)
{
    AddComponent(content);
    AddOnClickCallback(callback);
}

} // namespace gui
