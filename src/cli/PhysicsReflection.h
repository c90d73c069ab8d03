#pragma once
// "Sim" and "SPH" for scripts, over the settings that physics::Simulation and physics::SPH keep as plain
// members. Each attribute writes through to the member and follows it from the next poke, so that the
// physics reads the script's values at each use. Stands until those classes are script::Reflected
// themselves; then JoinSubsystems adds them to the root directly and this pair goes.

#include "script/AttribWrapper.h"
#include "script/Reflected.h"

#include <memory>
#include <vector>

namespace cli
{

class SimulationReflection : public script::Reflected
{
public:
    SimulationReflection();

private:
    template <class T> void Remote(const char* name, T* member);

    std::vector<std::shared_ptr<void>> m_attributes;
};

class SPHReflection : public script::Reflected
{
public:
    SPHReflection();

private:
    template <class T> void Remote(const char* name, T* member);

    std::vector<std::shared_ptr<void>> m_attributes;
};

} // namespace cli
