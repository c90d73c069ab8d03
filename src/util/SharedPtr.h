#pragma once

#include "logging/Exception.h"
#include "logging/LogLevel.h"
#include "util/String.h"
#include "util/VectorPOD.h"

#include <cstddef>
#include <limits>

namespace util
{

class Pointee;

// The small control block shared by an object and every pointer to it. It outlives the object so that
// weak pointers can notice the death; handles nothing refers to any more are freed by Flush, once a frame.
struct PointeeHandle
{
    Pointee* m_object;
    size_t m_refCount;
    size_t m_weakCount;

    bool HasPtr() const { return m_object != nullptr; }

    void IncreaseRefCount()
    {
        QLEX_ASSERT(HasPtr());
        QLEX_ASSERT(m_refCount < std::numeric_limits<size_t>::max());
        ++m_refCount;
    }
    void DecreaseRefCount();
    void IncreaseLockCount() { IncreaseRefCount(); }
    void DecreaseLockCount()
    {
        QLEX_ASSERT(HasPtr());
        QLEX_ASSERT(m_refCount > 0);
        --m_refCount;
    }
    void IncreaseWeakCount()
    {
        QLEX_ASSERT(HasPtr());
        QLEX_ASSERT(m_weakCount < std::numeric_limits<size_t>::max());
        ++m_weakCount;
    }
    void DecreaseWeakCount()
    {
        QLEX_ASSERT(m_weakCount > 0);
        --m_weakCount;
    }

    // The "GC" step: frees handles with neither strong nor weak references.
    static void Flush();
    static size_t GetInstanceCount() { return s_instances.size(); }

    static VectorPOD<PointeeHandle*> s_instances;
    static size_t s_lastSmallFlushCount;
    static size_t s_lastFullFlushCount;
};

// Base of every long-lived object. Must be the first base of its class.
class Pointee
{
public:
    enum State : unsigned
    {
        State_Alive = 0xBEEF,
        State_Dead = 0xDEAD,
    };

    Pointee();
    Pointee(const Pointee&) : Pointee() {}
    Pointee& operator=(const Pointee&) { return *this; }
    // May throw: SafeDelete catches what a subclass destructor lets out, logs it and goes on.
    virtual ~Pointee() noexcept(false);

    PointeeHandle* m_handle;
    unsigned m_state;
    unsigned m_id;
    String m_createdAt;

    static size_t GetInstanceCount() { return s_instanceCount; }
    static size_t GetAllocateCount() { return s_nextId; }

    static size_t s_instanceCount;
    static unsigned s_nextId;
};

template <class T> void SafeDelete(const T* p)
{
    delete p;
}
template <> void SafeDelete<Pointee>(const Pointee* p);
template <> void SafeDelete<PointeeHandle>(const PointeeHandle* p);

namespace internal
{
// Logs what escaped a smart pointer's destructor; nothing may leave a destructor.
void ReportDestructorException(const std::exception* exception, const std::string& site);
[[noreturn]] void ThrowNullDereference(const char* text, const std::string& site);
} // namespace internal

template <class T> class WeakPtr;

// Strong reference: keeps its object alive. Dereferencing null throws instead of crashing.
template <class T> class SharedPtr
{
public:
    using element_type = T;

    SharedPtr() = default;
    SharedPtr(std::nullptr_t) {}
    SharedPtr(T* p) { Reset(p); }
    SharedPtr(const SharedPtr& other) { Reset(other.m_ptr); }
    template <class U> SharedPtr(const SharedPtr<U>& other) { Reset(other.get()); }
    SharedPtr(SharedPtr&& other) noexcept : m_ptr(other.m_ptr) { other.m_ptr = nullptr; }

    ~SharedPtr()
    {
        try
        {
            Reset(nullptr);
        }
        catch (std::exception& e)
        {
            internal::ReportDestructorException(&e, QLEX_SITE);
        }
        catch (...)
        {
            internal::ReportDestructorException(nullptr, QLEX_SITE);
        }
    }

    SharedPtr& operator=(const SharedPtr& other)
    {
        Reset(other.m_ptr);
        return *this;
    }
    SharedPtr& operator=(SharedPtr&& other) noexcept
    {
        if (this != &other)
        {
            T* old = m_ptr;
            m_ptr = other.m_ptr;
            other.m_ptr = nullptr;
            if (old)
                static_cast<const Pointee*>(old)->m_handle->DecreaseRefCount();
        }
        return *this;
    }
    template <class U> SharedPtr& operator=(const SharedPtr<U>& other)
    {
        Reset(other.get());
        return *this;
    }

    // The old object is released before the new one is taken, so that a release that destroys an
    // object cannot see a half-updated pointer.
    void Reset(T* p = nullptr)
    {
        if (p == m_ptr)
            return;
        if (m_ptr)
        {
            PointeeHandle* handle = HandleOf(m_ptr);
            m_ptr = nullptr;
            handle->DecreaseRefCount();
        }
        m_ptr = p;
        if (m_ptr)
            HandleOf(m_ptr)->IncreaseRefCount();
    }
    void reset(T* p = nullptr) { Reset(p); }

    void Check() const
    {
        if (!m_ptr)
            internal::ThrowNullDereference("Tried to dereference a NULL SharedPtr", QLEX_SITE);
    }

    T* get() const { return m_ptr; }
    T& operator*() const
    {
        Check();
        return *m_ptr;
    }
    T* operator->() const
    {
        Check();
        return m_ptr;
    }
    explicit operator bool() const { return m_ptr != nullptr; }
    bool operator!() const { return m_ptr == nullptr; }

    template <class U> bool operator==(const SharedPtr<U>& other) const { return m_ptr == other.get(); }
    template <class U> bool operator!=(const SharedPtr<U>& other) const { return m_ptr != other.get(); }
    template <class U> bool operator<(const SharedPtr<U>& other) const { return m_ptr < other.get(); }
    bool operator==(const WeakPtr<T>& other) const { return m_ptr == other.get(); }
    bool operator!=(const WeakPtr<T>& other) const { return m_ptr != other.get(); }
    bool operator==(std::nullptr_t) const { return m_ptr == nullptr; }
    bool operator!=(std::nullptr_t) const { return m_ptr != nullptr; }

private:
    static PointeeHandle* HandleOf(T* p) { return static_cast<const Pointee*>(p)->m_handle; }

    T* m_ptr = nullptr;
};

// Does not keep its object alive; reads as null once the object is gone.
template <class T> class WeakPtr
{
public:
    WeakPtr() = default;
    WeakPtr(std::nullptr_t) {}
    WeakPtr(T* p) { Reset(p); }
    template <class U> WeakPtr(const SharedPtr<U>& p) { Reset(p.get()); }
    WeakPtr(const WeakPtr& other) { Reset(other.get()); }
    template <class U> WeakPtr(const WeakPtr<U>& other) { Reset(other.get()); }
    ~WeakPtr()
    {
        if (m_handle)
            m_handle->DecreaseWeakCount();
    }

    WeakPtr& operator=(const WeakPtr& other)
    {
        Reset(other.get());
        return *this;
    }
    template <class U> WeakPtr& operator=(const WeakPtr<U>& other)
    {
        Reset(other.get());
        return *this;
    }
    template <class U> WeakPtr& operator=(const SharedPtr<U>& other)
    {
        Reset(other.get());
        return *this;
    }
    WeakPtr& operator=(T* p)
    {
        Reset(p);
        return *this;
    }

    // A dead object shows itself by a handle without an object; the first read lets go of the handle.
    void CheckAttachment() const
    {
        if (m_handle && !m_handle->HasPtr())
        {
            m_handle->DecreaseWeakCount();
            m_handle = nullptr;
            m_ptr = nullptr;
        }
    }

    void Reset(T* p = nullptr)
    {
        CheckAttachment();
        if (p == m_ptr)
            return;
        if (m_handle)
            m_handle->DecreaseWeakCount();
        m_ptr = p;
        m_handle = p ? static_cast<const Pointee*>(p)->m_handle : nullptr;
        if (m_handle)
            m_handle->IncreaseWeakCount();
    }
    void reset(T* p = nullptr) { Reset(p); }

    T* get() const
    {
        CheckAttachment();
        return m_ptr;
    }
    SharedPtr<T> lock() const { return SharedPtr<T>(get()); }
    T* operator->() const
    {
        T* p = get();
        if (!p)
            internal::ThrowNullDereference("Tried to dereference a NULL WeakPtr", QLEX_SITE);
        return p;
    }
    T& operator*() const { return *operator->(); }
    explicit operator bool() const { return get() != nullptr; }
    bool operator!() const { return get() == nullptr; }
    PointeeHandle* GetHandle() const
    {
        CheckAttachment();
        return m_handle;
    }

    template <class U> bool operator==(const WeakPtr<U>& other) const { return get() == other.get(); }
    template <class U> bool operator!=(const WeakPtr<U>& other) const { return get() != other.get(); }
    template <class U> bool operator<(const WeakPtr<U>& other) const { return get() < other.get(); }
    bool operator==(const SharedPtr<T>& other) const { return get() == other.get(); }
    bool operator!=(const SharedPtr<T>& other) const { return get() != other.get(); }
    bool operator==(const T* other) const { return get() == other; }
    bool operator!=(const T* other) const { return get() != other; }

private:
    mutable T* m_ptr = nullptr;
    mutable PointeeHandle* m_handle = nullptr;
};

// A scope-long strong reference. Unlike SharedPtr it may be taken on an object nobody owns yet (during
// its construction, say); such an object survives the lock's release.
template <class T> class LockPtr
{
public:
    LockPtr(T* p = nullptr) : m_ptr(p), m_handle(p ? static_cast<const Pointee*>(p)->m_handle : nullptr)
    {
        Take();
    }
    template <class U> LockPtr(const WeakPtr<U>& weak) : m_ptr(weak.get()), m_handle(weak.GetHandle())
    {
        Take();
    }
    template <class U> LockPtr(const SharedPtr<U>& strong) : LockPtr(static_cast<T*>(strong.get())) {}
    LockPtr(const LockPtr&) = delete;
    LockPtr& operator=(const LockPtr&) = delete;

    ~LockPtr()
    {
        if (!m_handle)
            return;
        try
        {
            if (m_savedRefCount != 0)
                m_handle->DecreaseRefCount();
            else
                m_handle->DecreaseLockCount();
        }
        catch (std::exception& e)
        {
            internal::ReportDestructorException(&e, QLEX_SITE);
        }
    }

    void Check() const
    {
        if (!m_ptr)
            internal::ThrowNullDereference("Tried to dereference a NULL LockPtr", QLEX_SITE);
    }
    T* get() const { return m_ptr; }
    T& operator*() const
    {
        Check();
        return *m_ptr;
    }
    T* operator->() const
    {
        Check();
        return m_ptr;
    }
    explicit operator bool() const { return m_ptr != nullptr; }
    bool operator!() const { return m_ptr == nullptr; }

private:
    void Take()
    {
        if (!m_handle)
            return;
        m_savedRefCount = m_handle->m_refCount;
        m_handle->IncreaseLockCount();
    }

    T* m_ptr;
    PointeeHandle* m_handle;
    size_t m_savedRefCount = 0;
};

template <class T, class U> SharedPtr<T> dynamic_pointer_cast(const SharedPtr<U>& p)
{
    return SharedPtr<T>(dynamic_cast<T*>(p.get()));
}

template <class T, class U> T* dynamic_pointer_cast(const LockPtr<U>& p)
{
    return dynamic_cast<T*>(p.get());
}

template <class T, class U> SharedPtr<T> static_pointer_cast(const SharedPtr<U>& p)
{
    return SharedPtr<T>(static_cast<T*>(p.get()));
}

namespace internal
{

// Records where an object was made, for leak reports, and hands it to its first owner at once, before
// the next "GC" step could free its handle.
class OnNewCall
{
public:
    explicit OnNewCall(String site) : m_site(std::move(site)) {}

    template <class T> SharedPtr<T> operator%(T* object) const
    {
        if (object)
            static_cast<Pointee*>(object)->m_createdAt = m_site;
        return SharedPtr<T>(object);
    }

private:
    String m_site;
};

} // namespace internal
} // namespace util

#define QLEX_NEW ::util::internal::OnNewCall(QLEX_SITE) %
