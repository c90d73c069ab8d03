#pragma once

#include "gui/components/TextBox.h"

namespace gui
{

// One line of text that can't be edited, in a colour of its own.
class Label : public TextBox
{
public:
    explicit Label(const std::string& text = "",
                   const math::Vec4& color = math::Vec4(1.0f, 1.0f, 1.0f, 1.0f));
};

} // namespace gui
