#pragma once

#include "gui/components/Button.h"
#include "gui/components/Icon.h"
#include "gui/components/Label.h"
#include "script/Attributes.h"

#include <optional>
#include <vector>

namespace gui
{

// A button with a state of three: Off, On, or Mixed where it stands for several values that differ. A
// click turns On to Off and anything else to On; a middle click brings back the default state, if any.
class AbstractToggleButton : public AbstractButton
{
public:
    enum State
    {
        Off = 0,
        On = 1,
        Mixed = 2,
    };

    AbstractToggleButton();

    void OnClick() override;
    // Runs the on-click callbacks when the state changes.
    virtual void SetState(State state);
    virtual void SetStateNoCallback(State state) { m_state = state; }
    State GetState() const { return m_state; }
    void SetDefaultState(std::optional<bool> state) { m_defaultState = state; }
    std::optional<bool> GetDefaultState() const { return m_defaultState; }

    // The middle click: the default state, if there is one.
    virtual void RestoreDefault();
    void OnKeyEvent(const input::KeyEvent& event) override;

    using AbstractButton::OnClick;

protected:
    State m_state;
    std::optional<bool> m_defaultState;
};

class Checkbox : public AbstractToggleButton
{
public:
    static constexpr const char* OFF_TEXTURE = "gui/checkbox-off.tga";
    static constexpr const char* ON_TEXTURE = "gui/checkbox-on.tga";
    static constexpr const char* UNKNOWN_TEXTURE = "gui/checkbox-unknown.tga";
    // The side of the box in GUI units.
    static constexpr float ICON_SIZE = 16.0f;

    explicit Checkbox(const std::string& text);

    // Shows the picture of the state.
    void SetStateNoCallback(State state) override;
    const util::SharedPtr<Icon>& GetIcon() const { return m_icon; }
    const util::SharedPtr<Label>& GetLabel() const { return m_label; }

private:
    rendering::TextureProxy m_offTexture;
    rendering::TextureProxy m_onTexture;
    rendering::TextureProxy m_unknownTexture;
    util::SharedPtr<Icon> m_icon;
    util::SharedPtr<Label> m_label;
};

// A check box that shows a setting and sets it: each side follows the other.
class AttribCheckbox : public Checkbox
{
public:
    AttribCheckbox(const std::string& text, util::SharedPtr<script::TAttrib<bool>> attrib);

    void OnClick() override;
    // The setting, too, returns to its default.
    void RestoreDefault() override;
    void OnChange();

    using Checkbox::OnClick;

private:
    util::SharedPtr<script::TAttrib<bool>> m_attrib;
};

// A check box over several settings at once: Mixed while they differ, and a click sets them all.
class MultiAttribCheckbox : public Checkbox
{
public:
    MultiAttribCheckbox(const std::string& text, std::vector<util::SharedPtr<script::TAttrib<bool>>> attribs);

    // Sets every setting to the state, unless it is Mixed.
    void SetStateNoCallback(State state) override;
    void CalcValue();

private:
    std::vector<util::SharedPtr<script::TAttrib<bool>>> m_attribs;
    // Set while this writes the settings, whose change callbacks would otherwise recalculate midway.
    bool m_guard;
};

} // namespace gui
