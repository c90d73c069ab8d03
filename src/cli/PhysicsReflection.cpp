#include "cli/PhysicsReflection.h"

#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace cli
{

namespace
{
// An attribute over a member of another object, kept alive by its owner's list.
template <class T> std::shared_ptr<void> MakeRemote(script::Reflected* owner, const char* name, T* member)
{
    return std::make_shared<script::AttribWrapper<T>>(owner, name, member);
}
} // namespace

template <class T> void SimulationReflection::Remote(const char* name, T* member)
{
    m_attributes.push_back(MakeRemote(this, name, member));
}

template <class T> void SPHReflection::Remote(const char* name, T* member)
{
    m_attributes.push_back(MakeRemote(this, name, member));
}

SimulationReflection::SimulationReflection() : script::Reflected("Sim")
{
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    Remote("running", &sim->m_running);
    Remote("timeFactor", &sim->m_timeFactor);
    Remote("timeDelta", &sim->m_timeDelta);
    Remote("gravity", &sim->m_gravity);
    Remote("gravitySwitch", &sim->m_gravitySwitch);
    Remote("airSwitch", &sim->m_airSwitch);
    Remote("airFrictionLinear", &sim->m_airFrictionLinear);
    Remote("airFrictionQuadratic", &sim->m_airFrictionQuadratic);
    Remote("rotFrictionLinear", &sim->m_rotFrictionLinear);
    Remote("airDensity", &sim->m_airDensity);
    Remote("springForce", &sim->m_springForce);
    Remote("defaultBodyDensity", &sim->m_defaultBodyDensity);
    Remote("defaultBodyFriction", &sim->m_defaultBodyFriction);
    Remote("defaultBodyRestitution", &sim->m_defaultBodyRestitution);
    Remote("fallLimit", &sim->m_fallLimit);
    Remote("prioritizedSolver", &sim->m_prioritizedSolver);
    Remote("targetPenetration", &sim->m_targetPenetration);
    Remote("solveIter", &sim->m_solveIter);
    Remote("solveConstant", &sim->m_solveConstant);
    Remote("solveDcontacts", &sim->m_solveDcontacts);
    Remote("solveDconstraints", &sim->m_solveDconstraints);
    Remote("solvePenetrationDamping", &sim->m_solvePenetrationDamping);
    Remote("solveDistFactor", &sim->m_solveDistFactor);
    Remote("solveVelFactor", &sim->m_solveVelFactor);
    Remote("solveAccFactor", &sim->m_solveAccFactor);
    Remote("solveRegularizationFactor", &sim->m_solveRegularizationFactor);
    Remote("solvePreSortConstraints", &sim->m_solvePreSortConstraints);
    Remote("leapFrog", &sim->m_leapFrog);
    Remote("adHocSolver", &sim->m_adHocSolver);
    Remote("warmStart", &sim->m_warmStart);
    Remote("warmStartFactor", &sim->m_warmStartFactor);
    Remote("maxPositionCorrection", &sim->m_maxPositionCorrection);
    AddCmd("time", [] { return script::ValueToObject(static_cast<float>(physics::GetSimTime())); });
}

SPHReflection::SPHReflection() : script::Reflected("SPH")
{
    physics::SPH* sph = physics::SPH::GetInstancePtr();
    Remote("radius", &sph->m_radius);
    Remote("influence", &sph->m_influence);
    Remote("specialPressure", &sph->m_specialPressure);
    Remote("velocitySmoothing", &sph->m_velocitySmoothing);
    Remote("vaporizeTime", &sph->m_vaporizeTime);
    Remote("friction", &sph->m_friction);
    Remote("restitution", &sph->m_restitution);
    Remote("soundSpeed", &sph->m_soundSpeed);
    Remote("density", &sph->m_density);
    Remote("viscosity", &sph->m_viscosity);
    Remote("pressMultiplier", &sph->m_pressMultiplier);
    Remote("viscMultiplier", &sph->m_viscMultiplier);
    Remote("surfaceTension", &sph->m_surfaceTension);
    Remote("jitter", &sph->m_jitter);
    Remote("bucketSize", &sph->m_bucketSize);
    for (const char* name : {"AVG_neighCount", "AVG_pressure", "AVG_density"})
    {
        util::String key = name;
        AddCmd(name, [key]
               { return script::ValueToObject(physics::SPH::GetInstancePtr()->GetReportedValue(key)); });
    }
    AddCmd("hashInfo",
           [] { return script::ValueToObject(physics::SPH::GetInstancePtr()->GetReportedText("hashInfo")); });
}

} // namespace cli
