#pragma once

#include "physics/AbstractBody.h"
#include "physics/Geom.h"
#include "util/HashMap.h"

#include <vector>

namespace physics
{
// A rigid body whose mass properties follow from the shapes fixed to it. The body's frame has its origin at
// the centre of mass; each part keeps the pose of its shape in that frame.
class Body : public AbstractBody
{
public:
    using GeomSet = util::HashSet<util::SharedPtr<Geom>>;

    struct BodyPart
    {
        util::SharedPtr<Geom> geom;
        math::Mat2D bodyToGeom;
        // The pose of the shape in the body's frame.
        math::Mat2D geomToBody;
    };

    Body();
    ~Body() override;

    // Every change of shapes ends here, with the full new set: mass, centre and inertia are rebuilt so
    // that no shape moves in the world. Velocities are kept.
    void SetGeoms(const GeomSet& geoms);
    void AddGeom(const util::SharedPtr<Geom>& geom);
    void AddGeoms(const GeomSet& geoms);
    void SetGeom(const util::SharedPtr<Geom>& geom);
    void RemoveGeom(const util::SharedPtr<Geom>& geom);
    void OnGeomChange();

    void ApplyPoseChange() override;
    // Also bad when it holds no shape at all.
    bool IsBad() const override;

    const GeomSet& GetGeoms() const { return m_geoms; }
    const std::vector<BodyPart>& GetParts() const { return m_parts; }
    const math::Mat2D& GetBodyToWorld() const { return m_bodyToWorld; }
    const math::Mat2D& GetWorldToBody() const { return m_worldToBody; }

private:
    math::Mat2D m_bodyToWorld;
    math::Mat2D m_worldToBody;
    std::vector<BodyPart> m_parts;
    GeomSet m_geoms;
};

} // namespace physics
