#pragma once
// A running rigid move of a group. It holds the moved bodies still while it runs and keeps the joints
// honest: a joint that pins a moved body to the background goes along, one between a moved and an
// unmoved body stays, and at the end each moved anchor takes the geom that lies under it.

#include "app/Group.h"
#include "physics/Body.h"

#include <vector>

namespace app
{
class JointEntity;

class Transformer : public util::Pointee
{
public:
    explicit Transformer(GroupPtr group);
    ~Transformer() override;

    void Transform(const math::Mat2D& m);
    // Runs once; the destructor calls it, so that no body stays held.
    void End();

private:
    struct JointInfo
    {
        util::SharedPtr<JointEntity> joint;
        bool fix[2];
        math::Vec2 worldPos[2];
    };

    void ApplyJoint(const JointInfo& info) const;

    GroupPtr m_group;
    physics::Body::GeomSet m_geoms;
    std::vector<EntityPtr> m_entities;
    std::vector<JointInfo> m_joints;
    bool m_ended = false;
};

} // namespace app
