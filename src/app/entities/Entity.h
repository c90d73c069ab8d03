#pragma once

#include "input/ButtonInput.h"
#include "math/Math.h"
#include "script/Reflected.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace physics
{
class Linesegment;
class Polygon;
} // namespace physics

namespace app
{
class Chain;
class Entity;
class EntitySerializer;

using EntityPtr = util::SharedPtr<Entity>;
using EntitySet = util::HashSet<EntityPtr, util::DefaultHasher>;

// Colours are stored with three decimals, so that what a scene file says is exactly what is kept.
float LimitPrecision(float c);

// What the user places in a scene: the document-side face of a simulation object. It adds what physics
// doesn't know (identity, colour, drawing depth, chain membership, the keys that destroy and mirror it)
// and the interface through which the scene, the tools and the serializer treat all kinds alike.
class Entity : public script::Reflected
{
public:
    static const float NO_DEPTH;
    static const std::uint32_t BAD_ID;

    Entity();
    ~Entity() override;

    // One frame of upkeep.
    virtual void Update(float dt);
    virtual void Draw() const = 0;
    // Picking.
    virtual bool IsOnEntity(math::Vec2 worldPoint) const = 0;
    // Whether a stroke of the eraser gesture crosses the entity so that it must go.
    virtual bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const = 0;
    // Whether the entity lies wholly inside the lasso.
    virtual bool IsContainedBy(const physics::Polygon& lasso) const = 0;
    virtual void AddToSimulation() = 0;
    virtual void RemoveFromSimulation() = 0;
    // Whether the entity should stay in the scene.
    virtual bool IsAlive() const;
    // The three steps of a rigid move.
    virtual void StartTransform();
    virtual void Transform(const math::TMat2D<float>& m) = 0;
    virtual void EndTransform();
    virtual void SerializeTo(EntitySerializer& serializer) const;
    virtual void Deserialize(const EntitySerializer& serializer);
    virtual math::BoundingBox2 GetAABB() const = 0;
    virtual float CalcEnergy() const;
    virtual bool IsInView(const math::BoundingBox2& view) const;
    // Appends the points that bound the entity, for oriented boxes around groups.
    virtual void GetBoundPoints(std::vector<math::Vec2>& points) = 0;
    // Colour, depth and key assignments; never the id, the chain or the callbacks.
    virtual void CopyFrom(const Entity* source);

    std::uint32_t GetID() const { return m_id; }
    const util::SharedPtr<Chain>& GetChain() const { return m_chain; }
    void SetColor(math::Vec4 color);
    math::Vec4 GetColor() const { return m_color; }
    bool HasScaleTransform() const;
    void ClearScaleTransform();
    // Makes the camera follow this entity, as the key "tracked" of a scene record asks.
    void TrackWithCamera();

    std::uint32_t m_id;
    util::SharedPtr<Chain> m_chain;
    math::Vec4 m_color;
    bool m_selectedLook = false;
    bool m_markedLook = false;
    bool m_inTransform = false;
    float m_zDepth = NO_DEPTH;
    // A preview of a scale drag, applied when drawing; identity at rest.
    math::Mat3 m_scaleTransform;
    // Where the ghost of a clone in the making stands, relative to the entity.
    std::optional<math::Vec2> m_cloneOffset;
    input::ButtonInput m_buttonDestroy;
    input::ButtonInput m_buttonMirror;

    static std::uint32_t s_idCounter;
};

// Press callbacks of the two keys every entity carries.
void DestroyByButton(input::ButtonInput* button, util::WeakPtr<Entity> entity);
void MirrorByButton(input::ButtonInput* button, util::WeakPtr<Entity> entity);

} // namespace app
