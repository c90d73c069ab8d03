#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

#include <cstdint>
#include <vector>

namespace physics
{
class Contact;
class Geom;

// Contacts for reuse: a contact returns to service once nothing but the pool holds it, so that a steady
// state makes no new contacts, while one that a caller keeps (to draw it, say) is never changed under it.
class ContactPool
{
public:
    // Frees every contact that only the pool holds, and lets go of the spares beyond as many as were made
    // since the last call, plus MIN_SPARE_CONTACTS.
    void Reclaim();
    static constexpr size_t MIN_SPARE_CONTACTS = 1024;
    // A contact as Contact's constructor makes it; the pool keeps a reference to it.
    Contact* Make(Geom& geomA, Geom& geomB, std::uint32_t subId, const math::Vec2& point,
                  const math::Vec2& normal, float depth);

    size_t GetSize() const { return m_contacts.size(); }
    size_t GetFreeCount() const { return m_free.size(); }
    // True the first time it is asked: the collider's cap on contacts is told once.
    bool FirstOverflow()
    {
        const bool first = !m_overflowed;
        m_overflowed = true;
        return first;
    }

private:
    std::vector<util::SharedPtr<Contact>> m_contacts;
    util::VectorPOD<Contact*> m_free;
    bool m_overflowed = false;
    size_t m_madeSinceReclaim = 0;
};

} // namespace physics
