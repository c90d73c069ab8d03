#include "util/Random.h"

#include "logging/Exception.h"

#include <ctime>

namespace util
{

unsigned Random::s_runSeed = static_cast<unsigned>(std::clock());
unsigned Random::s_seed = Random::s_runSeed;
unsigned Random::s_seedGeneration = 0;

Random::Random() : m_twister(s_seed++), m_normal(0.0f, 1.0f), m_seedGeneration(s_seedGeneration) {}

void Random::SetSeed(unsigned seed)
{
    s_runSeed = seed;
    s_seed = seed;
    ++s_seedGeneration;
}

void Random::Reseed()
{
    m_twister.seed(s_seed++);
    m_uniform.reset();
    m_normal.reset();
    m_seedGeneration = s_seedGeneration;
}

float Random::Uniform01()
{
    if (m_seedGeneration != s_seedGeneration)
        Reseed();
    return m_uniform(m_twister);
}

float Random::Normal()
{
    if (m_seedGeneration != s_seedGeneration)
        Reseed();
    return m_normal(m_twister);
}

float Random::GetUniform(float min, float max)
{
    QLEX_ASSERT(min <= max);
    return min + (max - min) * Uniform01();
}

int Random::GetUniformInt(int min, int max)
{
    QLEX_ASSERT(min < max);
    double span = static_cast<double>(max) - static_cast<double>(min);
    int offset = static_cast<int>(span * Uniform01());
    // A draw close to 1 can round up to the span in float; keep max excluded.
    int value = min + offset;
    return value >= max ? max - 1 : value;
}

math::Vec2 Random::GetUniformVec2()
{
    float x = GetUniform(-1.0f, 1.0f);
    float y = GetUniform(-1.0f, 1.0f);
    return math::Vec2(x, y);
}

math::Vec2 Random::GetPointInCircle(float radius)
{
    math::Vec2 p = GetUniformVec2();
    while (p.x * p.x + p.y * p.y > 1.0f)
        p = GetUniformVec2();
    return p * radius;
}

math::Vec2 Random::GetNormalVec2()
{
    float x = Normal();
    float y = Normal();
    return math::Vec2(x, y);
}

} // namespace util
