#pragma once

#include "gui/components/Button.h"
#include "gui/components/Icon.h"
#include "gui/components/Label.h"

#include <set>

namespace gui
{

class RadioGroup;

// A button of which one in its group is selected: a click selects it.
class AbstractRadioButton : public AbstractButton
{
public:
    // Joins the group; the first of a group starts selected.
    explicit AbstractRadioButton(util::SharedPtr<RadioGroup> group);
    ~AbstractRadioButton() override;

    // The on-click callbacks, then this becomes the selected one.
    void OnClick() override;
    virtual void OnSelect() {}
    virtual void OnDeselect() {}
    void SetChecked();
    bool IsChecked() const;
    const util::SharedPtr<RadioGroup>& GetGroup() const { return m_group; }

    using AbstractButton::OnClick;

private:
    util::SharedPtr<RadioGroup> m_group;
};

class RadioGroup : public util::Pointee
{
public:
    void SetSelected(AbstractRadioButton* button);
    AbstractRadioButton* GetSelected() const { return m_selected; }
    void AddButton(AbstractRadioButton* button);
    // The selection passes to the first left, or to none.
    void RemoveButton(AbstractRadioButton* button);

private:
    AbstractRadioButton* m_selected = nullptr;
    std::set<AbstractRadioButton*> m_buttons;
};

class RadioButton : public AbstractRadioButton
{
public:
    static constexpr const char* OFF_TEXTURE = "gui/radio-off.tga";
    static constexpr const char* ON_TEXTURE = "gui/radio-on.tga";
    static constexpr float ICON_SIZE = 16.0f;

    RadioButton(const std::string& text, util::SharedPtr<RadioGroup> group);

    // Shows the picture of whether it is checked.
    void DrawCompAndChildren() const override;
    const util::SharedPtr<Label>& GetLabel() const { return m_label; }

private:
    rendering::TextureProxy m_offTexture;
    rendering::TextureProxy m_onTexture;
    util::SharedPtr<Icon> m_icon;
    util::SharedPtr<Label> m_label;
};

} // namespace gui
