#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

// Steps each shared scene and prints a digest of its final state: every body's and particle's position,
// angle and velocities, bit for bit. A change meant to leave results unchanged prints the same digests
// before and after: step_digest [steps].
namespace
{
namespace scenes = physics::testing;

std::uint64_t Mix(std::uint64_t hash, float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    // FNV-1a over the four bytes.
    for (int i = 0; i < 4; ++i)
    {
        hash ^= (bits >> (8 * i)) & 0xFFu;
        hash *= 1099511628211ull;
    }
    return hash;
}

std::uint64_t MixBody(std::uint64_t hash, const physics::AbstractBody& body)
{
    for (float value : {body.GetPosition().x, body.GetPosition().y, body.GetAngle(), body.GetVelocity().x,
                        body.GetVelocity().y, body.GetAngularVelocity()})
        hash = Mix(hash, value);
    return hash;
}

std::uint64_t Digest(const physics::Simulation& sim)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (const util::SharedPtr<physics::Body>& body : sim.GetBodies())
        hash = MixBody(hash, *body);
    for (const util::SharedPtr<physics::Particle>& particle : sim.GetParticles())
        hash = MixBody(hash, *particle);
    return hash;
}
} // namespace

int main(int argc, char** argv)
{
    const int steps = argc > 1 ? std::atoi(argv[1]) : 300;
    if (steps <= 0)
    {
        std::fprintf(stderr, "usage: step_digest [steps]\n");
        return 1;
    }
    const std::vector<std::pair<const char*, std::function<void()>>> cases = {
        {"pyramid 20", [] { scenes::BuildPyramid(20, scenes::Shape::Box); }},
        {"pyramid of polygons 10", [] { scenes::BuildPyramid(10, scenes::Shape::Polygon); }},
        {"circles 500", [] { scenes::BuildCirclesInContainer(500, 0.25f); }},
        {"drum 300", [] { scenes::BuildRotatingDrum(300, 0.1f); }},
        {"mixed heap 200", [] { scenes::BuildMixedHeap(200); }},
        {"water and boxes",
         []
         {
             scenes::BuildWaterTank(1000, 8);
             scenes::AddFloatingBoxes(10, 8);
         }},
        {"hinge chain 20", [] { scenes::BuildHingeChain(20, math::Vec2(0.0f, 10.0f), 0.5f); }},
    };
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    for (const auto& [name, build] : cases)
    {
        scenes::ResetWorld();
        build();
        for (int i = 0; i < steps; ++i)
        {
            sim.Step(true);
            util::PointeeHandle::Flush();
        }
        std::printf("%-24s %016llx\n", name, static_cast<unsigned long long>(Digest(sim)));
        scenes::ResetWorld();
    }
    return 0;
}
