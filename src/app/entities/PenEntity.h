#pragma once

#include "app/entities/Entity.h"
#include "app/entities/GeomEntity.h"
#include "physics/Circle.h"

#include <deque>

namespace app
{
// A marker fixed at a point of a geom that records the path of that point once per physics step and
// draws it as a tail fading with simulated time.
class PenEntity final : public Entity
{
public:
    struct TailElem
    {
        double time;
        math::Vec2 position;
        // Unit vector across the path.
        math::Vec2 normal;
    };

    // Seconds of simulated time after which a tail element goes in any case.
    static const double MAX_TAIL_TIME;
    static const size_t MAX_TAIL_LENGTH = 100000;

    explicit PenEntity(float size);

    void Update(float dt) override;
    void Draw() const override;
    bool IsOnEntity(math::Vec2 worldPoint) const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    bool IsAlive() const override;
    void StartTransform() override;
    void Transform(const math::TMat2D<float>& m) override;
    void EndTransform() override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;
    math::BoundingBox2 GetAABB() const override;
    // The tail is drawn when the head is out of view.
    bool IsInView(const math::BoundingBox2& view) const override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    void CopyFrom(const Entity* source) override;
    util::SharedPtr<PenEntity> Clone() const;

    void AttachTo(GeomPtr geom, math::Vec2 local);
    // Onto the topmost geom under p deeper than the pen.
    void AttachAt(math::Vec2 p);
    math::Vec2 GetPos() const;
    util::SharedPtr<physics::Circle> AsCircle() const;
    const std::deque<TailElem>& GetTail() const { return m_tail; }
    // The first element the drawing shows: one before the first that is younger than fadeTime.
    size_t FindBegin() const;

    // Once per physics step.
    void OnSimUpdate(float dt);

    script::AttribWrapper<float> m_size;
    script::AttribWrapper<float> m_fadeTime;
    GeomPtr m_geom;
    math::Vec2 m_local;
    math::Vec2 m_transformPos;
    double m_time;
    std::deque<TailElem> m_tail;
};

} // namespace app
