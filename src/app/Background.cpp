#include "app/Background.h"

#include "app/AppSettings.h"
#include "app/Camera.h"
#include "math/MatrixGL.h"
#include "physics/Simulation.h"
#include "rendering/AttribPusher.h"
#include "rendering/GLContext.h"
#include "rendering/ImageManager.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <random>

namespace app
{
namespace
{
// The window size at which the cloud field just covers the screen at the lowest zoom.
const math::Vec2 CLOUD_FIELD_PIXELS(2048, 1280);
constexpr float MIN_CLOUD_SIZE = 5.0f;
constexpr float MAX_CLOUD_SIZE = 15.0f;
// Speed per unit of size: big clouds drift faster, as nearer ones seem to.
constexpr float MIN_DRIFT = 0.1f;
constexpr float MAX_DRIFT = 0.2f;
// The same sky in every run.
constexpr unsigned CLOUD_SEED = 20061;
} // namespace

bool IsImageFile(const std::string& name)
{
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    for (const char* extension : {".png", ".tga", ".bmp", ".jpg"})
    {
        const std::string end(extension);
        if (lower.size() >= end.size() && lower.compare(lower.size() - end.size(), end.size(), end) == 0)
            return true;
    }
    return false;
}

Background::Background() : m_sky(AppSettings::GetInstancePtr()->GetSky()) {}

void Background::Init()
{
    m_textures.clear();
    rendering::TextureManager& textures = *rendering::TextureManager::GetInstancePtr();
    const std::string dir = util::FileSystem::GetInstancePtr()->TextureDir() + "background/";
    std::vector<std::string> files = util::FileSystem::FilesInDir(dir, "*");
    // The directory's own order differs between machines; the sky should not.
    std::sort(files.begin(), files.end());
    for (const std::string& file : files)
    {
        if (!IsImageFile(file) || !rendering::ImageManager::GetInstancePtr()->Load(dir + file))
            continue;
        m_textures.push_back(textures.Load(dir + file, rendering::TextureManager::DefaultImageType()));
    }
    if (m_textures.empty())
        m_textures.push_back(textures.Load("blank", rendering::TextureManager::DefaultImageType()));

    m_wrapSize = CLOUD_FIELD_PIXELS / Camera::GetMinZoom() / PARALLAX;

    std::mt19937 random(CLOUD_SEED);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    m_particles.assign(CLOUD_COUNT, Particle());
    for (size_t i = 0; i < m_particles.size(); ++i)
    {
        Particle& p = m_particles[i];
        p.size = MIN_CLOUD_SIZE + (MAX_CLOUD_SIZE - MIN_CLOUD_SIZE) * unit(random);
        p.position = math::Vec2(unit(random) * m_wrapSize.x, unit(random) * m_wrapSize.y);
        p.velocity = math::Vec2((MIN_DRIFT + (MAX_DRIFT - MIN_DRIFT) * unit(random)) * p.size, 0);
        p.texture = int(i % m_textures.size());
    }
    // Small clouds first: the big, near ones are drawn over them.
    std::stable_sort(m_particles.begin(), m_particles.end());
}

void Background::Update(float dt)
{
    gui::Component::Update(dt);
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    Advance(physics::GetSimTime(), static_cast<bool>(sim.m_running));
}

void Background::Advance(double simTime, bool running)
{
    if (!m_sky.m_drawClouds)
        return;
    if (m_particles.empty())
        Init();
    const double step = simTime - m_lastSimTime;
    m_lastSimTime = simTime;
    if (!(std::isfinite(step) && step <= 1.0 && step > 0.0 && running))
        return;
    for (Particle& p : m_particles)
    {
        p.position += p.velocity * float(step);
        p.rotation += p.rotationSpeed * float(step);
    }
}

math::TMatrix3<float> Background::CloudView(const Camera& camera) const
{
    using M = math::TMatrix3<float>;
    const math::Vec2 half = camera.GetViewSize() * 0.5f;
    return M::Translation2D(half * (1.0f - PARALLAX)) * M::Scale2D(math::Vec2(PARALLAX, PARALLAX)) *
           camera.WorldToGUI();
}

void Background::Wrap(const math::Vec2& center) const
{
    // Whole wraps at once, so that a jump of the camera (a loaded scene) finds its sky at once.
    const auto wrapAxis = [](float& pos, float c, float wrap)
    {
        if (pos < c - wrap * 0.5f || pos > c + wrap * 0.5f)
            pos -= wrap * std::floor((pos - (c - wrap * 0.5f)) / wrap);
    };
    for (Particle& p : m_particles)
    {
        wrapAxis(p.position.x, center.x, m_wrapSize.x);
        wrapAxis(p.position.y, center.y, m_wrapSize.y);
    }
}

void Background::DrawBG(const Camera& camera) const
{
    util::ScopeProfiler profile("Background::Draw");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const math::Vec2 size = camera.GetViewSize();
    {
        util::ScopeProfiler sky("Draw sky color");
        glDisable(GL_TEXTURE_2D);
        renderer.SetColor4(m_sky.m_skyColor);
        renderer.DrawRectGUI(0, 0, size.x, size.y);
    }
    if (!m_sky.m_drawClouds || m_particles.empty())
        return;

    rendering::AttribPusher attribs(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const math::TMatrix3<float> view = CloudView(camera);
    const math::TMatrix3<float> inverse = math::Inverted(view);
    {
        util::ScopeProfiler wrapping("Wrapping");
        Wrap(math::TransformCoordinate(inverse, size * 0.5f));
    }
    glPushMatrix();
    math::Mat4FromMat2D(view).MultToGL();
    glEnable(GL_TEXTURE_2D);
    renderer.SetColor4(1, 1, 1, m_sky.m_cloudOpacity);

    const math::Vec2 a = math::TransformCoordinate(inverse, math::Vec2(0, 0));
    const math::Vec2 b = math::TransformCoordinate(inverse, size);
    const math::Vec2 boxCenter = (a + b) * 0.5f;
    const math::Vec2 boxHalf(std::fabs(b.x - a.x) * 0.5f, std::fabs(b.y - a.y) * 0.5f);
    for (const Particle& p : m_particles)
    {
        const float reach = p.size * 0.5f;
        if (std::fabs(p.position.x - boxCenter.x) < reach + boxHalf.x &&
            std::fabs(p.position.y - boxCenter.y) < reach + boxHalf.y)
        {
            glBindTexture(GL_TEXTURE_2D, m_textures[size_t(p.texture)]->GetName());
            renderer.DrawRect(p.position, p.size);
        }
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glPopMatrix();
}

} // namespace app
