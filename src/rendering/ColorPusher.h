#pragma once

#include "rendering/Renderer.h"

namespace rendering
{

// Saves the renderer's colour for the length of a scope.
class ColorPusher
{
public:
    ColorPusher() : m_color(Renderer::GetInstancePtr()->GetColor4()) {}
    ~ColorPusher() { Renderer::GetInstancePtr()->SetColor4(m_color); }
    ColorPusher(const ColorPusher&) = delete;
    ColorPusher& operator=(const ColorPusher&) = delete;

private:
    math::TVector4<float> m_color;
};

} // namespace rendering
