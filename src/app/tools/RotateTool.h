#pragma once

#include "app/Snapshot.h"
#include "app/Transformer.h"
#include "app/tools/Tool.h"

namespace app
{

// Turns a group about its rotation centre with the right button. With Shift the angle snaps to steps of
// 15 degrees; for a single shape the steps count from its level pose, not from where the drag began.
class RotateTool : public Tool
{
public:
    static constexpr float SNAP_STEP = 0.2617994f; // 15 degrees in radians
    // The turning waits until the pointer is this many screen centimetres from the centre.
    static constexpr float DEAD_ZONE_CM = 0.5f;

    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Draw() const override;
    bool Disband() override;

    float GetAngle() const { return m_angle; }
    math::Vec2 GetCenter() const { return m_center; }

private:
    SnapshotPtr m_snapshot;
    GroupPtr m_group;
    util::SharedPtr<Transformer> m_transformer;
    math::Vec2 m_center;
    float m_angle = 0;
    float m_rawAngle = 0;
};

} // namespace app
