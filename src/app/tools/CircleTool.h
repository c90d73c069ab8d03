#pragma once
// A circle by a left drag: the centre where the drag starts, the radius to the mouse, and the slice of its
// picture turned towards the mouse. The preview is drawn by the tool until the button goes up.

#include "app/entities/CircleEntity.h"
#include "app/tools/Tool.h"

namespace app
{

class CircleTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Draw() const override;
    // Drops the preview; the drag goes on, and its next move starts a new one.
    bool Disband() override;

    const util::SharedPtr<CircleEntity>& GetPreview() const { return m_circle; }

private:
    // Not in the scene.
    util::SharedPtr<CircleEntity> m_circle;
    math::Vec2 m_center;
};

} // namespace app
