#pragma once

#include "util/SharedPtr.h"

namespace gui
{

// The widths of a font's characters, in the font's own unit: a row of text is 1 high and a whole
// character cell is 1 wide. All measuring and wrapping of text goes through this; the bitmap fonts
// implement it when they land, and until then FixedWidthMetrics stands in.
class TextMetrics : public util::Pointee
{
public:
    virtual ~TextMetrics() = default;
    virtual float GetWidth(unsigned char c) const = 0;
};

// Every character one cell wide: what a font gives whose widths file can't be read.
class FixedWidthMetrics : public TextMetrics
{
public:
    float GetWidth(unsigned char) const override { return 1.0f; }

    // The one shared instance.
    static util::SharedPtr<TextMetrics> Get();
};

} // namespace gui
