#include "physics/ContactPool.h"

#include "physics/Contact.h"

namespace physics
{
void ContactPool::Reclaim()
{
    // Backwards, so that contacts are handed out from the back in the order they were made.
    m_free.clear();
    for (size_t i = m_contacts.size(); i-- > 0;)
    {
        Contact* contact = m_contacts[i].get();
        if (static_cast<const util::Pointee*>(contact)->m_handle->m_refCount == 1)
            m_free.append(contact);
    }
}

Contact* ContactPool::Make(Geom& geomA, Geom& geomB, std::uint32_t subId, const math::Vec2& point,
                           const math::Vec2& normal, float depth)
{
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
