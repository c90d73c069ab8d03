#pragma once

#include "gui/components/Component.h"
#include "util/Callback.h"

#include <set>
#include <string>

namespace gui
{

// What every button shares: a left press and release over it, or one of its hot keys, is a click.
class AbstractButton : public Component
{
public:
    AbstractButton();

    // Runs the on-click callbacks.
    virtual void OnClick();
    void AddOnClickCallback(util::CallbackPtr callback) { m_onClick.Add(callback); }

    // Keys that act like a click, pressed without Shift, Ctrl or Alt.
    void AddHotKey(SDLKey key) { m_hotKeys.insert(key); }
    // A disabled button ignores everything and shows no highlight.
    void SetEnabled(bool enabled) { m_enabled = enabled; }
    bool IsEnabled() const { return m_enabled; }
    bool IsPressed() const { return m_pressed; }

    void OnKeyEvent(const input::KeyEvent& event) override;
    void OnClick(const input::ClickEvent& event) override;
    void DrawCompAndChildren() const override;

protected:
    bool m_pressed;
    util::CallbackSet m_onClick;
    std::set<SDLKey> m_hotKeys;
    bool m_enabled;
};

class Button : public AbstractButton
{
public:
    Button();
    // A white label with the text. A null callback is not added.
    Button(const std::string& text, util::CallbackPtr callback);
    // The component is the button's content.
    Button(util::SharedPtr<Component> content, util::CallbackPtr callback);
};

} // namespace gui
