#pragma once

#include "gui/components/Component.h"
#include "rendering/Texture.h"
#include "script/Attributes.h"
#include "util/Callback.h"

#include <optional>
#include <utility>
#include <vector>

namespace gui
{

// The size of the marker on the bar, in GUI units.
const float MarkerWidth = 6.0f;
const float MarkerHeight = 14.0f;

// A value on a bar between a minimum and a maximum, linear or logarithmic. The ends may stand for other
// values (an infinity, say), which the mouse gives at or beyond that end. A middle click restores the
// default. Begin and end callbacks frame each change by the user, so that one drag is one step of history.
class Slider : public Component
{
public:
    // The bar runs this far inside the inner rectangle at each end, so that the marker fits at the ends.
    static constexpr float BAR_INSET = 5.0f;

    Slider(double min, double max);

    virtual double GetValue() const { return m_value; }
    // Runs the change callbacks if the value differs.
    virtual void SetValue(double value);
    // A value outside the range is kept, and shown at the nearer end; NaN shows no marker.
    virtual void SetValueNoCallback(double value) { m_value = value; }
    // Also takes the language's slider tooltip, where there is one.
    virtual void SetDefault(double value);
    virtual std::pair<double, double> GetRange() const { return {m_min, m_max}; }
    virtual void OnBeginValueChange() { m_beginCallbacks.CallAll(); }
    virtual void OnValueChange() { m_changeCallbacks.CallAll(); }
    virtual void OnEndValueChange() { m_endCallbacks.CallAll(); }

    void AddBeginChangeCallback(util::CallbackPtr callback) { m_beginCallbacks.Add(callback); }
    void AddOnChangeCallback(util::CallbackPtr callback) { m_changeCallbacks.Add(callback); }
    void AddEndChangeCallback(util::CallbackPtr callback) { m_endCallbacks.Add(callback); }

    // Needs a minimum above 0.
    void SetLogarithmic(bool logarithmic);
    bool IsLogarithmic() const { return m_logarithmic; }
    void SetValueAtLowEnd(std::optional<double> value) { m_lowEndValue = value; }
    void SetValueAtHighEnd(std::optional<double> value) { m_highEndValue = value; }
    std::optional<double> GetDefault() const { return m_default; }
    bool IsDragging() const { return m_dragging; }

    void SetStartColor(const math::Vec4& color) { m_startColor = color; }
    void SetEndColor(const math::Vec4& color) { m_endColor = color; }
    void SetMiddleColor(std::optional<math::Vec4> color) { m_middleColor = color; }
    void SetBarTexture(rendering::TextureProxy texture) { m_barTexture = texture; }

    // The x range of the bar in local coordinates.
    std::pair<float, float> CalcXBoundsLocal() const;
    // Local x of the marker: the value clamped to the range; NaN for a NaN value.
    float CalcMarkerPos() const;
    // Sets the value for the mouse at a GUI position.
    void OnMousePos(math::Vec2 guiPos);

    void DrawComp() const override;
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void OnClick(const input::ClickEvent& event) override;

protected:
    double m_min;
    double m_max;
    double m_value;
    std::optional<double> m_lowEndValue;
    std::optional<double> m_highEndValue;
    bool m_logarithmic;
    bool m_dragging;
    math::Vec4 m_startColor;
    math::Vec4 m_endColor;
    std::optional<math::Vec4> m_middleColor;
    rendering::TextureProxy m_barTexture;
    util::CallbackSet m_beginCallbacks;
    util::CallbackSet m_changeCallbacks;
    util::CallbackSet m_endCallbacks;
    std::optional<double> m_default;
};

// A slider that shows a setting and sets it: each side follows the other.
class AttribSlider : public Slider
{
public:
    AttribSlider(float min, float max, util::SharedPtr<script::TAttrib<float>> attrib);

    void OnValueChange() override;
    void OnCVarChange();

private:
    util::SharedPtr<script::TAttrib<float>> m_attrib;
};

// A slider over several settings at once: no marker while they differ, and a change sets them all.
class MultiAttribSlider : public Slider
{
public:
    MultiAttribSlider(double min, double max, std::vector<util::SharedPtr<script::TAttrib<float>>> attribs);

    void OnValueChange() override;
    void OnCVarChange() { CalcValue(); }
    void CalcValue();

private:
    std::vector<util::SharedPtr<script::TAttrib<float>>> m_attribs;
    // Set while this writes the settings, whose change callbacks would otherwise recalculate midway.
    bool m_guard;
};

} // namespace gui
