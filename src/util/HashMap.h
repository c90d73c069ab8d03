#pragma once

#include "logging/Exception.h"
#include "util/SharedPtr.h"

#include <cstdint>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace math
{
template <class T> struct TVector2;
}

namespace util
{

// Hashes of the keys the system uses. Scene files print records in the tables' iteration order, which
// follows from these values and the bucket count, so they are fixed to the bit.
struct DefaultHasher
{
    static constexpr uint32_t MUL_X = 0x8DA6B343u;
    static constexpr uint32_t MUL_Y = 0xD8163841u;

    template <class T> uint32_t operator()(T* p) const
    {
        return uint32_t(uintptr_t(p) * MUL_X);
    }
    template <class T> uint32_t operator()(const SharedPtr<T>& p) const { return (*this)(p.get()); }
    template <class T> uint32_t operator()(const WeakPtr<T>& p) const { return (*this)(p.get()); }

    template <class T, class = std::enable_if_t<std::is_integral<T>::value || std::is_enum<T>::value>>
    uint32_t operator()(T value) const
    {
        return uint32_t(uint64_t(value) * MUL_X);
    }

    template <class T> uint32_t operator()(const math::TVector2<T>& v) const
    {
        return uint32_t(v.x) * MUL_X + uint32_t(v.y) * MUL_Y;
    }

    uint32_t operator()(const std::string& s) const
    {
        uint32_t h = 0;
        for (char c : s)
            h = uint32_t(int32_t(static_cast<signed char>(c))) + 65599u * h;
        return h;
    }
    uint32_t operator()(const char* s) const { return (*this)(std::string(s)); }
};

namespace internal
{

// A prime at or above the wanted capacity (at least 3): a prime bucket count spreads the multiplicative
// hashes of pointers, whose low bits are mostly alignment.
inline size_t PrimeBucketCount(size_t wanted)
{
    if (wanted <= 2)
        return 3;
    size_t n = wanted % 2 == 0 ? wanted + 1 : wanted;
    for (;; n += 2)
    {
        bool prime = true;
        for (size_t d = 3; d * d <= n; d += 2)
        {
            if (n % d == 0)
            {
                prime = false;
                break;
            }
        }
        if (prime)
            return n;
    }
}

// The chained table shared by HashMap and HashSet. Element is the stored record; KeyOf reads its key.
template <class Element, class Key, class KeyOf, class Hasher> class HashTable
{
public:
    using Bucket = std::vector<Element>;
    using Table = std::vector<Bucket>;

    template <class Ref, class TablePtr> class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Element;
        using difference_type = std::ptrdiff_t;
        using pointer = std::remove_reference_t<Ref>*;
        using reference = Ref;

        Iterator() = default;
        Iterator(TablePtr table, size_t bucket, size_t index) : m_table(table), m_bucket(bucket), m_index(index) {}
        template <class R2, class T2>
        Iterator(const Iterator<R2, T2>& other)
            : m_table(other.m_table), m_bucket(other.m_bucket), m_index(other.m_index)
        {
        }

        Ref operator*() const { return (*m_table)[m_bucket][m_index]; }
        pointer operator->() const { return &(*m_table)[m_bucket][m_index]; }

        Iterator& operator++()
        {
            if (++m_index < (*m_table)[m_bucket].size())
                return *this;
            m_index = 0;
            for (++m_bucket; m_bucket < m_table->size(); ++m_bucket)
            {
                if (!(*m_table)[m_bucket].empty())
                    return *this;
            }
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator old = *this;
            ++*this;
            return old;
        }

        template <class R2, class T2> bool operator==(const Iterator<R2, T2>& rhs) const
        {
            if (static_cast<const void*>(m_table) != static_cast<const void*>(rhs.m_table))
                AssertionFailed("&lhs.m_table == &rhs.m_table", true, true, __PRETTY_FUNCTION__, __FILE__, __LINE__);
            return m_bucket == rhs.m_bucket && m_index == rhs.m_index;
        }
        template <class R2, class T2> bool operator!=(const Iterator<R2, T2>& rhs) const { return !(*this == rhs); }

        TablePtr m_table = nullptr;
        size_t m_bucket = 0;
        size_t m_index = 0;
    };

    using iterator = Iterator<Element&, Table*>;
    using const_iterator = Iterator<const Element&, const Table*>;

    explicit HashTable(size_t capacity = 3, Hasher hasher = Hasher())
        : m_hasher(hasher), m_table(PrimeBucketCount(capacity)), m_count(0)
    {
    }

    size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    size_t GetBucketCount() const { return m_table.size(); }

    size_t Hash(const Key& key) const { return m_hasher(key) % m_table.size(); }

    iterator begin() { return iterator(&m_table, FirstBucket(), 0); }
    iterator end() { return iterator(&m_table, m_table.size(), 0); }
    const_iterator begin() const { return const_iterator(&m_table, FirstBucket(), 0); }
    const_iterator end() const { return const_iterator(&m_table, m_table.size(), 0); }

    iterator find(const Key& key)
    {
        const size_t b = Hash(key);
        Bucket& bucket = m_table[b];
        for (size_t i = 0; i < bucket.size(); ++i)
        {
            if (KeyOf()(bucket[i]) == key)
                return iterator(&m_table, b, i);
        }
        return end();
    }
    const_iterator find(const Key& key) const { return const_cast<HashTable*>(this)->find(key); }

    // Moves the bucket's last element into the hole: erasure never shifts a bucket.
    bool EraseKey(const Key& key)
    {
        iterator it = find(key);
        if (it == end())
            return false;
        erase(it);
        return true;
    }
    void erase(iterator it)
    {
        Bucket& bucket = m_table[it.m_bucket];
        if (it.m_index + 1 != bucket.size())
            bucket[it.m_index] = bucket.back();
        bucket.pop_back();
        --m_count;
    }

    void clear()
    {
        for (Bucket& bucket : m_table)
            bucket.clear();
        m_count = 0;
    }

    void SetCapacity(size_t n)
    {
        if (m_table.size() >= n)
            return;
        HashTable fresh(n, m_hasher);
        for (Element& e : *this)
            fresh.PushNew(std::move(e));
        swap(fresh);
    }

    void CheckRehashNeed()
    {
        if (m_count >= m_table.size())
            SetCapacity(2 * m_table.size());
    }

    void swap(HashTable& other)
    {
        std::swap(m_hasher, other.m_hasher);
        m_table.swap(other.m_table);
        std::swap(m_count, other.m_count);
    }

    std::string GetDiagnostics() const
    {
        size_t largest = 0;
        for (const Bucket& bucket : m_table)
            largest = std::max(largest, bucket.size());
        std::ostringstream out;
        out << "Number of elements:  " << m_count << "\n"
            << "Average bucket size: " << float(m_count) / float(m_table.size()) << "\n"
            << "Maximum bucket size: " << largest << "\n";
        return out.str();
    }

protected:
    // Returns the element for the key, adding make() if absent; the growth check comes first, also for a
    // key that is present.
    template <class Make> Element& FindOrAdd(const Key& key, Make make, bool* added)
    {
        CheckRehashNeed();
        Bucket& bucket = m_table[Hash(key)];
        for (Element& e : bucket)
        {
            if (KeyOf()(e) == key)
            {
                *added = false;
                return e;
            }
        }
        bucket.push_back(make());
        ++m_count;
        *added = true;
        return bucket.back();
    }

private:
    void PushNew(Element&& e)
    {
        m_table[Hash(KeyOf()(e))].push_back(std::move(e));
        ++m_count;
    }

    size_t FirstBucket() const
    {
        size_t b = 0;
        while (b < m_table.size() && m_table[b].empty())
            ++b;
        return b;
    }

    Hasher m_hasher;
    Table m_table;
    size_t m_count;
};

template <class K, class V> struct PairKey
{
    const K& operator()(const std::pair<K, V>& p) const { return p.first; }
};
template <class T> struct SelfKey
{
    const T& operator()(const T& t) const { return t; }
};

} // namespace internal

// Chained hash map with a prime number of buckets. Iteration runs through the buckets in index order.
template <class K, class V, class Hasher = DefaultHasher>
class HashMap : public internal::HashTable<std::pair<K, V>, K, internal::PairKey<K, V>, Hasher>
{
    using Base = internal::HashTable<std::pair<K, V>, K, internal::PairKey<K, V>, Hasher>;

public:
    using key_type = K;
    using mapped_type = V;
    using value_type = std::pair<K, V>;

    explicit HashMap(size_t capacity = 3, Hasher hasher = Hasher()) : Base(capacity, hasher) {}

    V& operator[](const K& key)
    {
        bool added;
        return this->FindOrAdd(key, [&] { return value_type(key, V()); }, &added).second;
    }

    V& Insert(const K& key, const V& value)
    {
        bool added;
        value_type& e = this->FindOrAdd(key, [&] { return value_type(key, value); }, &added);
        if (!added)
            e.second = value;
        return e.second;
    }

    V* TryGet(const K& key)
    {
        auto it = this->find(key);
        return it == this->end() ? nullptr : &it->second;
    }
    const V* TryGet(const K& key) const
    {
        auto it = this->find(key);
        return it == this->end() ? nullptr : &it->second;
    }

    bool Contains(const K& key) const { return TryGet(key) != nullptr; }

    using Base::erase;
    bool erase(const K& key) { return this->EraseKey(key); }
};

template <class T, class Hasher = DefaultHasher>
class HashSet : public internal::HashTable<T, T, internal::SelfKey<T>, Hasher>
{
    using Base = internal::HashTable<T, T, internal::SelfKey<T>, Hasher>;

public:
    using value_type = T;

    explicit HashSet(size_t capacity = 3, Hasher hasher = Hasher()) : Base(capacity, hasher) {}

    void insert(const T& value)
    {
        bool added;
        this->FindOrAdd(value, [&] { return value; }, &added);
    }
    template <class It> void insert(It first, It last)
    {
        for (; first != last; ++first)
            insert(*first);
    }

    bool Contains(const T& value) const { return this->find(value) != this->end(); }

    using Base::erase;
    bool erase(const T& value) { return this->EraseKey(value); }
};

template <class K, class V, class H> void swap(HashMap<K, V, H>& a, HashMap<K, V, H>& b) { a.swap(b); }
template <class T, class H> void swap(HashSet<T, H>& a, HashSet<T, H>& b) { a.swap(b); }

} // namespace util
