#include "gui/components/Slider.h"

#include "gui/LookAndFeel.h"
#include "gui/TextLookup.h"
#include "input/Input.h"
#include "input/Key.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace gui
{

namespace
{
const math::Vec2 SLIDER_SIZE(160.0f, 16.0f);
// The bar fills the middle half of the slider's height.
const float BAR_TOP = 0.25f;
const float BAR_BOTTOM = 0.75f;
// The bar's colour at both ends: the background of the look, darker.
const float BAR_SHADE = 0.8f;

math::Vec4 BarColor()
{
    math::Vec4 color = LookAndFeel::GetDefault()->GetBackgroundColor();
    color.x *= BAR_SHADE;
    color.y *= BAR_SHADE;
    color.z *= BAR_SHADE;
    return color;
}

math::Vec4 Multiplied(const math::Vec4& a, const math::Vec4& b)
{
    return math::Vec4(a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w);
}
} // namespace

Slider::Slider(double min, double max)
    : m_min(min), m_max(max), m_value((min + max) / 2.0), m_logarithmic(false), m_dragging(false),
      m_startColor(BarColor()), m_endColor(BarColor())
{
    QLEX_ASSERT(min < max && "min < max");
    SetInnerSize(SLIDER_SIZE);
}

void Slider::SetValue(double value)
{
    if (value == m_value)
        return;
    SetValueNoCallback(value);
    OnValueChange();
}

void Slider::SetDefault(double value)
{
    m_default = value;
    if (HasText("Slider_Tooltip"))
        SetTooltipText(GetText("Slider_Tooltip"));
}

void Slider::SetLogarithmic(bool logarithmic)
{
    if (logarithmic)
        QLEX_ASSERT(m_min > 0 && "m_min > 0");
    m_logarithmic = logarithmic;
}

std::pair<float, float> Slider::CalcXBoundsLocal() const
{
    return {BAR_INSET, m_innerSize.x - BAR_INSET};
}

float Slider::CalcMarkerPos() const
{
    if (std::isnan(m_value))
        return std::numeric_limits<float>::quiet_NaN();
    double value = std::clamp(m_value, m_min, m_max);
    double low = m_min;
    double high = m_max;
    if (m_logarithmic)
    {
        value = std::log10(value);
        low = std::log10(low);
        high = std::log10(high);
    }
    const double t = (value - low) / (high - low);
    const auto [start, end] = CalcXBoundsLocal();
    return float((1.0 - t) * start + t * end);
}

void Slider::OnMousePos(math::Vec2 guiPos)
{
    const auto [start, end] = CalcXBoundsLocal();
    const double t = (GUIToLocal(guiPos).x - start) / (end - start);
    double value;
    if (t <= 0.0)
        value = m_lowEndValue.value_or(m_min);
    else if (t >= 1.0)
        value = m_highEndValue.value_or(m_max);
    else if (m_logarithmic)
        value =
            std::clamp(std::pow(10.0, (1.0 - t) * std::log10(m_min) + t * std::log10(m_max)), m_min, m_max);
    else
        value = std::clamp((1.0 - t) * m_min + t * m_max, m_min, m_max);
    SetValue(value);
}

void Slider::DrawComp() const
{
    Component::DrawComp();
    rendering::ColorPusher restore;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const math::Vec4 inForce = renderer.GetColor4();
    const float h = m_innerSize.y;
    const auto [start, end] = CalcXBoundsLocal();
    const float top = h * BAR_TOP;
    const float bottom = h * BAR_BOTTOM;
    if (m_barTexture.GetMentor() && m_barTexture)
    {
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_barTexture->GetName());
        renderer.DrawRectGUI(math::Vec2(start, top), math::Vec2(end - start, bottom - top));
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
    else
    {
        const math::Vec4 middle = m_middleColor.value_or((m_startColor + m_endColor) * 0.5f);
        const float centre = (start + end) * 0.5f;
        glBegin(GL_TRIANGLE_STRIP);
        const std::pair<float, math::Vec4> stops[] = {
            {start, m_startColor}, {centre, middle}, {end, m_endColor}};
        for (const auto& [x, color] : stops)
        {
            renderer.SetColor4(Multiplied(color, inForce));
            glVertex2f(x, top);
            glVertex2f(x, bottom);
        }
        glEnd();
    }
    const float marker = CalcMarkerPos();
    if (std::isnan(marker))
        return;
    renderer.SetColor4(Multiplied(LookAndFeel::GetDefault()->GetForegroundColor(), inForce));
    renderer.DrawRectGUI(math::Vec2(marker - MarkerWidth * 0.5f, h * 0.5f - MarkerHeight * 0.5f),
                         math::Vec2(MarkerWidth, MarkerHeight));
}

void Slider::OnDragBegin(const input::DragEvent& event)
{
    Component::OnDragBegin(event);
    if (event.IsHandled() || event.button != SDLKey(input::Key::MOUSE_LEFT) || !IsMouseOverInner())
        return;
    m_dragging = true;
    OnBeginValueChange();
    OnMousePos(input::Input::GetInstancePtr()->GetMousePos());
    event.SetHandled();
}

void Slider::OnDrag(const input::DragEvent& event)
{
    Component::OnDrag(event);
    if (event.IsHandled() || !m_dragging || event.button != SDLKey(input::Key::MOUSE_LEFT))
        return;
    OnMousePos(event.position);
    event.SetHandled();
}

void Slider::OnDragEnd(const input::DragEvent& event)
{
    Component::OnDragEnd(event);
    if (event.IsHandled() || !m_dragging || event.button != SDLKey(input::Key::MOUSE_LEFT))
        return;
    OnEndValueChange();
    m_dragging = false;
    event.SetHandled();
}

void Slider::OnClick(const input::ClickEvent& event)
{
    Component::OnClick(event);
    if (event.IsHandled() || !IsMouseOverInner() || event.clickCount != 1)
        return;
    if (event.button == SDLKey(input::Key::MOUSE_LEFT))
    {
        OnBeginValueChange();
        OnMousePos(event.position);
        OnEndValueChange();
        event.SetHandled();
    }
    else if (event.button == SDLKey(input::Key::MOUSE_MIDDLE) && m_default && GetValue() != *m_default)
    {
        OnBeginValueChange();
        SetValue(*m_default);
        OnEndValueChange();
        event.SetHandled();
    }
}

AttribSlider::AttribSlider(float min, float max, util::SharedPtr<script::TAttrib<float>> attrib)
    : Slider(min, max), m_attrib(std::move(attrib))
{
    QLEX_ASSERT(m_attrib);
    SetValue(m_attrib->Get());
    SetDefault(m_attrib->GetDefault());
    m_attrib->AddChangeCallback(util::MakeCallback(&AttribSlider::OnCVarChange, this));
}

void AttribSlider::OnCVarChange()
{
    SetValue(m_attrib->Get());
}

void AttribSlider::OnValueChange()
{
    Slider::OnValueChange();
    m_attrib->Set(float(GetValue()));
}

MultiAttribSlider::MultiAttribSlider(double min, double max,
                                     std::vector<util::SharedPtr<script::TAttrib<float>>> attribs)
    : Slider(min, max), m_attribs(std::move(attribs)), m_guard(false)
{
    CalcValue();
    for (const auto& attrib : m_attribs)
        attrib->AddChangeCallback(util::MakeCallback(&MultiAttribSlider::OnCVarChange, this));
    if (!m_attribs.empty())
        SetDefault(m_attribs.front()->GetDefault());
}

void MultiAttribSlider::CalcValue()
{
    if (m_guard)
        return;
    double value = std::numeric_limits<double>::quiet_NaN();
    if (!m_attribs.empty())
    {
        value = m_attribs.front()->Get();
        for (const auto& attrib : m_attribs)
        {
            if (attrib->Get() != m_attribs.front()->Get())
                value = std::numeric_limits<double>::quiet_NaN();
        }
    }
    // NaN never equals itself, so a second NaN would count as a change.
    if (std::isnan(value) && std::isnan(GetValue()))
        return;
    SetValue(value);
}

void MultiAttribSlider::OnValueChange()
{
    Slider::OnValueChange();
    const double value = GetValue();
    if (std::isnan(value))
        return;
    m_guard = true;
    for (const auto& attrib : m_attribs)
        attrib->Set(float(value));
    m_guard = false;
    CalcValue();
}

} // namespace gui
