#pragma once
// A source of random numbers. Each generator takes the next seed of a sequence that starts at the
// processor clock of program start, so that two generators differ.

#include "math/Math.h"

#include <boost/random/mersenne_twister.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/uniform_01.hpp>

namespace util
{

class Random
{
public:
    Random();

    // Requires min <= max.
    float GetUniform(float min, float max);
    // From min up to max, excluding max; requires min < max.
    int GetUniformInt(int min, int max);
    // Each component uniform in -1 to 1.
    math::Vec2 GetUniformVec2();
    // Uniform over the disc of the given radius.
    math::Vec2 GetPointInCircle(float radius);
    math::Vec2 GetNormalVec2();

private:
    float Uniform01();
    float Normal();

    boost::mt19937 m_twister;
    boost::uniform_01<float> m_uniform;
    boost::normal_distribution<float> m_normal;

    static unsigned s_seed;
};

} // namespace util
