#include "physics/ContactPool.h"

#include "physics/Contact.h"

#include <algorithm>

namespace physics
{
namespace
{
bool OnlyPoolHolds(const util::SharedPtr<Contact>& contact)
{
    return static_cast<const util::Pointee*>(contact.get())->m_handle->m_refCount == 1;
}
} // namespace

void ContactPool::Reclaim()
{
    CollectFree();
    const size_t spare = m_free.size();
    // Every step looks at every contact of the pool: a world that shrank far (a heap erased, a new scene)
    // and stays small gives back what it no longer needs instead of paying for it each step, down to twice
    // its greatest need of that time. The gap between the bounds, and the wait, keep a world whose contacts
    // come and go (or that starts in the air) from giving back and making anew.
    const size_t need = m_madeSinceReclaim;
    m_madeSinceReclaim = 0;
    if (spare > SPARES_BEFORE_TRIM * need + MIN_SPARE_CONTACTS)
    {
        m_smallNeed = m_smallCalls == 0 ? need : std::max(m_smallNeed, need);
        ++m_smallCalls;
    }
    else
    {
        m_smallCalls = 0;
    }
    const size_t keep = SPARES_AFTER_TRIM * m_smallNeed + MIN_SPARE_CONTACTS;
    if (m_smallCalls >= CALLS_BEFORE_TRIM && spare > keep)
    {
        m_smallCalls = 0;
        size_t drop = spare - keep;
        for (size_t i = m_contacts.size(); i-- > 0 && drop > 0;)
            if (OnlyPoolHolds(m_contacts[i]))
            {
                m_contacts[i] = nullptr;
                --drop;
            }
        m_contacts.erase(std::remove(m_contacts.begin(), m_contacts.end(), util::SharedPtr<Contact>()),
                         m_contacts.end());
        CollectFree();
    }
}

void ContactPool::CollectFree()
{
    // Backwards, so that contacts are handed out from the back in the order they were made.
    m_free.clear();
    for (size_t i = m_contacts.size(); i-- > 0;)
        if (OnlyPoolHolds(m_contacts[i]))
            m_free.append(m_contacts[i].get());
}

Contact* ContactPool::Make(Geom& geomA, Geom& geomB, std::uint32_t subId, const math::Vec2& point,
                           const math::Vec2& normal, float depth)
{
    ++m_madeSinceReclaim;
    if (!m_free.empty())
    {
        Contact* contact = m_free.back();
        m_free.pop_back();
        contact->Reset(&geomA, &geomB, subId, point, normal, depth);
        return contact;
    }
    // Growing by half of what there is makes a growing world allocate a few times, not every step; the
    // spares are handed out after this one, in the order they were made.
    const size_t count = std::max<size_t>(1, m_contacts.size() / 2);
    const size_t first = m_contacts.size();
    for (size_t i = 0; i < count; ++i)
        m_contacts.push_back(
            util::SharedPtr<Contact>(new Contact(&geomA, &geomB, subId, point, normal, depth)));
    for (size_t i = m_contacts.size(); i-- > first + 1;)
        m_free.append(m_contacts[i].get());
    return m_contacts[first].get();
}

} // namespace physics
