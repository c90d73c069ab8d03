#pragma once

#include "util/ClassTracker.h"
#include "util/ReentrantOrderedSet.h"
#include "util/SharedPtr.h"

#include <functional>

namespace util
{

// A function guarded by a weak link to its owner: once the owner dies the callback stops firing, and
// its set drops it at the next flush.
class Callback : public Pointee
{
public:
    Callback(std::function<void()> function, Pointee* owner) : m_function(std::move(function)), m_owner(owner) {}

    // True when the owner was alive and the function ran.
    bool operator()() const
    {
        LockPtr<Pointee> lock(m_owner);
        if (!lock)
            return false;
        m_function();
        return true;
    }

    bool IsAlive() const { return bool(m_owner); }

private:
    std::function<void()> m_function;
    WeakPtr<Pointee> m_owner;
};

template <class A> class CallbackArg : public Pointee
{
public:
    CallbackArg(std::function<void(A)> function, Pointee* owner) : m_function(std::move(function)), m_owner(owner) {}

    bool operator()(const A& argument) const
    {
        LockPtr<Pointee> lock(m_owner);
        if (!lock)
            return false;
        m_function(argument);
        return true;
    }

    bool IsAlive() const { return bool(m_owner); }

private:
    std::function<void(A)> m_function;
    WeakPtr<Pointee> m_owner;
};

using CallbackPtr = SharedPtr<Callback>;

template <class T> CallbackPtr MakeCallback(void (T::*fn)(), T* object)
{
    return QLEX_NEW new Callback([fn, object] { (object->*fn)(); }, object);
}

template <class A, class T> SharedPtr<CallbackArg<A>> MakeCallbackArg(void (T::*fn)(A), T* object)
{
    return QLEX_NEW new CallbackArg<A>([fn, object](A a) { (object->*fn)(a); }, object);
}

class AbstractCallbackSet : public ClassTracker<AbstractCallbackSet>
{
public:
    virtual ~AbstractCallbackSet() = default;
    virtual void Flush() = 0;

    // Sweeps dead callbacks out of every set; the main loop runs it every eleventh pass.
    static void FlushCallbackSets();
};

namespace internal
{
void ReportCallbackException(const std::exception& e, const std::string& site);
}

template <class C> class BasicCallbackSet : public AbstractCallbackSet
{
public:
    void Add(SharedPtr<C> callback)
    {
        if (callback)
            m_callbacks.insert(callback);
    }
    void Remove(const SharedPtr<C>& callback) { m_callbacks.erase(callback); }
    size_t size() const { return m_callbacks.size(); }
    bool empty() const { return m_callbacks.empty(); }

    void Flush() override
    {
        typename ReentrantOrderedSet<SharedPtr<C>>::ConstLock lock(m_callbacks);
        for (const SharedPtr<C>& callback : lock)
        {
            if (!callback->IsAlive())
                m_callbacks.erase(callback);
        }
    }

protected:
    template <class... Args> void CallAllImpl(const Args&... args) const
    {
        typename ReentrantOrderedSet<SharedPtr<C>>::ConstLock lock(m_callbacks);
        for (const SharedPtr<C>& callback : lock)
        {
            try
            {
                callback.Check();
                (*callback)(args...);
            }
            catch (std::exception& e)
            {
                internal::ReportCallbackException(e, QLEX_SITE);
            }
        }
    }

    ReentrantOrderedSet<SharedPtr<C>> m_callbacks;
};

class CallbackSet : public BasicCallbackSet<Callback>
{
public:
    void CallAll() const { CallAllImpl(); }
};

template <class A> class CallbackArgSet : public BasicCallbackSet<CallbackArg<A>>
{
public:
    void CallAll(const A& argument) const { this->CallAllImpl(argument); }
};

} // namespace util
