#pragma once

#include "gui/components/Label.h"
#include "gui/components/Slider.h"
#include "gui/components/TextBox.h"

#include <string>

namespace gui
{

// A slider under a line of its name, its value and its unit. The value can be typed into its field.
class LabeledSlider : public Component
{
public:
    LabeledSlider(const std::string& name, util::SharedPtr<Slider> slider, const std::string& unit);

    void SetUnit(const std::string& unit);
    void SetValue(double value) { m_slider->SetValue(value); }
    double GetValue() const { return m_slider->GetValue(); }
    std::pair<double, double> GetRange() const { return m_slider->GetRange(); }
    // The shown value is the value times this.
    void SetDisplayFactor(double factor);

    const std::string& GetName() const { return m_name; }
    const util::SharedPtr<Slider>& GetSlider() const { return m_slider; }
    const util::SharedPtr<TextField>& GetTextField() const { return m_textField; }

    // The value as the field shows it: empty for NaN, "+inf" and "-inf" beyond the doubles, otherwise with
    // as many decimals as the range and the value's size call for.
    static std::string FormatValue(double value, double min, double max, double factor);
    void UpdateLabelText();
    // The field's text, read as a number, becomes the value; a text that is no number is put back.
    void OnTextChange();

private:
    std::string m_name;
    std::string m_unit;
    util::SharedPtr<Label> m_nameLabel;
    util::SharedPtr<Label> m_unitLabel;
    util::SharedPtr<TextField> m_textField;
    util::SharedPtr<Slider> m_slider;
    double m_displayFactor;
    // Set while the field's text is taken, which disables the field and so would come here again.
    bool m_takingText;
};

} // namespace gui
