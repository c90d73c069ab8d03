#pragma once

#include "logging/Exception.h"
#include "logging/LogLevel.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace util
{

// An ordered set that may be changed while it is being walked: changes made during a walk wait until the
// outermost walk ends. Callbacks and attribute lists live in it, and their calls add and remove members.
template <class T> class ReentrantOrderedSet
{
public:
    enum Operation
    {
        Op_Insert = 0,
        Op_Erase = 1,
        Op_Clear = 2,
    };

    // All walking goes through a lock; the set is synchronised when the last lock ends.
    class ConstLock
    {
    public:
        explicit ConstLock(const ReentrantOrderedSet& set) : m_set(set) { ++m_set.m_lockCount; }
        ConstLock(const ConstLock&) = delete;
        ConstLock& operator=(const ConstLock&) = delete;
        ~ConstLock()
        {
            if (--m_set.m_lockCount == 0)
                const_cast<ReentrantOrderedSet&>(m_set).Sync();
        }

        typename std::vector<T>::const_iterator begin() const { return m_set.m_items.begin(); }
        typename std::vector<T>::const_iterator end() const { return m_set.m_items.end(); }
        size_t size() const { return m_set.m_items.size(); }

    private:
        const ReentrantOrderedSet& m_set;
    };

    ReentrantOrderedSet() = default;
    ReentrantOrderedSet(const ReentrantOrderedSet& other) { *this = other; }

    ReentrantOrderedSet& operator=(const ReentrantOrderedSet& other)
    {
        if (this == &other)
            return *this;
        if (other.IsLocked())
            Log(logging::Error, "Copying dirty ReentrantOrderedSet, ignoring recent modifications.");
        clear();
        ConstLock lock(other);
        for (const T& item : lock)
            insert(item);
        return *this;
    }

    bool IsLocked() const { return m_lockCount != 0; }
    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    bool Contains(const T& value) const { return std::find(m_items.begin(), m_items.end(), value) != m_items.end(); }

    void insert(const T& value)
    {
        if (IsLocked())
        {
            m_modificationList.emplace_back(Op_Insert, value);
            return;
        }
        QLEX_ASSERT(m_modificationList.empty());
        InsertImpl(value);
    }

    void erase(const T& value)
    {
        if (IsLocked())
        {
            m_modificationList.emplace_back(Op_Erase, value);
            return;
        }
        QLEX_ASSERT(m_modificationList.empty());
        EraseImpl(value);
    }

    void clear()
    {
        if (IsLocked())
        {
            m_modificationList.emplace_back(Op_Clear, std::nullopt);
            return;
        }
        QLEX_ASSERT(m_modificationList.empty());
        ClearImpl();
    }

private:
    void Sync()
    {
        // Applying a change may not start another walk of this set, so the list is stable here.
        std::vector<std::pair<Operation, std::optional<T>>> changes;
        changes.swap(m_modificationList);
        for (auto& change : changes)
        {
            switch (change.first)
            {
            case Op_Insert: InsertImpl(*change.second); break;
            case Op_Erase: EraseImpl(*change.second); break;
            case Op_Clear: ClearImpl(); break;
            }
        }
    }

    // A member inserted again moves to the end.
    void InsertImpl(const T& value)
    {
        QLEX_ASSERT(!IsLocked());
        EraseImpl(value);
        m_items.push_back(value);
    }
    void EraseImpl(const T& value)
    {
        QLEX_ASSERT(!IsLocked());
        auto it = std::find(m_items.begin(), m_items.end(), value);
        if (it != m_items.end())
            m_items.erase(it);
    }
    void ClearImpl()
    {
        QLEX_ASSERT(!IsLocked());
        m_items.clear();
    }

    mutable std::vector<T> m_items;
    mutable unsigned m_lockCount = 0;
    std::vector<std::pair<Operation, std::optional<T>>> m_modificationList;
};

} // namespace util
