#pragma once

#include "app/entities/Entity.h"
#include "app/entities/GeomEntity.h"
#include "physics/Circle.h"
#include "physics/Linesegment.h"

namespace app
{
class JointEntity;
using JointEntityPtr = util::SharedPtr<JointEntity>;

// A joint between two geoms at one or two points. Anchors are kept in each geom's frame, so a joint
// survives any regrouping of geoms under bodies; an end on the background hangs on the world geom.
class JointEntity : public Entity
{
public:
    explicit JointEntity(float size);
    ~JointEntity() override;

    void Update(float dt) override;
    bool IsAlive() const override;
    void Transform(const math::TMat2D<float>& m) override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;
    void CopyFrom(const Entity* source) override;

    virtual JointEntityPtr Clone() const = 0;
    // Enters the physics object again if the simulation dropped it with a body.
    virtual void Reassert() = 0;
    // Makes the physics object from the present geoms and points.
    virtual void CreateJoint() = 0;

    // Attaches each end to the topmost geom under its point that lies deeper than the joint.
    void AttachAt(const math::Vec2 worldPoints[2]);
    void AttachToLocal(GeomPtr g0, math::Vec2 local0, GeomPtr g1, math::Vec2 local1);
    void AttachToWorld(GeomPtr g0, math::Vec2 world0, GeomPtr g1, math::Vec2 world1);
    // New geoms at the present world points.
    void SetGeoms(const GeomPtr geoms[2]);
    void GetBodies(util::SharedPtr<physics::Body> out[2]) const;
    bool IsAttachedToWorld() const;
    // Both geoms set and their bodies in the simulation.
    bool HasLiveGeoms() const;

    // The circle of diameter m_size about the middle of the two points, for picking.
    util::SharedPtr<physics::Circle> AsCircle() const;
    math::Vec2 GetMidpoint() const { return (m_worldPos[0] + m_worldPos[1]) * 0.5f; }

    float m_size;
    GeomPtr m_geoms[2];
    math::Vec2 m_localPos[2];
    math::Vec2 m_worldPos[2];

protected:
    // Hit tests of hinges and fixates, on AsCircle.
    bool IsOnCircle(math::Vec2 p) const;
    bool CircleErasedBy(const std::vector<physics::Linesegment>& stroke) const;
    bool CircleContainedBy(const physics::Polygon& lasso) const;
    math::BoundingBox2 CircleAABB() const;
};

} // namespace app
