#include "physics/ContactCache.h"

namespace physics
{
void ContactCache::Begin(size_t count)
{
    m_memory.clear();
    // At most half full, so that probes stay short.
    size_t capacity = 16;
    while (capacity < 2 * count)
        capacity *= 2;
    if (capacity > m_slots.size() || ++m_generation == 0)
    {
        m_slots.resize(capacity > m_slots.size() ? capacity : m_slots.size());
        for (Slot& slot : m_slots)
            slot.generation = 0;
        m_generation = 1;
    }
    m_mask = static_cast<std::uint32_t>(m_slots.size() - 1);
}

void ContactCache::Remember(const Contact& contact)
{
    const ContactID& id = contact.GetID();
    for (std::uint32_t i = id.hash & m_mask;; i = (i + 1) & m_mask)
    {
        Slot& slot = m_slots[i];
        if (slot.generation != m_generation)
        {
            slot = Slot{id, m_generation, static_cast<std::uint32_t>(m_memory.size())};
            m_memory.append(contact.Remember());
            return;
        }
        if (slot.id == id)
        {
            m_memory[slot.memory] = contact.Remember();
            return;
        }
    }
}

const ContactMemory* ContactCache::Find(const ContactID& id) const
{
    if (m_memory.empty())
        return nullptr;
    for (std::uint32_t i = id.hash & m_mask;; i = (i + 1) & m_mask)
    {
        const Slot& slot = m_slots[i];
        if (slot.generation != m_generation)
            return nullptr;
        if (slot.id == id)
            return &m_memory[slot.memory];
    }
}

} // namespace physics
