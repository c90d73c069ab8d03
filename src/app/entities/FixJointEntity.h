#pragma once

#include "app/entities/JointEntity.h"

#include <map>
#include <set>

namespace app
{
using GeomGraph = std::map<physics::Geom*, std::set<physics::Geom*>>;
using GeomSet = physics::Body::GeomSet;

// Adds `geom` and everything the graph reaches from it to `out`.
void AddGeomAndConnected(physics::Geom* geom, const GeomGraph& graph, std::set<physics::Geom*>& out);
// The members of `a` that `b` holds.
std::set<physics::Geom*> Intersection(const std::set<physics::Geom*>& a, const GeomSet& b);

// A weld: its two geoms share one body. No constraint exists for it in the physics; removing it splits the
// body again where nothing else holds the two sides together.
class FixJointEntity final : public JointEntity
{
public:
    explicit FixJointEntity(float size);

    void Draw() const override;
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    bool IsAlive() const override;
    void SerializeTo(EntitySerializer& serializer) const override;
    JointEntityPtr Clone() const override;
    void Reassert() override;
    void CreateJoint() override;
    // At the midpoint, turned with the first fixed geom's body.
    math::Mat2D GetPose() const;

    GeomPtr m_fixedGeoms[2];

private:
    void Split();
};

} // namespace app
