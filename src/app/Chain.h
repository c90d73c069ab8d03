#pragma once
// An ordered run of entities made in one go with the chain tool. The links hold their chain; the chain
// holds its links only weakly, so a chain lives as long as one of its links does.

#include "util/SharedPtr.h"

#include <cstdint>
#include <vector>

namespace app
{
class Entity;

class Chain : public util::Pointee
{
public:
    // Indices at or above this are taken for bad data.
    static constexpr size_t MAX_INDEX = 100000;

    Chain();

    std::uint32_t GetID() const { return m_id; }

    // Appends the entity and makes it a link of this chain.
    void AddEntity(const util::SharedPtr<Entity>& entity);
    // Puts the entity at `index`, growing the chain as needed: loading and cloning fill chains in any
    // order.
    void AddEntity(size_t index, const util::SharedPtr<Entity>& entity);
    // The first index that holds the entity, or -1.
    int IndexOf(const util::SharedPtr<const Entity>& entity) const;
    int IndexOf(const Entity* entity) const;
    // The links still alive, in order; empty slots are skipped.
    std::vector<util::SharedPtr<Entity>> GetEntities() const;
    // The links next to `entity` up to the first one the scene no longer holds; the two ends are left
    // out unless `includeEnds`, since they are usually anchors.
    std::vector<util::SharedPtr<Entity>> GetNeighbors(const util::SharedPtr<Entity>& entity,
                                                      bool includeEnds) const;
    // Every link forgets the chain, and the chain forgets every link.
    void Detach();

    size_t GetSlotCount() const { return m_entities.size(); }

private:
    std::vector<util::WeakPtr<Entity>> m_entities;
    std::uint32_t m_id;

    static std::uint32_t s_nextId;
};

typedef util::SharedPtr<Chain> ChainPtr;

} // namespace app
