#pragma once
// A source of random numbers. Generators take consecutive seeds of a sequence that starts at the run's
// seed, so that two generators differ and the same seed repeats every choice of a run. The seed starts
// at the processor clock of program start; SetSeed starts the sequence again, and every generator made
// before takes its next seed from the new sequence when it is next used.

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

    static void SetSeed(unsigned seed);
    static unsigned GetSeed() { return s_runSeed; }

private:
    float Uniform01();
    float Normal();
    // Takes the next seed of the sequence, and with it the run's present seed.
    void Reseed();

    boost::mt19937 m_twister;
    boost::uniform_01<float> m_uniform;
    boost::normal_distribution<float> m_normal;
    unsigned m_seedGeneration = 0;

    static unsigned s_runSeed;
    static unsigned s_seed;
    static unsigned s_seedGeneration;
};

} // namespace util
