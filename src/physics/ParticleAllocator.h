#pragma once

#include "util/VectorPOD.h"

#include <cstddef>
#include <vector>

namespace physics
{
// Storage of equal slots, each starting on a cache line, in large blocks, for objects made and dropped by the
// thousand (water particles). The free slot of lowest address is handed out first, so that objects made one
// after another lie one after another in memory whatever came and went before, and passes over all of them
// walk memory in order. The blocks are given back once every slot is free.
class ParticleAllocator
{
public:
    ParticleAllocator(size_t slotSize, size_t slotsPerBlock);
    ~ParticleAllocator();
    ParticleAllocator(const ParticleAllocator&) = delete;
    ParticleAllocator& operator=(const ParticleAllocator&) = delete;

    void* Allocate();
    void Free(void* slot);

    size_t GetSlotSize() const { return m_slotSize; }
    size_t GetLiveCount() const { return m_live; }
    size_t GetBlockCount() const { return m_blocks.size(); }

private:
    void ReleaseBlocks();

    size_t m_slotSize;
    size_t m_slotsPerBlock;
    std::vector<char*> m_blocks;
    // Slots of the last block never handed out yet.
    size_t m_fresh = 0;
    // A heap with the lowest address on top.
    util::VectorPOD<void*> m_free;
    size_t m_live = 0;
};

} // namespace physics
