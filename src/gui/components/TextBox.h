#pragma once

#include "gui/components/Component.h"
#include "gui/components/Text.h"
#include "util/ClassTracker.h"

#include <string>

namespace gui
{

// The component that holds a Text: it places and draws it, wraps it to the box's maximal width, grows to
// hold it, and gives it the keyboard while the box has the focus. At most one box has the focus; a new
// box takes it, until SetNonEditable.
class TextBox : public Component, public util::ClassTracker<TextBox>
{
public:
    static constexpr float DEFAULT_MAX_WIDTH = 800.0f;
    // The text's listener priority while its box has the focus: it sees keys before the rest of the tree.
    static const int FOCUSED_TEXT_PRIORITY = 75;

    explicit TextBox(const std::string& text = "");
    ~TextBox() override;

    void SetText(const std::string& text);
    std::string GetText() const { return m_text->GetText(); }
    const util::SharedPtr<Text>& GetTextEditor() const { return m_text; }
    // The font of both the formater and the text.
    void SetFont(FontProxy font);

    // Takes the keyboard (from every other box) or gives it back.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return m_enabled; }
    // Not editable, and not to be made so by a click or a drag.
    void SetNonEditable();
    bool IsEditable() const { return m_enableByClick || m_enableByDrag; }
    void SetEnableByClick(bool enable) { m_enableByClick = enable; }
    void SetEnableByDrag(bool enable) { m_enableByDrag = enable; }
    void SetLoseFocusOutside(bool lose) { m_loseFocusOutside = lose; }
    void SetClickReleases(bool releases) { m_clickReleases = releases; }
    // Drawn inverted: dark text on the colour, selected parts plain.
    void SetInverse(bool inverse) { m_inverse = inverse; }
    void SetMaxLines(unsigned long maxLines) { m_text->SetMaxLines(maxLines); }
    // The width limit wraps the text: in the formater's screen units.
    void SetMaxSize(math::Vec2 size) override;

    // Between text positions and local coordinates of the box.
    math::Vec2 CursorToPos(const TextPos& pos) const;
    TextPos PosToCursor(math::Vec2 pos) const;

    void AddOnReturnCallback(util::CallbackPtr callback) { m_onReturn.Add(callback); }
    void AddOnTabCallback(util::CallbackPtr callback) { m_text->AddTabCallback(callback); }
    // Also run on return.
    void AddOnFocusLostCallback(util::CallbackPtr callback) { m_onFocusLost.Add(callback); }
    void OnReturn();
    // The inner size becomes the larger, per axis, of itself and the text's size: a box only grows.
    void OnTextChange();

    void OnKeyEvent(const input::KeyEvent& event) override;
    void OnClick(const input::ClickEvent& event) override;
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void DrawComp() const override;

private:
    // A click or drag outside the box drops the focus, where the box is so set.
    void LoseFocusIfOutside();
    void Attach(bool attach);

    util::SharedPtr<Text> m_text;
    bool m_selecting;
    bool m_movingText;
    bool m_enabled;
    bool m_enableByDrag;
    bool m_enableByClick;
    bool m_loseFocusOutside;
    bool m_clickReleases;
    bool m_inverse;
    util::CallbackSet m_onFocusLost;
    util::CallbackSet m_onReturn;
};

// A one-line field, 96 units wide to begin with.
class TextField : public TextBox
{
public:
    explicit TextField(const std::string& text = "");
};

} // namespace gui
