#pragma once

#include "math/MathUtil.h"

namespace physics
{
// The smoothing kernels of the water for one step: the influence distance h, 1 / (64 pi h^9), 1 / (pi h^6),
// and the mass of one particle. SPH makes it from its settings; the forces and the smoothing of a step read
// the same one.
struct WaterKernel
{
    float influenceRad = 0.1f;
    float kernel64PiH9Inv = 0.0f;
    float kernelPiH6Inv = 0.0f;
    float mass = 0.0f;

    // False where a setting of 0, or one so small or large that the kernels overflow, leaves nothing to weigh
    // neighbours with.
    bool IsUsable() const
    {
        return influenceRad > 0.0f && math::IsFiniteFloat(influenceRad) && mass > 0.0f &&
               math::IsFiniteFloat(mass) && math::IsFiniteFloat(kernel64PiH9Inv) &&
               math::IsFiniteFloat(kernelPiH6Inv);
    }
    // Poly6: the weight of a neighbour at distance d, for densities and smoothing.
    float Influence(float d) const
    {
        const float h = influenceRad;
        const float q = h * h - d * d;
        return 315.0f * kernel64PiH9Inv * q * q * q;
    }
    // The size of the spiky kernel's gradient, for pressure.
    float PressureDelta(float d) const
    {
        const float q = influenceRad - d;
        return 45.0f * kernelPiH6Inv * q * q;
    }
    // The viscosity kernel's Laplacian.
    float ViscosityDelta2(float d) const { return 45.0f * kernelPiH6Inv * (influenceRad - d); }
};

} // namespace physics
