#include "WorldTest.h"

#include "physics/Particle.h"
#include "physics/ParticleAllocator.h"

#include <cstdint>
#include <cstring>
#include <set>

namespace physics
{
namespace
{
std::uintptr_t Address(const void* p)
{
    return reinterpret_cast<std::uintptr_t>(p);
}
} // namespace

TEST(ParticleAllocatorTest, Slots_LowestFreeFirstAndBlocksGoWhenAllAreFree)
{
    ParticleAllocator store(40, 4);
    // Rounded up to whole cache lines, and every slot starts on one.
    ASSERT_EQ(store.GetSlotSize() % 64, 0u);
    ASSERT_GE(store.GetSlotSize(), 40u);
    const size_t size = store.GetSlotSize();

    void* slots[6];
    for (void*& slot : slots)
    {
        slot = store.Allocate();
        EXPECT_EQ(Address(slot) % 64, 0u);
    }
    EXPECT_EQ(store.GetBlockCount(), 2u);
    EXPECT_EQ(store.GetLiveCount(), 6u);
    for (int i = 1; i < 4; ++i)
        EXPECT_EQ(Address(slots[i]), Address(slots[0]) + i * size);
    EXPECT_EQ(Address(slots[5]), Address(slots[4]) + size);
    // Each slot holds its own data.
    for (int i = 0; i < 6; ++i)
        std::memset(slots[i], i + 1, 40);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(static_cast<unsigned char*>(slots[i])[39], i + 1);

    // Freed in any order, handed out again by address (the blocks may lie either way round).
    store.Free(slots[2]);
    store.Free(slots[5]);
    store.Free(slots[1]);
    std::set<std::uintptr_t> freed = {Address(slots[1]), Address(slots[2]), Address(slots[5])};
    for (std::uintptr_t expected : freed)
        EXPECT_EQ(Address(store.Allocate()), expected);
    // Then the last block's unused slots.
    EXPECT_EQ(Address(store.Allocate()), Address(slots[5]) + size);

    for (void* slot : {slots[0], slots[1], slots[2], slots[3], slots[4], slots[5]})
        store.Free(slot);
    EXPECT_EQ(store.GetLiveCount(), 1u);
    EXPECT_EQ(store.GetBlockCount(), 2u);
    store.Free(reinterpret_cast<void*>(Address(slots[5]) + size));
    EXPECT_EQ(store.GetLiveCount(), 0u);
    EXPECT_EQ(store.GetBlockCount(), 0u);
}

TEST_F(WorldTest, Particles_MadeOneAfterAnotherLieSideBySide)
{
    // The world is empty: no particle of an earlier test is alive to leave holes.
    std::vector<util::SharedPtr<Particle>> water = testing::BuildWaterTank(300, 10);
    for (size_t i = 1; i < water.size(); ++i)
    {
        const std::uintptr_t step = Address(water[i].get()) - Address(water[i - 1].get());
        // One block holds 256; the next block may lie anywhere.
        if (i % 256 != 0)
        {
            ASSERT_EQ(step, Address(water[1].get()) - Address(water[0].get()));
        }
    }
    EXPECT_GE(Address(water[1].get()) - Address(water[0].get()), sizeof(Particle));
    EXPECT_LT(Address(water[1].get()) - Address(water[0].get()), sizeof(Particle) + 64);

    // A removed particle's place goes to the next one made.
    Particle* gone = water[5].get();
    water.erase(water.begin() + 5);
    Sim().EraseWater();
    for (const util::SharedPtr<Particle>& p : water)
        Sim().AddParticle(p);
    util::SharedPtr<Particle> next = QLEX_NEW new Particle(math::Vec2(0.0f, 0.0f), math::Vec2(0.0f, 0.0f));
    EXPECT_EQ(next.get(), gone);
}

} // namespace physics
