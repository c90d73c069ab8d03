#pragma once

#include "app/Sky.h"
#include "gui/components/Component.h"
#include "math/Math.h"
#include "rendering/Texture.h"

#include <string>
#include <vector>

namespace app
{
class Camera;

// The sky behind the scene: a colour, and a field of slowly drifting cloud sprites that follow the camera
// at 70%, so that they seem far away.
class Background : public gui::Component
{
public:
    struct Particle
    {
        float size = 0;
        math::Vec2 position;
        math::Vec2 velocity;
        float rotation = 0;
        float rotationSpeed = 0;
        int texture = 0;
        bool flag = false;
        math::Vec4 color = math::Vec4(1, 1, 1, 1);

        bool operator<(const Particle& other) const { return size < other.size; }
    };

    static constexpr int CLOUD_COUNT = 2500;
    // The clouds move at this share of the camera's motion.
    static constexpr float PARALLAX = 0.7f;

    Background();

    // The settings it draws by, the document's.
    Sky& GetSky() const { return m_sky; }
    math::Vec3 GetSkyColor() const { return m_sky.GetSkyColor(); }
    const math::Vec4 GetSkyColor4() const { return m_sky.GetSkyColor4(); }
    void SetSkyColor(const math::Vec4& color) { m_sky.SetSkyColor(color); }
    void SetDrawClouds(bool draw) { m_sky.SetDrawClouds(draw); }
    // Returns the three settings to their defaults, as a new scene does.
    void ResetToDefaults() { m_sky.ResetToDefaults(); }

    void Update(float dt) override;
    // Draws into the whole component under the camera: sky, then clouds.
    void DrawBG(const Camera& camera) const;
    void Init();

    // Moves the clouds by the simulated time since the last call, if that is a sensible step: not in a
    // paused world, nor across a jump of the clock.
    void Advance(double simTime, bool running);

    // The cloud view: the camera scaled by PARALLAX about the centre of the view.
    math::TMatrix3<float> CloudView(const Camera& camera) const;
    // Keeps every cloud within half the wrap size of the view's centre in cloud space.
    void Wrap(const math::Vec2& center) const;

    const std::vector<Particle>& GetParticles() const { return m_particles; }
    // "Background" of the scripts, with the three sky settings.
    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_sky.GetReflected(); }
    size_t GetTextureCount() const { return m_textures.size(); }
    math::Vec2 GetWrapSize() const { return m_wrapSize; }

private:
    Sky& m_sky;

    // Wrapping moves clouds while drawing; the field is a view effect, not state of the document.
    mutable std::vector<Particle> m_particles;
    std::vector<rendering::TextureProxy> m_textures;
    math::Vec2 m_wrapSize;
    double m_lastSimTime = 0;
};

// Whether a file name ends, in any case, in ".png", ".tga", ".bmp" or ".jpg".
bool IsImageFile(const std::string& name);

} // namespace app
