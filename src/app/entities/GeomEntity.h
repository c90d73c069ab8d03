#pragma once

#include "app/entities/Entity.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "script/AttribWrapper.h"

namespace app
{
class GeomEntity;
using GeomEntityPtr = util::SharedPtr<GeomEntity>;
using GeomPtr = util::SharedPtr<physics::Geom>;

// A solid shape of the drawing around one physics geom. Physics may regroup geoms under bodies at any
// time (gluing, welding), so the entity keeps no body structure of its own and asks its geom.
class GeomEntity : public Entity
{
public:
    // The collide set a new shape is in, and the one of a plane: all five.
    static constexpr int COLLIDE_DEFAULT_GROUP = 1;
    static constexpr int COLLIDE_ALL = physics::Geom::COLLIDE_MASK;

    explicit GeomEntity(GeomPtr geom);
    ~GeomEntity() override;

    void Update(float dt) override;
    bool IsOnEntity(math::Vec2 worldPoint) const override;
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    bool IsAlive() const override;
    void Transform(const math::TMat2D<float>& m) override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;
    math::BoundingBox2 GetAABB() const override;
    void CopyFrom(const Entity* source) override;

    virtual GeomEntityPtr Clone() const = 0;
    // The shape scaled along the world's axes about its own centre; the caller places the result.
    virtual GeomEntityPtr ScaledClone(math::Vec2 scale) const = 0;
    // The outline flat, for silhouette passes.
    virtual void DrawBlack() const = 0;

    // The geom's present body, or null; refreshes the cache.
    util::SharedPtr<physics::Body> GetBody() const;
    const GeomPtr& GetGeom() const { return m_geom; }

    GeomPtr m_geom;
    mutable util::SharedPtr<physics::Body> m_body;
    script::AttribWrapper<math::real> m_friction;
    script::AttribWrapper<math::real> m_restitution;
    script::AttribWrapper<bool> m_collideWater;
    script::AttribWrapper<bool> m_heteroCollide;
    script::AttribWrapper<int> m_collideSet;

protected:
    // Whether the geom hangs on a body that shares it with other geoms.
    bool SharesBody() const;
};

} // namespace app
