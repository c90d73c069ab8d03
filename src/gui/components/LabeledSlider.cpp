#include "gui/components/LabeledSlider.h"

#include "gui/LookAndFeel.h"
#include "gui/TextLookup.h"
#include "gui/components/ListLayout.h"
#include "util/StringUtil.h"

#include <boost/format.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace gui
{

namespace
{
// Decimals shown for a range of about one: three, one fewer for each power of ten more.
const int RANGE_DECIMALS = 3;
// No value shows more decimals than this, however small.
const double MAX_DECIMALS = 30.0;
// Between name, value and unit, in GUI units.
const float LINE_SPACING = 4.0f;
} // namespace

LabeledSlider::LabeledSlider(const std::string& name, util::SharedPtr<Slider> slider, const std::string& unit)
    : m_name(name), m_unit(unit), m_nameLabel(QLEX_NEW new Label()), m_unitLabel(QLEX_NEW new Label()),
      m_textField(QLEX_NEW new TextField()), m_slider(std::move(slider)), m_displayFactor(1.0),
      m_takingText(false)
{
    QLEX_ASSERT(m_slider);
    SetBorder(LookAndFeel::GetDefault()->GetDefaultBorder());
    SetLayout(QLEX_NEW new ListLayout(ListLayout::Vertical, 0.0f));
    util::SharedPtr<Component> line =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Horizontal, 0.0f));
    line->AddComponent(m_nameLabel);
    line->AddComponent(m_textField);
    line->AddComponent(m_unitLabel);
    AddComponent(line);
    AddComponent(m_slider);
    m_textField->SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
    m_slider->SetBorder(LookAndFeel::GetDefault()->GetEmptyBorder());
    m_textField->SetMaxLines(1);
    m_textField->SetEnabled(false);
    m_textField->SetTooltipText(GetText("LabeledSlider_Tooltip"));
    m_textField->AddOnFocusLostCallback(util::MakeCallback(&LabeledSlider::OnTextChange, this));
    m_slider->AddOnChangeCallback(util::MakeCallback(&LabeledSlider::UpdateLabelText, this));
    UpdateLabelText();
}

void LabeledSlider::SetUnit(const std::string& unit)
{
    m_unit = unit;
    UpdateLabelText();
}

void LabeledSlider::SetDisplayFactor(double factor)
{
    m_displayFactor = factor;
    UpdateLabelText();
}

std::string LabeledSlider::FormatValue(double value, double min, double max, double factor)
{
    if (std::isnan(value))
        return "";
    if (value > std::numeric_limits<double>::max())
        return "+inf";
    if (value < -std::numeric_limits<double>::max())
        return "-inf";
    // Rounded powers of ten; a range of no width (a display factor of 0) counts as one of about one.
    const auto power = [](double x)
    {
        const double p = std::floor(std::log10(std::fabs(x)) + 0.5);
        return std::isfinite(p) ? int(std::clamp(p, -MAX_DECIMALS, MAX_DECIMALS)) : 0;
    };
    int decimals = std::max(RANGE_DECIMALS - power(max * factor - min * factor), 0);
    if (value != 0.0)
        decimals = std::max(decimals, 1 - power(value));
    return (boost::format("%." + std::to_string(decimals) + "f") % (value * factor)).str();
}

void LabeledSlider::UpdateLabelText()
{
    const auto [min, max] = m_slider->GetRange();
    const std::string text = FormatValue(m_slider->GetValue(), min, max, m_displayFactor);
    m_nameLabel->SetText(m_name);
    m_textField->SetText(text);
    m_textField->SetInnerSize(m_textField->GetFontFormater().GetTextSize(text));
    m_unitLabel->SetText(m_unit);
}

void LabeledSlider::OnTextChange()
{
    if (m_takingText)
        return;
    m_takingText = true;
    try
    {
        const double typed = util::FromString<double>(m_textField->GetText());
        m_slider->SetValue(typed / m_displayFactor);
    }
    catch (std::exception&)
    {
        // Not a number: the old text comes back below.
    }
    m_textField->SetEnabled(false);
    m_takingText = false;
    UpdateLabelText();
}

} // namespace gui
