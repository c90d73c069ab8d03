#pragma once

#include "app/Snapshot.h"
#include "app/tools/Tool.h"
#include "physics/Body.h"
#include "physics/Hinge.h"
#include "physics/WorldGeom.h"

namespace app
{

// Pulls a body with a soft pin while the simulation runs: a hinge between the grabbed body and an
// invisible, immovable body that follows the mouse.
class DragTool : public Tool
{
public:
    DragTool();

    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Update(float dt) override;
    void Draw() const override;
    bool Disband() override;
    util::String GetCursorName() const override;

    const util::SharedPtr<physics::Hinge>& GetHinge() const { return m_hinge; }

private:
    util::SharedPtr<physics::Hinge> m_hinge;
    SnapshotPtr m_snapshot;
    bool m_moved = false;
    math::Vec2 m_mousePos;
    util::SharedPtr<physics::Body> m_mouseBody;
    util::SharedPtr<physics::WorldGeom> m_mouseGeom;
};

} // namespace app
