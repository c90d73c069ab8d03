#pragma once

#include "logging/Exception.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

namespace util
{

// A growable array of plain data for the hot paths (solver, particle grid, images). Elements are neither
// constructed nor destroyed and are moved with memcpy, so a grow costs one copy and no per-element work.
template <class T> class VectorPOD
{
    static_assert(std::is_trivially_copyable<T>::value, "VectorPOD holds plain data only");

public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    VectorPOD() = default;

    VectorPOD(const VectorPOD& other)
    {
        const size_t n = other.size();
        m_first = alloc(n);
        m_last = m_first + n;
        m_end = m_last;
        if (n)
            std::memcpy(m_first, other.m_first, n * sizeof(T));
    }

    VectorPOD(VectorPOD&& other) noexcept
        : m_first(other.m_first), m_last(other.m_last), m_end(other.m_end)
    {
        other.m_first = other.m_last = other.m_end = nullptr;
    }

    ~VectorPOD() { std::free(m_first); }

    VectorPOD& operator=(const VectorPOD& other)
    {
        if (this == &other)
            return *this;
        const size_t n = other.size();
        if (capacity() <= n)
        {
            std::free(m_first);
            m_first = alloc(n);
            m_end = m_first + n;
        }
        m_last = m_first + n;
        if (n)
            std::memcpy(m_first, other.m_first, n * sizeof(T));
        return *this;
    }

    VectorPOD& operator=(VectorPOD&& other) noexcept
    {
        if (this != &other)
        {
            std::free(m_first);
            m_first = other.m_first;
            m_last = other.m_last;
            m_end = other.m_end;
            other.m_first = other.m_last = other.m_end = nullptr;
        }
        return *this;
    }

    size_t size() const { return size_t(m_last - m_first); }
    size_t capacity() const { return size_t(m_end - m_first); }
    bool empty() const { return m_first == m_last; }

    T* data() { return m_first; }
    const T* data() const { return m_first; }
    iterator begin() { return m_first; }
    iterator end() { return m_last; }
    const_iterator begin() const { return m_first; }
    const_iterator end() const { return m_last; }

    T& operator[](size_t i) { return m_first[i]; }
    const T& operator[](size_t i) const { return m_first[i]; }
    T& front() { return *m_first; }
    T& back() { return m_last[-1]; }
    const T& back() const { return m_last[-1]; }

    void reserve(size_t n)
    {
        if (capacity() >= n)
            return;
        const size_t count = size();
        T* fresh = alloc(n);
        if (count)
            std::memcpy(fresh, m_first, count * sizeof(T));
        std::free(m_first);
        m_first = fresh;
        m_last = fresh + count;
        m_end = fresh + n;
    }

    void append(const T& value)
    {
        if (m_last == m_end)
        {
            const T copy = value; // value may live in our own storage
            private_reserve(size() + 1);
            *m_last++ = copy;
            return;
        }
        *m_last++ = value;
    }
    void push_back(const T& value) { append(value); }

    void pop_back()
    {
        QLEX_ASSERT(!empty());
        --m_last;
    }

    // New elements are left unset, as plain data allows.
    void resize(size_t n)
    {
        private_reserve(n);
        m_last = m_first + n;
    }

    void clear() { m_last = m_first; }

    // Removes one element keeping the order of the rest.
    iterator erase(iterator where)
    {
        std::memmove(where, where + 1, size_t(m_last - where - 1) * sizeof(T));
        --m_last;
        return where;
    }

    // Removes one element by moving the last one into its place: constant time, order not kept.
    void erase_swap(size_t index)
    {
        m_first[index] = m_last[-1];
        --m_last;
    }

    void swap(VectorPOD& other) noexcept
    {
        std::swap(m_first, other.m_first);
        std::swap(m_last, other.m_last);
        std::swap(m_end, other.m_end);
    }

    void private_reserve(size_t n)
    {
        if (capacity() < n)
            reserve(2 * n);
    }

private:
    static T* alloc(size_t n)
    {
        if (n == 0)
            return nullptr;
        void* p = std::malloc(n * sizeof(T));
        if (!p)
            throw std::bad_alloc();
        return static_cast<T*>(p);
    }

    T* m_first = nullptr;
    T* m_last = nullptr;
    T* m_end = nullptr;
};

} // namespace util
