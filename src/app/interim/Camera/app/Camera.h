#pragma once

// INTERIM STAND-IN for app::Camera, which the application root builds: the pan, the zoom, the map between
// world and GUI coordinates and following a target, as far as the scene asks for them. The build uses this
// folder only while src/app/Camera.h does not exist; delete it when it does.

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"

#include <algorithm>
#include <functional>

namespace app
{
class Camera : public script::Reflected
{
public:
    static constexpr float MIN_ZOOM = 1.5f;
    static constexpr float MAX_ZOOM = 3000.0f;
    static constexpr float DEFAULT_ZOOM = 150.0f;
    using CenterSource = std::function<math::Vec2()>;

    Camera()
        : script::Reflected("Camera"), m_panAttrib(this, "pan", this, &Camera::GetPan, &Camera::SetPan),
          m_zoomAttrib(this, "zoom", this, &Camera::GetZoom, &Camera::SetZoom)
    {
    }

    math::Vec2 GetPan() const { return m_pan; }
    void SetPan(const math::Vec2& pan) { m_pan = pan; }
    float GetZoom() const { return m_zoom; }
    void SetZoom(float zoom) { m_zoom = std::clamp(math::IsNaN(zoom) ? DEFAULT_ZOOM : zoom, MIN_ZOOM, MAX_ZOOM); }
    void SetViewSize(const math::Vec2& size) { m_viewSize = size; }
    math::Vec2 GetViewSize() const { return m_viewSize; }

    math::Mat3 WorldToGUI() const
    {
        return math::Mat3::Translation2D(m_viewSize * 0.5f) * math::Mat3::Scale2D(math::Vec2(m_zoom, -m_zoom)) *
               math::Mat3::Translation2D(-m_pan);
    }
    math::Mat3 GUIToWorld() const { return math::Inverted(WorldToGUI()); }
    math::Vec2 GUIToWorld(const math::Vec2& gui) const
    {
        const math::Vec2 centered = gui - m_viewSize * 0.5f;
        return math::Vec2(m_pan.x + centered.x / m_zoom, m_pan.y - centered.y / m_zoom);
    }
    void SetWorldToGUI(const math::Mat3& m)
    {
        const math::Mat3 scaled = math::Mat3::Translation2D(-m_viewSize * 0.5f) * m;
        const float zoom = scaled(0, 0);
        m_pan = math::Vec2(-scaled(0, 2) / zoom, scaled(1, 2) / zoom);
        SetZoom(zoom);
    }
    void SetGUIToWorld(const math::Mat3& m) { SetWorldToGUI(math::Inverted(m)); }
    void Reset()
    {
        m_zoom = DEFAULT_ZOOM;
        m_pan = math::Vec2(0, 0);
        m_trackedSource = nullptr;
    }
    void SetTracked(CenterSource source)
    {
        m_trackedSource = nullptr;
        if (source && math::IsFinite(source()))
        {
            m_trackedCenter = source();
            m_trackedSource = std::move(source);
        }
    }
    bool IsTracking() const { return bool(m_trackedSource); }
    void Update(float)
    {
        if (!m_trackedSource)
            return;
        const math::Vec2 center = m_trackedSource();
        if (!math::IsFinite(center))
        {
            m_trackedSource = nullptr;
            return;
        }
        m_pan += center - m_trackedCenter;
        m_trackedCenter = center;
    }

private:
    math::Vec2 m_pan;
    float m_zoom = DEFAULT_ZOOM;
    math::Vec2 m_viewSize;
    math::Vec2 m_trackedCenter;
    CenterSource m_trackedSource;
    script::AttribWrapper<math::Vec2> m_panAttrib;
    script::AttribWrapper<float> m_zoomAttrib;
};
} // namespace app
