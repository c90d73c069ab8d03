#pragma once
// Colour conversions; all components from 0 to 1, hue in degrees from 0 to 360.

#include "math/Math.h"

namespace util
{

float RGBIntensity(const math::TVector3<float>& rgb);
math::TVector3<float> HSL2RGB(float h, float s, float l);
math::TVector3<float> HSL2RGB(const math::TVector3<float>& hsl);
math::TVector3<float> RGB2HSL(float r, float g, float b);
math::TVector3<float> RGB2HSL(const math::TVector3<float>& rgb);

} // namespace util
