#pragma once

#include "math/Math.h"
#include "rendering/Image.h"
#include "rendering/Texture.h"

#include <vector>

namespace app
{
class Camera;

// A box of the world, corners in world units.
using WorldBox = math::BoundingBox<float, 2, math::Vec2>;

// What the water surface is drawn from: one particle's place and velocity.
struct WaterParticle
{
    math::Vec2 position;
    math::Vec2 velocity;
};

// How one particle's splat lies: turned along its velocity and stretched by its speed, keeping its area.
struct Splat
{
    float angle = 0;   // radians, of the velocity; 0 for a still particle
    float stretch = 1; // along the velocity; across it the splat shrinks by the same factor
};

// Big textures take a copy of the frame; a window uses the corner of its size.
constexpr int BIG_TEXTURE_SIZE = 2048;
constexpr int METABALL_TEXTURE_SIZE = 64;
// A splat spans eight particle radii: the field 1 / r^2 reaches 0 at r = 4.
constexpr float SPLAT_RADII = 8.0f;

// One pixel of the metaball texture: white, with the field 1 / r^2 in alpha, saturated at r = 1 and 0 from
// r = 4 on, with r in particle radii. The outer border of the picture is clear.
rendering::PixelRGBA MetaColor(int x, int y, int size);
rendering::ImageRGBA32Ptr CreateMetaBallImage();
// A round sprite with a smooth edge, for water drawn without metaballs.
rendering::ImageRGBA32Ptr CreateSimpleWaterImage();

// Texture loaders for the mentors of the application root.
rendering::Texture* CreateBigTexture();
rendering::Texture* CreateMetaBallTexture();
rendering::Texture* CreateSimpleWaterTexture();

// Whether a point lies within the box grown by `margin` on every side.
bool TestBBCircle(const math::Vec2& min, const math::Vec2& max, const math::Vec2& point, float margin);

// The stretch is clamped between 1 and `maxElongation`, whichever order those lie in.
Splat CalcSplat(const math::Vec2& velocity, float elongation, float maxElongation);

// The world box that a view of `viewSize` GUI units shows through the camera.
WorldBox CalcViewBox(const Camera& camera, const math::Vec2& viewSize);

// The particles whose splats are drawn: those within the view box by the cull margin.
std::vector<size_t> CullParticles(const std::vector<WaterParticle>& particles, const WorldBox& view,
                                  float margin);

// GL: adds one splat per listed particle into the colour buffer, under the present world matrix, with the
// metaball texture bound and additive blending set by the caller.
void DrawSplats(const std::vector<WaterParticle>& particles, const std::vector<size_t>& visible,
                float splatSize, float elongation, float maxElongation);

} // namespace app
