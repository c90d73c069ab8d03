#include "app/WaterDrawer.h"

#include "app/Camera.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"

#include <algorithm>
#include <cmath>

namespace app
{

rendering::PixelRGBA MetaColor(int x, int y, int size)
{
    if (x <= 0 || y <= 0 || x >= size - 1 || y >= size - 1)
        return rendering::PixelRGBA(0, 0, 0, 0);
    // Over the picture u and v run from -4 to 4 radii.
    const float u = float(x) / float(size - 1) * 8.0f - 4.0f;
    const float v = float(y) / float(size - 1) * 8.0f - 4.0f;
    const float r2 = u * u + v * v;
    const float f = r2 > 0 ? 1.0f / r2 : math::INF;
    // 1/16 is the field at r = 4: there it starts from 0, and it reaches 1 at r = 1.
    const float a = std::clamp((f - 0.0625f) / 0.9375f, 0.0f, 1.0f);
    return rendering::PixelRGBA(255, 255, 255, (unsigned char)std::floor(a * 255.0f + 0.5f));
}

rendering::ImageRGBA32Ptr CreateMetaBallImage()
{
    const int size = METABALL_TEXTURE_SIZE;
    rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(size, size, true);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            (*image)(unsigned(x), unsigned(y)) = MetaColor(x, y, size);
    return image;
}

rendering::ImageRGBA32Ptr CreateSimpleWaterImage()
{
    const int size = METABALL_TEXTURE_SIZE;
    rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(size, size, true);
    for (int j = 0; j < size; ++j)
    {
        for (int i = 0; i < size; ++i)
        {
            const float u = 2.0f * float(i) / float(size - 1) - 1.0f;
            const float v = 2.0f * float(j) / float(size - 1) - 1.0f;
            const float r = std::sqrt(u * u + v * v);
            const float t = 1.0f - r;
            const unsigned char value =
                r > 1.0f ? 0 : (unsigned char)std::lround((3 * t * t - 2 * t * t * t) * 255.0f);
            (*image)(unsigned(i), unsigned(j)) = rendering::PixelRGBA(value, value, value, value);
        }
    }
    return image;
}

rendering::Texture* CreateBigTexture()
{
    rendering::ImageRGBA32Ptr image =
        QLEX_NEW new rendering::ImageRGBA32(BIG_TEXTURE_SIZE, BIG_TEXTURE_SIZE, true);
    return new rendering::Texture(
        image, rendering::Texture::ImageType(GL_RGBA, false, rendering::Texture::Quality(1, 1, 1, 1, 0)));
}

rendering::Texture* CreateMetaBallTexture()
{
    return new rendering::Texture(
        CreateMetaBallImage(),
        rendering::Texture::ImageType(GL_RGBA, true, rendering::Texture::Quality(1, 1, 1, 1, 1)));
}

rendering::Texture* CreateSimpleWaterTexture()
{
    return new rendering::Texture(
        CreateSimpleWaterImage(),
        rendering::Texture::ImageType(GL_RGBA, true, rendering::Texture::Quality(1, 1, 1, 1, 1)));
}

bool TestBBCircle(const math::Vec2& min, const math::Vec2& max, const math::Vec2& point, float margin)
{
    return min.x - margin <= point.x && point.x <= max.x + margin && min.y - margin <= point.y &&
           point.y <= max.y + margin;
}

Splat CalcSplat(const math::Vec2& velocity, float elongation, float maxElongation)
{
    Splat splat;
    const float speed = velocity.Length();
    splat.angle = speed > 0 ? std::atan2(velocity.y, velocity.x) : 0.0f;
    const float low = std::min(1.0f, maxElongation);
    const float high = std::max(1.0f, maxElongation);
    splat.stretch = std::clamp(1.0f + speed * elongation, low, high);
    return splat;
}

WorldBox CalcViewBox(const Camera& camera, const math::Vec2& viewSize)
{
    WorldBox box = WorldBox::Empty();
    box.Include(camera.GUIToWorld(math::Vec2(0, 0)));
    box.Include(camera.GUIToWorld(viewSize));
    return box;
}

std::vector<size_t> CullParticles(const std::vector<WaterParticle>& particles, const WorldBox& view,
                                  float margin)
{
    std::vector<size_t> visible;
    visible.reserve(particles.size());
    for (size_t i = 0; i < particles.size(); ++i)
    {
        if (TestBBCircle(view.min, view.max, particles[i].position, margin))
            visible.push_back(i);
    }
    return visible;
}

void DrawSplats(const std::vector<WaterParticle>& particles, const std::vector<size_t>& visible,
                float splatSize, float elongation, float maxElongation)
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const float toDegrees = 180.0f / math::PIf;
    for (size_t i : visible)
    {
        const WaterParticle& p = particles[i];
        const Splat splat = CalcSplat(p.velocity, elongation, maxElongation);
        glPushMatrix();
        glTranslatef(p.position.x, p.position.y, 0);
        glRotatef(splat.angle * toDegrees, 0, 0, 1);
        glScalef(splat.stretch, 1.0f / splat.stretch, 1);
        renderer.DrawRect(math::Vec2(0, 0), splatSize);
        glPopMatrix();
    }
}

} // namespace app
