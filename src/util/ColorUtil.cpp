#include "util/ColorUtil.h"

#include <algorithm>
#include <cmath>

namespace util
{

namespace
{
const float DEGREES_PER_SEXTANT = 60.0f;
const float FULL_CIRCLE = 360.0f;

float HueToChannel(float p, float q, float hueDegrees)
{
    float t = hueDegrees / FULL_CIRCLE;
    if (t < 0.0f)
        t += 1.0f;
    if (t > 1.0f)
        t -= 1.0f;
    if (t < 1.0f / 6.0f)
        return p + (q - p) * 6.0f * t;
    if (t < 0.5f)
        return q;
    if (t < 2.0f / 3.0f)
        return p + (q - p) * (2.0f / 3.0f - t) * 6.0f;
    return p;
}
} // namespace

float RGBIntensity(const math::TVector3<float>& rgb)
{
    return 0.3f * rgb.x + 0.59f * rgb.y + 0.11f * rgb.z;
}

math::TVector3<float> HSL2RGB(float h, float s, float l)
{
    if (s == 0.0f)
        return math::TVector3<float>(l, l, l);
    float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s;
    float p = 2.0f * l - q;
    const float third = FULL_CIRCLE / 3.0f;
    return math::TVector3<float>(HueToChannel(p, q, h + third), HueToChannel(p, q, h),
                                 HueToChannel(p, q, h - third));
}

math::TVector3<float> HSL2RGB(const math::TVector3<float>& hsl)
{
    return HSL2RGB(hsl.x, hsl.y, hsl.z);
}

math::TVector3<float> RGB2HSL(float r, float g, float b)
{
    float max = std::max(r, std::max(g, b));
    float min = std::min(r, std::min(g, b));
    float l = (max + min) / 2.0f;
    if (max == min)
        return math::TVector3<float>(0.0f, 0.0f, l);
    float d = max - min;
    float s = l <= 0.5f ? d / (max + min) : d / (2.0f - max - min);
    float h;
    if (max == r)
        h = DEGREES_PER_SEXTANT * (g - b) / d;
    else if (max == g)
        h = DEGREES_PER_SEXTANT * (b - r) / d + 120.0f;
    else
        h = DEGREES_PER_SEXTANT * (r - g) / d + 240.0f;
    h = std::fmod(h, FULL_CIRCLE);
    if (h < 0.0f)
        h += FULL_CIRCLE;
    return math::TVector3<float>(h, s, l);
}

math::TVector3<float> RGB2HSL(const math::TVector3<float>& rgb)
{
    return RGB2HSL(rgb.x, rgb.y, rgb.z);
}

} // namespace util
