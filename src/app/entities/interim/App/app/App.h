#pragma once

// INTERIM STAND-IN for app::App, which the application root builds: only the settings and measures that
// entities ask for, for a camera of the default zoom (150 pixels per metre). The build uses this folder
// only while src/app/App.h does not exist; delete it when it does.

#include "app/entities/Entity.h"
#include "script/AttribWrapper.h"
#include "util/Singleton.h"

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

    script::AttribWrapper<bool> m_drawOBBs;
    script::AttribWrapper<bool> m_drawMapOBBs;
    script::AttribWrapper<bool> m_drawBCs;
    script::AttribWrapper<bool> m_drawVertices;
    script::AttribWrapper<float> m_DPI;
    script::AttribWrapper<int> m_maxSPHSpawn;
    script::AttribWrapper<float> m_borderWidth;
    script::AttribWrapper<bool> m_borders;
};
} // namespace app
