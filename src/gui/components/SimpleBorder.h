#pragma once

#include "gui/components/Border.h"

namespace gui
{

// A frame of one width on all four sides around a filled background.
class SimpleBorder : public Border
{
public:
    SimpleBorder(float width, const math::Vec4& frameColor, const math::Vec4& fillColor)
        : m_width(width), m_frameColor(frameColor), m_fillColor(fillColor)
    {
    }

    void Draw(math::Vec2 innerSize) const override;
    float MarginLeft() const override { return m_width; }
    float MarginRight() const override { return m_width; }
    float MarginTop() const override { return m_width; }
    float MarginBottom() const override { return m_width; }

    math::Vec4 GetFrameColor() const { return m_frameColor; }
    math::Vec4 GetFillColor() const { return m_fillColor; }

private:
    float m_width;
    math::Vec4 m_frameColor;
    math::Vec4 m_fillColor;
};

} // namespace gui
