#pragma once
// A half plane by a left drag: the drag's direction is the plane's normal, pointing out of the solid side,
// and the plane passes through the drag's start. Shift snaps the direction to steps of 15 degrees. A plane
// always belongs to the background.

#include "app/entities/PlaneEntity.h"
#include "app/tools/Tool.h"
#include "rendering/Texture.h"

namespace app
{

class PlaneTool : public Tool
{
public:
    PlaneTool();

    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    // The preview and an arrow from the drag's start to the mouse.
    void Draw() const override;
    // Ends the gesture; the preview stays on the screen until the button goes up.
    bool Disband() override;

    // The unit direction `n` turned to the nearest multiple of 15 degrees.
    static math::Vec2 SnapDirection(const math::Vec2& n);

    const util::SharedPtr<PlaneEntity>& GetPreview() const { return m_plane; }

private:
    // Not in the scene.
    util::SharedPtr<PlaneEntity> m_plane;
    rendering::TextureProxy m_arrow;
    math::Vec2 m_start;
};

} // namespace app
