#pragma once
// A chain of small circles linked by hinges, laid along the mouse's path by a left drag, from the rim of
// whatever lies under the drag's start to whatever lies under its end. The links are sized on the screen:
// each is 4 mm in radius at the zoom of the moment. Shift pauses the laying of links.

#include "app/Chain.h"
#include "app/Snapshot.h"
#include "app/entities/HingeEntity.h"
#include "app/tools/Tool.h"
#include "physics/Geom.h"

namespace app
{

class ChainTool : public Tool
{
public:
    // A link's radius in screen centimetres; links follow each other at twice that.
    static constexpr float LINK_RADIUS_CM = 0.4f;
    // A hinge's drawing size as a share of the link's radius.
    static constexpr float HINGE_SIZE_SHARE = 0.75f;

    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    // A line from the chain's head to the mouse.
    void Draw() const override;
    // Ends the gesture; the links laid so far stay, without an undo step.
    bool Disband() override;

private:
    // Lays links from the head towards the world point until the gap is less than a link.
    void AppendChain(const math::Vec2& target);

    util::SharedPtr<physics::Geom> m_startGeom;
    // Taken before the first link, so that a gesture that lays none leaves no undo step.
    SnapshotPtr m_snapshot;
    ChainPtr m_chain;
    math::Vec4 m_linkColor;
    math::Vec4 m_hingeColor;
    // Where the next link begins.
    math::Vec2 m_lastPos;
    // Pins the head of the chain to what lies under the mouse between events.
    util::SharedPtr<HingeEntity> m_lastHinge;
};

} // namespace app
