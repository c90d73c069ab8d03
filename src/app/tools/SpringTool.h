#pragma once

#include "app/entities/SpringEntity.h"
#include "app/tools/Tool.h"

namespace app
{

// Draws a spring from a point to a point with the left button. The spring works from the first moment,
// its far end on the mouse, and rests at whatever length it is drawn, so it pulls nothing while drawn; it
// joins the scene only when it ends on a second geom.
class SpringTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Update(float dt) override;
    void Draw() const override;
    bool Disband() override;

    const util::SharedPtr<SpringEntity>& GetSpring() const { return m_spring; }

private:
    // Where the start point is now: its geom may have moved since.
    math::Vec2 StartPoint() const;

    GeomPtr m_geom;
    math::Vec2 m_local;
    util::SharedPtr<SpringEntity> m_spring;
};

} // namespace app
