#pragma once

#include "physics/Geom.h"
#include "util/SharedPtr.h"

namespace physics
{
class Body;

// A link between two shapes that acts through forces before the solver runs. Its ends are shapes, and the
// bodies are looked up at each use, so that gluing shapes together carries the joint along.
class Joint : public util::Pointee
{
public:
    Joint(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB);
    ~Joint() override;

    virtual void Activate() {}
    virtual void Deactivate() {}
    virtual void ApplyForce() {}
    // The two shapes differ and both their bodies are in the simulation.
    virtual bool IsGood() const;

    void GetBodies(Body* out[2]) const;
    const util::SharedPtr<Geom>& GetGeom(int i) const { return m_geoms[i]; }

protected:
    util::SharedPtr<Geom> m_geoms[2];
};

} // namespace physics
