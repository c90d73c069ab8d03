#pragma once

#include "math/Math.h"

namespace gui
{

// The few drawing calls the GUI needs: the present colour and untextured rectangles and frames in
// immediate-mode GL. A stand-in with the names of rendering::Renderer, which takes its place when the
// rendering library lands. The colour is shadowed so that components can multiply theirs into it.
class GuiRenderer
{
public:
    static math::Vec4 GetColor4() { return s_color; }
    static void SetColor4(const math::Vec4& color);
    // Multiplies each channel into the present colour.
    static void MulColor4(const math::Vec4& color);

    static void DrawRect(const math::Vec2& pos, const math::Vec2& size);
    // The outline of a rectangle, drawn inward with the given thickness, as one triangle strip of ten
    // vertices: each outer corner followed by its inner one, round from pos and back.
    static void DrawFrame(const math::Vec2& pos, const math::Vec2& size, float thickness);

private:
    static math::Vec4 s_color;
};

// Saves the present colour and restores it at the end of the scope.
class ColorPusher
{
public:
    ColorPusher() : m_saved(GuiRenderer::GetColor4()) {}
    ~ColorPusher() { GuiRenderer::SetColor4(m_saved); }
    ColorPusher(const ColorPusher&) = delete;
    ColorPusher& operator=(const ColorPusher&) = delete;

private:
    math::Vec4 m_saved;
};

} // namespace gui
