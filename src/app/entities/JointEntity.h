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
    // A joint is picked, erased and bounded as the disc of diameter m_size about its midpoint.
    bool IsOnEntity(math::Vec2 worldPoint) const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    math::BoundingBox2 GetAABB() const override;
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
    // A joint of kind T at the default size, with this one's settings: what Clone makes.
    template <class T> JointEntityPtr CloneAs() const
    {
        util::SharedPtr<T> clone = QLEX_NEW new T(DefaultSize());
        clone->CopyFrom(this);
        return clone;
    }
    static float DefaultSize();
};

// A joint with a physics object of its own, a hinge or a spring, which stands in the simulation while the
// entity does and is made anew whenever the joint is attached again.
template <class P> class PhysicsJointEntity : public JointEntity
{
public:
    using JointEntity::JointEntity;

    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    bool IsAlive() const override;
    void Reassert() override;
    void CreateJoint() override;

    // Null until the joint is first attached.
    util::SharedPtr<P> m_joint;

protected:
    // A new physics object between the present geoms and points, with the entity's settings.
    virtual util::SharedPtr<P> MakeJoint() = 0;
};

} // namespace app
