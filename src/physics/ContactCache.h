#pragma once

#include "physics/Contact.h"
#include "physics/ContactID.h"
#include "util/VectorPOD.h"

#include <cstdint>

namespace physics
{
// What the last step's contacts carry into this one, by id: one open-addressed table with linear probing,
// rebuilt every step into storage that is kept. Slots of an earlier step count as empty, so that nothing
// has to be wiped between steps. Of two contacts with one id, the later is remembered.
class ContactCache
{
public:
    // Forgets everything and makes room for `count` contacts; more make it grow.
    void Begin(size_t count);
    void Remember(const Contact& contact);
    const ContactMemory* Find(const ContactID& id) const;
    void Clear() { Begin(0); }

private:
    struct Slot
    {
        ContactID id;
        std::uint32_t generation;
        std::uint32_t memory;
    };

    // Sizes the table for `count` entries, all empty.
    void Reserve(size_t count);
    Slot* FindSlot(const ContactID& id);

    util::VectorPOD<Slot> m_slots;
    util::VectorPOD<ContactMemory> m_memory;
    // The id of each entry of m_memory, for growing.
    util::VectorPOD<ContactID> m_ids;
    std::uint32_t m_mask = 0;
    // Where Find looks first.
    mutable std::uint32_t m_next = 0;
    std::uint32_t m_generation = 0;
};

} // namespace physics
