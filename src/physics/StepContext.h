#pragma once

#include "physics/Constraint.h"
#include "physics/WaterKernel.h"

namespace physics
{
// What one step needs to know of the settings, read once by Simulation::Step and handed down to the stages
// that use it, so that no stage depends on state left behind by another step.
struct StepContext
{
    // The step's length in seconds.
    float h = 0.01f;
    ConstraintParams contactParams;
    ConstraintParams hingeParams;
    // Depth that contacts aim for, in metres.
    float targetPenetration = 0.001f;
    // Bound on the position term of contacts and hinges, in metres.
    float maxPositionCorrection = math::INF;
    bool warmStart = true;
    // Fraction of the last step's impulses that is reused.
    float warmStartFactor = 0.5f;
    WaterKernel water;
};

} // namespace physics
