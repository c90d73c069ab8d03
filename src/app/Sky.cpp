#include "app/Sky.h"

namespace app
{
namespace
{
const math::Vec4 DEFAULT_SKY_COLOR(0.3f, 0.4f, 1.0f, 1.0f);
constexpr float DEFAULT_CLOUD_OPACITY = 0.9f;
} // namespace

Sky::Sky()
    : m_reflected(QLEX_NEW new script::Reflected("Background")),
      m_skyColor(m_reflected.get(), "skyColor", DEFAULT_SKY_COLOR),
      m_cloudOpacity(m_reflected.get(), "cloudOpacity", DEFAULT_CLOUD_OPACITY),
      m_drawClouds(m_reflected.get(), "drawClouds", true)
{
}

math::Vec3 Sky::GetSkyColor() const
{
    const math::Vec4 c = m_skyColor;
    return math::Vec3(c.x, c.y, c.z);
}

void Sky::ResetToDefaults()
{
    m_skyColor = DEFAULT_SKY_COLOR;
    m_cloudOpacity = DEFAULT_CLOUD_OPACITY;
    m_drawClouds = true;
}

} // namespace app
