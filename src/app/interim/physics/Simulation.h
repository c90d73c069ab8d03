#pragma once

// INTERIM STAND-IN for the physics of the world, built on its own branch: a clock that runs while
// "running" is on, and a list of water particles that stand still. Only what the application root and the
// drawing read is here, under the spec's names. The build picks this folder up only while
// src/physics/Simulation.h does not exist; delete it when it does.

#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <vector>

namespace physics
{
class AbstractBody : public util::Pointee
{
public:
    const math::Vec2& GetPosition() const { return m_position; }
    void SetPosition(const math::Vec2& p) { m_position = p; }
    const math::Vec2& GetVelocity() const { return m_velocity; }
    void SetVelocity(const math::Vec2& v) { m_velocity = v; }

private:
    math::Vec2 m_position;
    math::Vec2 m_velocity;
};

class Particle : public AbstractBody
{
};

// A touching pair of shapes; the stand-in world has none.
class Contact : public util::Pointee
{
};

class Simulation : public util::Pointee, public util::Singleton<Simulation>
{
public:
    void Update(double dt)
    {
        if (m_running && dt > 0)
            m_time += dt;
    }
    bool IsRunning() const { return m_running; }
    void SetRunning(bool running) { m_running = running; }
    double GetTime() const { return m_time; }

    void AddParticle(util::SharedPtr<Particle> particle) { m_particles.push_back(particle); }
    const std::vector<util::SharedPtr<Particle>>& GetParticles() const { return m_particles; }
    void EraseWater() { m_particles.clear(); }
    const std::vector<util::SharedPtr<Contact>>& GetContacts() const { return m_contacts; }

private:
    bool m_running = true;
    double m_time = 0;
    std::vector<util::SharedPtr<Particle>> m_particles;
    std::vector<util::SharedPtr<Contact>> m_contacts;
};

inline double GetSimTime()
{
    return Simulation::GetInstancePtr()->GetTime();
}

class SPH : public util::Pointee, public util::Singleton<SPH>
{
public:
    // The particle radius in metres.
    float GetRadius() const { return m_radius; }
    void SetRadius(float radius) { m_radius = radius; }

private:
    float m_radius = 0.05f;
};
} // namespace physics
