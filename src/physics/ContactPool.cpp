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
    size_t spare = 0;
    for (const util::SharedPtr<Contact>& contact : m_contacts)
        spare += OnlyPoolHolds(contact) ? 1 : 0;
    // Every step looks at every contact of the pool: a world that shrank (a heap erased, a new scene) gives
    // back what it no longer needs instead of paying for it each step. The last made go first.
    const size_t allowed = m_madeSinceReclaim + MIN_SPARE_CONTACTS;
    m_madeSinceReclaim = 0;
    if (spare > allowed)
    {
        size_t drop = spare - allowed;
        for (size_t i = m_contacts.size(); i-- > 0 && drop > 0;)
            if (OnlyPoolHolds(m_contacts[i]))
            {
                m_contacts[i] = nullptr;
                --drop;
            }
        m_contacts.erase(std::remove(m_contacts.begin(), m_contacts.end(), util::SharedPtr<Contact>()),
                         m_contacts.end());
    }
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
    m_contacts.push_back(util::SharedPtr<Contact>(new Contact(&geomA, &geomB, subId, point, normal, depth)));
    return m_contacts.back().get();
}

} // namespace physics
