#pragma once

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/SharedPtr.h"

#include <functional>

namespace app
{
class Group;

// The view: one pan and one zoom, no rotation, and the map between world and GUI coordinates that every
// tool uses. World y points up, GUI y down. It can follow a moving target.
class Camera : public script::Reflected
{
public:
    static constexpr float MIN_ZOOM = 1.5f;
    static constexpr float MAX_ZOOM = 3000.0f;
    static constexpr float DEFAULT_ZOOM = 150.0f;
    // Exponent per step of ZoomView: five steps of one double the zoom.
    static constexpr float DEFAULT_ZOOM_FACTOR = 0.2f;

    Camera();

    // The world point at the middle of the window.
    math::Vec2 GetPan() const { return m_pan; }
    void SetPan(const math::Vec2& pan);
    // Pixels (GUI units) per world unit, kept within GetMinZoom..GetMaxZoom.
    float GetZoom() const { return m_zoom; }
    void SetZoom(float zoom);
    static float GetMinZoom() { return MIN_ZOOM; }
    static float GetMaxZoom() { return MAX_ZOOM; }
    static float GetDefaultZoom() { return DEFAULT_ZOOM; }

    // The outer size of the component the world is drawn in; the pan lies at its centre.
    void SetViewSize(const math::Vec2& size) { m_viewSize = size; }
    math::Vec2 GetViewSize() const { return m_viewSize; }

    math::TMatrix3<float> WorldToGUI() const;
    math::TMatrix3<float> WorldToGUITarget() const { return WorldToGUI(); }
    math::TMatrix3<float> GUIToWorld() const;
    math::Vec2 GUIToWorld(const math::Vec2& gui) const;
    math::Vec2 WorldToGUI(const math::Vec2& world) const;
    // A vector, without translation: what the tools use for mouse deltas.
    math::Vec2 GUIToWorldNormal(const math::Vec2& guiDelta) const;
    void SetWorldToGUI(const math::TMatrix3<float>& m);
    void SetGUIToWorld(const math::TMatrix3<float>& m);

    // Moves the view with a drag of `guiDelta`: the world follows the mouse.
    void PanView(const math::Vec2& guiDelta);
    // Zooms by 2^(zoomFactor * amount), with the interface's "zoomFactor" (App.GUI) where it stands.
    void ZoomView(float amount);
    void Reset();

    // Following: the source gives the target's centre each update, or something not finite once the
    // target is gone. The view keeps its offset from the target; panning by hand changes that offset.
    using CenterSource = std::function<math::Vec2()>;
    void SetTracked(CenterSource source);
    bool IsTracking() const { return bool(m_trackedSource); }
    // The point of a group that following keeps in view: a lone finite shape's own position, else the
    // middle of the group's finite box; NaN for a group with nothing finite to follow.
    static math::Vec2 GetGroupCenter(const util::SharedPtr<Group>& group);
    // While the pan tool is in use the target doesn't move the view.
    void SetPanToolActive(bool active) { m_panToolActive = active; }

    void Update(float dt);

    // Clamps the zoom after any change.
    void OnChange();

private:
    math::Vec2 m_pan;
    float m_zoom = DEFAULT_ZOOM;
    math::Vec2 m_trackedCenter;
    CenterSource m_trackedSource;

    math::Vec2 m_viewSize;
    bool m_panToolActive = false;

    script::AttribWrapper<math::Vec2> m_panAttrib;
    script::AttribWrapper<float> m_zoomAttrib;
};

} // namespace app
