#include "gui/components/Checkbox.h"

#include "input/Key.h"
#include "rendering/TextureManager.h"

namespace gui
{

AbstractToggleButton::AbstractToggleButton() : m_state(Off) {}

void AbstractToggleButton::OnClick()
{
    SetState(m_state == On ? Off : On);
}

void AbstractToggleButton::SetState(State state)
{
    if (state == m_state)
        return;
    SetStateNoCallback(state);
    AbstractButton::OnClick();
}

void AbstractToggleButton::OnKeyEvent(const input::KeyEvent& event)
{
    AbstractButton::OnKeyEvent(event);
    if (event.IsHandled() || !event.pressed || event.key != SDLKey(input::Key::MOUSE_MIDDLE) ||
        !m_defaultState || !IsMouseOverInner())
        return;
    RestoreDefault();
    event.SetHandled();
}

void AbstractToggleButton::RestoreDefault()
{
    if (m_defaultState)
        SetState(*m_defaultState ? On : Off);
}

namespace
{
rendering::TextureProxy LoadPicture(const char* name)
{
    return rendering::TextureManager::GetInstancePtr()->Load(name,
                                                             rendering::TextureManager::DefaultImageType());
}
} // namespace

Checkbox::Checkbox(const std::string& text)
    : m_offTexture(LoadPicture(OFF_TEXTURE)), m_onTexture(LoadPicture(ON_TEXTURE)),
      m_unknownTexture(LoadPicture(UNKNOWN_TEXTURE)), m_icon(QLEX_NEW new Icon()),
      m_label(QLEX_NEW new Label(text))
{
    // Sized before the picture is given, so that nothing is loaded before the window is up.
    m_icon->SetInnerSize(ICON_SIZE, ICON_SIZE);
    AddComponent(m_icon);
    AddComponent(m_label);
    SetStateNoCallback(Off);
}

void Checkbox::SetStateNoCallback(State state)
{
    m_icon->SetTexture(state == Off ? m_offTexture : state == On ? m_onTexture : m_unknownTexture);
    m_state = state;
}

AttribCheckbox::AttribCheckbox(const std::string& text, util::SharedPtr<script::TAttrib<bool>> attrib)
    : Checkbox(text), m_attrib(std::move(attrib))
{
    QLEX_ASSERT(m_attrib);
    OnChange();
    m_attrib->AddChangeCallback(util::MakeCallback(&AttribCheckbox::OnChange, this));
    SetDefaultState(m_attrib->GetDefault());
}

void AttribCheckbox::OnChange()
{
    SetState(m_attrib->Get() ? On : Off);
}

void AttribCheckbox::RestoreDefault()
{
    Checkbox::RestoreDefault();
    m_attrib->SetToDefault();
}

void AttribCheckbox::OnClick()
{
    Checkbox::OnClick();
    if (m_state != Mixed)
        m_attrib->Set(m_state == On);
}

MultiAttribCheckbox::MultiAttribCheckbox(const std::string& text,
                                         std::vector<util::SharedPtr<script::TAttrib<bool>>> attribs)
    : Checkbox(text), m_attribs(std::move(attribs)), m_guard(false)
{
    CalcValue();
    for (const auto& attrib : m_attribs)
        attrib->AddChangeCallback(util::MakeCallback(&MultiAttribCheckbox::CalcValue, this));
    if (!m_attribs.empty())
        SetDefaultState(m_attribs.front()->GetDefault());
}

void MultiAttribCheckbox::CalcValue()
{
    if (m_guard)
        return;
    bool same = !m_attribs.empty();
    for (const auto& attrib : m_attribs)
        same = same && attrib->Get() == m_attribs.front()->Get();
    SetState(!same ? Mixed : m_attribs.front()->Get() ? On : Off);
}

void MultiAttribCheckbox::SetStateNoCallback(State state)
{
    if (state != m_state)
        Checkbox::SetStateNoCallback(state);
    if (state != Mixed)
    {
        m_guard = true;
        for (const auto& attrib : m_attribs)
            attrib->Set(state == On);
        m_guard = false;
    }
    CalcValue();
}

} // namespace gui
