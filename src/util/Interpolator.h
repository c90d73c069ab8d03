#pragma once

#include "util/ClassTracker.h"

namespace util
{

// Something that moves a value a little each frame. The main loop updates all of them.
class InterpolatorBase : public ClassTracker<InterpolatorBase>
{
public:
    virtual ~InterpolatorBase() = default;
    virtual void Interpolate() = 0;

    static void UpdateAll()
    {
        for (InterpolatorBase* interpolator : GetAllClassInstances())
            interpolator->Interpolate();
    }
};

} // namespace util
