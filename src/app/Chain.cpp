#include "app/Chain.h"

#include "app/Scene.h"
#include "app/entities/Entity.h"

namespace app
{

std::uint32_t Chain::s_nextId = 0;

Chain::Chain() : m_id(s_nextId++) {}

void Chain::AddEntity(const util::SharedPtr<Entity>& entity)
{
    QLEX_ASSERT(entity);
    entity->m_chain = this;
    m_entities.push_back(util::WeakPtr<Entity>(entity));
}

void Chain::AddEntity(size_t index, const util::SharedPtr<Entity>& entity)
{
    QLEX_ASSERT(entity);
    static_assert(MAX_INDEX == 100000, "the assertion below names the limit");
    QLEX_DATA_ASSERT(index < 100000);
    entity->m_chain = this;
    if (m_entities.size() <= index)
        m_entities.resize(index + 1);
    m_entities[index] = util::WeakPtr<Entity>(entity);
}

int Chain::IndexOf(const util::SharedPtr<const Entity>& entity) const
{
    return IndexOf(entity.get());
}

int Chain::IndexOf(const Entity* entity) const
{
    for (size_t i = 0; i < m_entities.size(); ++i)
    {
        if (entity && m_entities[i].get() == entity)
            return int(i);
    }
    return -1;
}

std::vector<util::SharedPtr<Entity>> Chain::GetEntities() const
{
    std::vector<util::SharedPtr<Entity>> result;
    for (const util::WeakPtr<Entity>& link : m_entities)
    {
        if (util::SharedPtr<Entity> entity = link.lock())
            result.push_back(entity);
    }
    return result;
}

std::vector<util::SharedPtr<Entity>> Chain::GetNeighbors(const util::SharedPtr<Entity>& entity,
                                                         bool includeEnds) const
{
    QLEX_ASSERT(entity && "ent");
    std::vector<util::SharedPtr<Entity>> links = GetEntities();
    const size_t n = links.size();
    size_t i = 0;
    while (i < n && links[i] != entity)
        ++i;
    std::vector<util::SharedPtr<Entity>> result;
    if (i >= n || i == 0 || i == n - 1)
        return result;
    if (i == 1)
    {
        result.push_back(links.front());
        return result;
    }
    if (i == n - 2)
    {
        result.push_back(links.back());
        return result;
    }
    Scene* scene = Scene::GetInstancePtr();
    const size_t upEnd = includeEnds ? n : n - 1;
    for (size_t j = i + 1; j < upEnd && scene->HasEntity(links[j]); ++j)
        result.push_back(links[j]);
    const size_t downEnd = includeEnds ? 0 : 1;
    for (size_t j = i; j > downEnd && scene->HasEntity(links[j - 1]); --j)
        result.push_back(links[j - 1]);
    return result;
}

void Chain::Detach()
{
    util::SharedPtr<Chain> keep(this);
    for (const util::WeakPtr<Entity>& link : m_entities)
    {
        if (util::SharedPtr<Entity> entity = link.lock())
        {
            if (entity->GetChain().get() == this)
                entity->m_chain = nullptr;
        }
    }
    m_entities.clear();
}

} // namespace app
