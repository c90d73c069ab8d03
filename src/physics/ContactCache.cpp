#include "physics/ContactCache.h"

namespace physics
{
void ContactCache::Begin(size_t count)
{
    m_memory.clear();
    m_ids.clear();
    m_next = 0;
    Reserve(count);
}

void ContactCache::Reserve(size_t count)
{
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

ContactCache::Slot* ContactCache::FindSlot(const ContactID& id)
{
    for (std::uint32_t i = id.hash & m_mask;; i = (i + 1) & m_mask)
    {
        Slot& slot = m_slots[i];
        if (slot.generation != m_generation || slot.id == id)
            return &slot;
    }
}

void ContactCache::Remember(const Contact& contact)
{
    const ContactID& id = contact.GetID();
    Slot* slot = FindSlot(id);
    if (slot->generation == m_generation)
    {
        m_memory[slot->memory] = contact.Remember();
        return;
    }
    if (2 * (m_memory.size() + 1) > m_slots.size())
    {
        // More than Begin was told: every entry moves to a table twice the size.
        Reserve(m_slots.size());
        for (size_t i = 0; i < m_ids.size(); ++i)
            *FindSlot(m_ids[i]) = Slot{m_ids[i], m_generation, static_cast<std::uint32_t>(i)};
        slot = FindSlot(id);
    }
    *slot = Slot{id, m_generation, static_cast<std::uint32_t>(m_memory.size())};
    m_memory.append(contact.Remember());
    m_ids.append(id);
}

const ContactMemory* ContactCache::Find(const ContactID& id) const
{
    if (m_memory.empty())
        return nullptr;
    // A step finds its contacts in about the order of the last one's: the entry after the last one found
    // is tried first, which spares most lookups a probe into the table. Ids are remembered once each, so
    // a match there is the entry the table holds.
    if (m_next < m_ids.size() && m_ids[m_next] == id)
        return &m_memory[m_next++];
    for (std::uint32_t i = id.hash & m_mask;; i = (i + 1) & m_mask)
    {
        const Slot& slot = m_slots[i];
        if (slot.generation != m_generation)
            return nullptr;
        if (slot.id == id)
        {
            m_next = slot.memory + 1;
            return &m_memory[slot.memory];
        }
    }
}

} // namespace physics
