#pragma once

#include "math/Math.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"

#include <cstdint>

namespace physics
{
class AbstractBody;
class Body;

using BoundingBox2 = math::BoundingBox<float, 2, math::Vec2>;
using BoundingCircle = math::TBoundingSphere<math::Vec2>;

// One collision shape fixed to a body, with its own material and collision filters. The pose maps the
// shape's own frame to the world; the owning body keeps it up to date.
class Geom : public util::Pointee
{
public:
    // Five collide sets, as the user interface shows them.
    static const int COLLIDE_MASK = 0x1f;

    // The concrete family, so that the collider sorts shapes without run-time type queries.
    enum class Kind
    {
        World,
        Circle,
        ParticleCircle,
        Box,
        Plane,
        Polygon
    };

    ~Geom() override;

    // Signed distance, negative inside.
    virtual float DistanceWorld(const math::Vec2& p) const = 0;
    virtual math::Vec2 NormalWorld(const math::Vec2& p) const = 0;
    virtual float Area() const = 0;
    // Moment of inertia about the shape's own origin, per unit of mass.
    virtual float InertiaSansMass() const = 0;
    virtual math::Vec2 GetClosestEdge(math::Vec2 p) const = 0;
    virtual BoundingBox2 GetAABBWorld() const = 0;
    virtual math::OBB2D GetOBBWorld() const = 0;
    virtual BoundingCircle GetBCWorld() const = 0;
    virtual void SetWorldPose(const math::Mat2D& m);

    Kind GetKind() const { return m_kind; }
    std::uint32_t GetId() const { return m_id; }
    AbstractBody* GetBody() const { return m_body; }
    // The owner as a rigid body, or null when it is none (a water particle, or no owner).
    Body* GetBodyBody() const;
    void SetBody(AbstractBody* body) { m_body = body; }

    const math::Mat2D& GetPose() const { return m_pose; }
    const math::Mat2D& GetWorldToGeom() const { return m_worldToGeom; }
    const math::Vec2& GetPosition() const { return m_position; }
    float GetAngle() const;
    void SetPos(const math::Vec2& p);

    float Mass() const { return m_density * Area(); }
    float Inertia() const { return InertiaSansMass() * Mass(); }

    float GetDensity() const { return m_density; }
    void SetDensity(float density);
    float GetFriction() const { return m_friction; }
    void SetFriction(float friction) { m_friction = friction; }
    float GetRestitution() const { return m_restitution; }
    void SetRestitution(float restitution) { m_restitution = restitution; }
    float GetAirFrictionMult() const { return m_airFrictionMult; }
    void SetAirFrictionMult(float mult) { m_airFrictionMult = mult; }
    int GetCollideSet() const { return m_collideSet; }
    void SetCollideSet(int set) { m_collideSet = set; }
    bool GetWaterCollide() const { return m_collideWater; }
    void SetWaterCollide(bool collide) { m_collideWater = collide; }
    bool GetHeteroCollide() const { return m_heteroCollide; }
    void SetHeteroCollide(bool hetero) { m_heteroCollide = hetero; }

    // Counted, because several joints may link the same two shapes. Callers add it on both sides.
    void AddNoCollide(Geom* other);
    void RemoveNoCollide(Geom* other);
    bool HasNoCollide(Geom* other) const;

    // Lets the owning body follow a change of mass.
    void OnGeomChange();
    void CopyFrom(const Geom& other);

protected:
    // Material defaults come from the simulation's settings at creation.
    explicit Geom(Kind kind);
    Geom(const Geom& other);
    Geom& operator=(const Geom&) = delete;

    std::uint32_t m_id;
    AbstractBody* m_body = nullptr;
    math::Mat2D m_worldToGeom;
    math::Mat2D m_pose;
    math::Vec2 m_position;
    float m_density;
    float m_friction;
    float m_restitution;
    float m_airFrictionMult = 1.0f;
    util::HashMap<Geom*, int> m_noCollide;
    bool m_collideWater = true;
    bool m_heteroCollide = false;
    int m_collideSet = 1;

private:
    Kind m_kind;
    // Number of shapes in m_noCollide, so that the common case costs no hash lookup.
    int m_noCollideEntries = 0;

    static std::uint32_t s_idCounter;
};

} // namespace physics
