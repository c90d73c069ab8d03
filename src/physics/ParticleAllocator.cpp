#include "physics/ParticleAllocator.h"

#include "logging/Exception.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>

namespace physics
{
namespace
{
// Blocks and slots start on a cache line, so that each object's fields fall into the lines alike.
const size_t CACHE_LINE = 64;
const std::align_val_t BLOCK_ALIGNMENT{CACHE_LINE};
} // namespace

ParticleAllocator::ParticleAllocator(size_t slotSize, size_t slotsPerBlock) : m_slotsPerBlock(slotsPerBlock)
{
    QLEX_ASSERT(slotSize > 0 && slotsPerBlock > 0);
    m_slotSize = (slotSize + CACHE_LINE - 1) / CACHE_LINE * CACHE_LINE;
}

ParticleAllocator::~ParticleAllocator()
{
    ReleaseBlocks();
}

void* ParticleAllocator::Allocate()
{
    if (!m_free.empty())
    {
        std::pop_heap(m_free.begin(), m_free.end(), std::greater<void*>());
        void* slot = m_free.back();
        m_free.pop_back();
        ++m_live;
        return slot;
    }
    if (m_fresh == 0)
    {
        const size_t bytes = m_slotSize * m_slotsPerBlock;
        m_blocks.reserve(m_blocks.size() + 1);
        m_blocks.push_back(static_cast<char*>(::operator new(bytes, BLOCK_ALIGNMENT)));
        m_fresh = m_slotsPerBlock;
        // Room for every slot, so that Free, called from operator delete, never allocates.
        m_free.reserve(m_blocks.size() * m_slotsPerBlock);
    }
    void* slot = m_blocks.back() + (m_slotsPerBlock - m_fresh) * m_slotSize;
    --m_fresh;
    ++m_live;
    return slot;
}

void ParticleAllocator::Free(void* slot)
{
    if (!slot)
        return;
    QLEX_ASSERT(m_live > 0);
    --m_live;
    if (m_live == 0)
    {
        ReleaseBlocks();
        return;
    }
    m_free.append(slot);
    std::push_heap(m_free.begin(), m_free.end(), std::greater<void*>());
}

void ParticleAllocator::ReleaseBlocks()
{
    for (char* block : m_blocks)
        ::operator delete(block, BLOCK_ALIGNMENT);
    m_blocks.clear();
    m_free.clear();
    m_fresh = 0;
}

} // namespace physics
