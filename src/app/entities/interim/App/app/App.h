#pragma once

// INTERIM STAND-IN for app::App, which the application root builds: only the settings and measures that
// entities ask for, for a camera of the default zoom (150 pixels per metre). The build uses this folder
// only while src/app/App.h does not exist; delete it when it does.

#include "app/entities/Entity.h"
#include "script/AttribWrapper.h"
#include "util/ColorUtil.h"
#include "util/HashMap.h"
#include "util/Random.h"
#include "util/Singleton.h"

#include <cmath>

namespace app
{
class App : public script::Reflected, public util::Singleton<App>
{
public:
    App()
        : m_drawOBBs(this, "drawOBBs", false), m_drawMapOBBs(this, "drawMapOBBs", false),
          m_drawBCs(this, "drawBCs", false), m_drawVertices(this, "drawVertices", false),
          m_DPI(this, "DPI", 86.0f), m_maxSPHSpawn(this, "maxSPHSpawn", 10000),
          m_borderWidth(this, "borderWidth", 0.1f), m_borders(this, "borders", true)
    {
        SetReflectedName("App");
    }

    float GetPixelSize() const { return 1.0f / 150.0f; }
    float GetScreenCM() const { return GetPixelSize() * m_DPI / 2.54f; }
    float GetDefaultJointSize() const { return GetScreenCM() * 0.66667f; }
    float GetObjectBorderWidth() const { return GetScreenCM() * m_borderWidth; }
    math::Vec2 GetMousePos() const { return math::Vec2(0, 0); }

    math::Vec4 GetBorderColor(const Entity* entity) const
    {
        const math::Vec4& c = entity->m_color;
        if (entity->m_selectedLook)
            return entity->m_markedLook ? math::Vec4(0.8f, 0.8f, 0.8f, 1) : math::Vec4(1, 1, 1, 1);
        if (entity->m_markedLook)
            return math::Vec4(0.2f, 0.2f, 0.2f, 1);
        return math::Vec4(c.x / 2, c.y / 2, c.z / 2, c.w);
    }
    math::Vec3 RandomColor3()
    {
        float u = std::pow(m_random.GetUniform(0, 1), 1.0f / 3.0f) / 2;
        if (m_random.GetUniformInt(0, 2) == 1)
            u = 1 - u;
        const math::Vec2 p = m_random.GetPointInCircle(1.0f);
        const float hue = (p.x == 0 && p.y == 0) ? 0.0f : std::atan2(p.y, p.x) * 180.0f / math::PIf;
        return util::HSL2RGB(hue, p.Length(), u);
    }
    math::Vec4 RandomEntityColor4()
    {
        math::Vec3 c;
        do
            c = RandomColor3();
        while (util::RGBIntensity(c) < 0.05f);
        return math::Vec4(c.x, c.y, c.z, 1.0f);
    }
    void MirrorMe(input::ButtonInput button, EntityPtr entity) { m_mirrorRequests[button].insert(entity); }

    script::AttribWrapper<bool> m_drawOBBs;
    script::AttribWrapper<bool> m_drawMapOBBs;
    script::AttribWrapper<bool> m_drawBCs;
    script::AttribWrapper<bool> m_drawVertices;
    script::AttribWrapper<float> m_DPI;
    script::AttribWrapper<int> m_maxSPHSpawn;
    script::AttribWrapper<float> m_borderWidth;
    script::AttribWrapper<bool> m_borders;
    util::HashMap<input::ButtonInput, EntitySet, input::ButtonInput::Hasher> m_mirrorRequests;

private:
    util::Random m_random;
};
} // namespace app
