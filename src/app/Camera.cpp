#include "app/Camera.h"

#include "app/AppSettings.h"
#include "app/Group.h"
#include "app/entities/FiniteGeomEntity.h"
#include "logging/Log.h"
#include "physics/Geom.h"

#include "util/Profiler.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace app
{

Camera::Camera()
    : script::Reflected("Camera"), m_panAttrib(this, "pan", this, &Camera::GetPan, &Camera::SetPan),
      m_zoomAttrib(this, "zoom", this, &Camera::GetZoom, &Camera::SetZoom)
{
}

void Camera::SetPan(const math::Vec2& pan)
{
    m_pan = pan;
    OnChange();
}

void Camera::SetZoom(float zoom)
{
    m_zoom = zoom;
    OnChange();
}

void Camera::OnChange()
{
    // A NaN zoom would poison every transform; the default is the only sensible stand-in.
    if (math::IsNaN(m_zoom))
        m_zoom = DEFAULT_ZOOM;
    m_zoom = std::clamp(m_zoom, MIN_ZOOM, MAX_ZOOM);
    // A pan at infinity would put the mouse there too, and every tool with it.
    if (!math::IsFinite(m_pan))
    {
        Log(logging::Warning, "Camera.pan must be finite; the view goes back to the middle of the world");
        m_pan = math::Vec2(0, 0);
    }
}

math::TMatrix3<float> Camera::WorldToGUI() const
{
    using M = math::TMatrix3<float>;
    return M::Translation2D(m_viewSize * 0.5f) * M::Scale2D(math::Vec2(m_zoom, -m_zoom)) *
           M::Translation2D(-m_pan);
}

math::TMatrix3<float> Camera::GUIToWorld() const
{
    return math::Inverted(WorldToGUI());
}

math::Vec2 Camera::GUIToWorld(const math::Vec2& gui) const
{
    // Written out rather than through the inverse: exact, and finite for any finite input.
    const math::Vec2 centered = gui - m_viewSize * 0.5f;
    return math::Vec2(m_pan.x + centered.x / m_zoom, m_pan.y - centered.y / m_zoom);
}

math::Vec2 Camera::WorldToGUI(const math::Vec2& world) const
{
    return math::TransformCoordinate(WorldToGUI(), world);
}

math::Vec2 Camera::GUIToWorldNormal(const math::Vec2& guiDelta) const
{
    return math::TransformDirection(GUIToWorld(), guiDelta);
}

void Camera::SetWorldToGUI(const math::TMatrix3<float>& m)
{
    using M = math::TMatrix3<float>;
    const M scaled = M::Translation2D(-m_viewSize * 0.5f) * m;
    // What is left is scale(zoom, -zoom) * translation(-pan): the translation column holds
    // (-zoom * pan.x, zoom * pan.y).
    const float zoom = scaled(0, 0);
    m_zoom = zoom;
    m_pan = math::Vec2(-scaled(0, 2) / zoom, scaled(1, 2) / zoom);
    OnChange();
}

void Camera::SetGUIToWorld(const math::TMatrix3<float>& m)
{
    SetWorldToGUI(math::Inverted(m));
}

void Camera::PanView(const math::Vec2& guiDelta)
{
    m_pan -= GUIToWorldNormal(guiDelta);
    OnChange();
}

void Camera::ZoomView(float amount)
{
    const float factor =
        AppSettings::Exists() ? AppSettings::GetInstancePtr()->m_zoomFactor.Get() : DEFAULT_ZOOM_FACTOR;
    m_zoom *= std::pow(2.0f, factor * amount);
    OnChange();
}

void Camera::Reset()
{
    m_zoom = DEFAULT_ZOOM;
    m_pan = math::Vec2(0, 0);
    m_trackedSource = nullptr;
    OnChange();
}

math::Vec2 Camera::GetGroupCenter(const util::SharedPtr<Group>& group)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const math::Vec2 none(nan, nan);
    if (!group)
        return none;
    if (group->Size() == 1)
    {
        const auto* shape = dynamic_cast<const FiniteGeomEntity*>(group->GetFirst().get());
        if (shape && shape->GetGeom())
            return shape->GetGeom()->GetPosition();
    }
    const math::BoundingBox2 box = group->CalcFiniteAABB();
    if (box.IsEmpty() || !box.IsFinite())
        return none;
    return box.GetCenter();
}

void Camera::SetTracked(CenterSource source)
{
    m_trackedSource = nullptr;
    if (!source)
        return;
    const math::Vec2 center = source();
    if (!math::IsFinite(center))
        return;
    m_trackedSource = std::move(source);
    m_trackedCenter = center;
}

void Camera::Update(float)
{
    util::ScopeProfiler profile("Camera::Update");
    OnChange();
    if (!m_trackedSource)
        return;
    const math::Vec2 center = m_trackedSource();
    if (!m_panToolActive)
    {
        if (!math::IsFinite(center))
        {
            m_trackedSource = nullptr;
            return;
        }
        m_pan += center - m_trackedCenter;
    }
    m_trackedCenter = center;
}

} // namespace app
