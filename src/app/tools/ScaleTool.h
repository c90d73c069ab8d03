#pragma once
// Scales a group by its handles: eight rings around the group's box, corners for both axes and side
// middles for one. A drag on a ring scales the group about a centre; Shift keeps the aspect, Ctrl snaps to
// whole factors and their inverses, Alt applies the scale on every frame instead of once at the end.

#include "app/Group.h"
#include "app/Snapshot.h"
#include "app/tools/Tool.h"
#include "math/Math.h"

#include <optional>
#include <vector>

namespace app
{

struct Ring
{
    math::Vec2 position;
    math::Vec2 opposite;
    float radius = 0;
    // Bits: 1 west, 2 east, 4 north, 8 south.
    int direction = 0;
    math::TVector2<bool> axes;
    util::String name;
};

// The eight handles of a box, top meaning the larger y: top row, the two side middles, bottom row.
std::vector<Ring> CalcRingList(const math::BoundingBox2& box);
// The first handle with p strictly within its radius.
std::optional<Ring> GetRingAt(const math::BoundingBox2& box, math::Vec2 p);
// The group's own centre (where it hangs on the rest of the scene), unless it has none or it lies too near
// the handle along a scaled axis, where a small move of the mouse would be a huge factor: then the handle
// opposite the dragged one.
math::Vec2 CalcScaleCenter(const math::BoundingBox2& box, const GroupPtr& group, const Ring& ring);

class ScaleTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void Update(float dt) override;
    void Draw() const override;
    // Ends the gesture; what Alt has applied stays, and is one undo step.
    bool Disband() override;
    util::String GetCursorName() const override;

    // The factor per axis that the mouse asks for now.
    math::Vec2 GetCurrentScaleFactor() const;
    const GroupPtr& GetGroup() const { return m_group; }
    math::Vec2 GetCenter() const { return m_center; }

private:
    // Which group the handles stand around while no gesture runs.
    void UpdateGroup(math::Vec2 p);
    math::Mat3 GetDeltaTransform() const;
    void ApplyDeltaTransform();

    GroupPtr m_group;
    math::Vec2 m_center;
    math::Vec2 m_ringPos;
    SnapshotPtr m_snapshot;
    math::Vec2 m_applied = math::Vec2(1, 1);
    util::String m_ringName;
    math::TVector2<bool> m_axes = math::TVector2<bool>(false, false);
};

} // namespace app
