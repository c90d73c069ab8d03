#pragma once

// INTERIM STAND-IN for app::Chain, which the scene model builds: the order of links and the id that scene
// files write. The build uses this folder only while src/app/Chain.h does not exist; delete it when it does.

#include "app/entities/Entity.h"

#include <cstdint>
#include <vector>

namespace app
{
class Chain : public util::Pointee
{
public:
    Chain() : m_id(s_nextId++) {}
    void AddEntity(EntityPtr entity)
    {
        entity->m_chain = this;
        m_entities.push_back(entity);
    }
    int IndexOf(util::SharedPtr<const Entity> entity) const
    {
        for (size_t i = 0; i < m_entities.size(); ++i)
            if (m_entities[i].get() == entity.get())
                return int(i);
        return -1;
    }
    std::uint32_t GetID() const { return m_id; }

private:
    std::vector<util::WeakPtr<Entity>> m_entities;
    std::uint32_t m_id;
    inline static std::uint32_t s_nextId = 0;
};
} // namespace app
