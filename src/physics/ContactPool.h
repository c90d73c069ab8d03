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
    // Frees every contact that only the pool holds. Where for CALLS_BEFORE_TRIM calls in a row there were
    // more than SPARES_BEFORE_TRIM times as many as were made between two calls, plus MIN_SPARE_CONTACTS,
    // it lets go of those beyond SPARES_AFTER_TRIM times the most made between two of those calls, plus
    // MIN_SPARE_CONTACTS.
    void Reclaim();
    static constexpr size_t MIN_SPARE_CONTACTS = 1024;
    static constexpr size_t SPARES_BEFORE_TRIM = 4;
    static constexpr size_t SPARES_AFTER_TRIM = 2;
    // A second of steps at the default step length.
    static constexpr size_t CALLS_BEFORE_TRIM = 100;
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
    // m_free: every contact that only the pool holds.
    void CollectFree();

    std::vector<util::SharedPtr<Contact>> m_contacts;
    util::VectorPOD<Contact*> m_free;
    bool m_overflowed = false;
    size_t m_madeSinceReclaim = 0;
    // Calls in a row that found far more spares than needed, and the most needed over them.
    size_t m_smallCalls = 0;
    size_t m_smallNeed = 0;
};

} // namespace physics
