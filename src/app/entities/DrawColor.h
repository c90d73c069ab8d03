#pragma once
// The colour of the entities' pictures goes through the renderer, which keeps a shadow of GL's colour.

#include "math/Math.h"
#include "rendering/Renderer.h"

namespace app
{
inline void SetDrawColor(const math::Vec4& c)
{
    rendering::Renderer::GetInstancePtr()->SetColor4(c);
}
} // namespace app
