#include "physics/Joint.h"

#include "physics/Body.h"
#include "physics/Simulation.h"

namespace physics
{
Joint::Joint(const util::SharedPtr<Geom>& geomA, const util::SharedPtr<Geom>& geomB)
{
    m_geoms[0] = geomA;
    m_geoms[1] = geomB;
}

Joint::~Joint() = default;

bool Joint::IsGood() const
{
    if (m_geoms[0] == m_geoms[1])
        return false;
    const Simulation& sim = *Simulation::GetInstancePtr();
    for (const util::SharedPtr<Geom>& g : m_geoms)
    {
        Body* body = g ? g->GetBodyBody() : nullptr;
        if (!body || !sim.HasBody(body))
            return false;
    }
    return true;
}

void Joint::GetBodies(Body* out[2]) const
{
    for (int i = 0; i < 2; ++i)
        out[i] = m_geoms[i] ? m_geoms[i]->GetBodyBody() : nullptr;
}

} // namespace physics
