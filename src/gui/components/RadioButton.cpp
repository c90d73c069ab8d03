#include "gui/components/RadioButton.h"

#include "rendering/TextureManager.h"

namespace gui
{

AbstractRadioButton::AbstractRadioButton(util::SharedPtr<RadioGroup> group) : m_group(std::move(group))
{
    QLEX_ASSERT(m_group);
    m_group->AddButton(this);
}

AbstractRadioButton::~AbstractRadioButton()
{
    m_group->RemoveButton(this);
}

void AbstractRadioButton::OnClick()
{
    AbstractButton::OnClick();
    SetChecked();
}

void AbstractRadioButton::SetChecked()
{
    m_group->SetSelected(this);
}

bool AbstractRadioButton::IsChecked() const
{
    return m_group->GetSelected() == this;
}

void RadioGroup::SetSelected(AbstractRadioButton* button)
{
    if (button == m_selected)
        return;
    if (m_selected)
        m_selected->OnDeselect();
    m_selected = button;
    if (m_selected)
        m_selected->OnSelect();
}

void RadioGroup::AddButton(AbstractRadioButton* button)
{
    m_buttons.insert(button);
    if (!m_selected)
        SetSelected(button);
}

void RadioGroup::RemoveButton(AbstractRadioButton* button)
{
    m_buttons.erase(button);
    if (button == m_selected)
    {
        // The leaving button hears no deselection: it is being destroyed.
        m_selected = nullptr;
        SetSelected(m_buttons.empty() ? nullptr : *m_buttons.begin());
    }
}

RadioButton::RadioButton(const std::string& text, util::SharedPtr<RadioGroup> group)
    : AbstractRadioButton(std::move(group)), m_offTexture(rendering::TextureManager::GetInstancePtr()->Load(
                                                 OFF_TEXTURE, rendering::TextureManager::DefaultImageType())),
      m_onTexture(rendering::TextureManager::GetInstancePtr()->Load(
          ON_TEXTURE, rendering::TextureManager::DefaultImageType())),
      m_icon(QLEX_NEW new Icon()), m_label(QLEX_NEW new Label(text))
{
    m_icon->SetInnerSize(ICON_SIZE, ICON_SIZE);
    AddComponent(m_icon);
    AddComponent(m_label);
}

void RadioButton::DrawCompAndChildren() const
{
    m_icon->SetTexture(IsChecked() ? m_onTexture : m_offTexture);
    AbstractRadioButton::DrawCompAndChildren();
}

} // namespace gui
