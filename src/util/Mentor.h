#pragma once

#include "logging/Exception.h"
#include "logging/LogLevel.h"
#include "util/Callback.h"
#include "util/ClassTracker.h"
#include "util/SharedPtr.h"
#include "util/TypeName.h"

#include <functional>
#include <typeinfo>

namespace util
{

// A lazily loaded resource that can be unloaded (every GL object dies with the window) and loads again at
// its next use.
class AbstractMentor : public Pointee, public ClassTracker<AbstractMentor>
{
public:
    virtual ~AbstractMentor() = default;
    virtual void Load() = 0;
    virtual void Unload() = 0;
    virtual const std::type_info& GetType() const = 0;
};

template <class T> class Mentor : public AbstractMentor
{
public:
    using Loader = std::function<T*()>;

    explicit Mentor(Loader loader) : m_loader(std::move(loader)) {}

    SharedPtr<T> GetPtr()
    {
        Load();
        return m_resource;
    }

    bool IsLoaded() const { return bool(m_resource); }

    // A resource that can't be loaded is replaced by the default one, so its holders go on working.
    void Load() override
    {
        if (m_resource)
            return;
        try
        {
            if (m_loader)
                m_resource = SharedPtr<T>(m_loader());
        }
        catch (std::exception& e)
        {
            Log(logging::Warning, "Failed to load " + TypeName<T>() + ": " + e.what());
            CatchException(e, QLEX_SITE);
        }
        catch (...)
        {
            Log(logging::Warning, "Unknown error while loading " + TypeName<T>());
            CatchException(QLEX_SITE);
        }
        if (m_resource)
        {
            m_onLoad.CallAll();
        }
        else if (s_default && s_default.get() != this)
        {
            m_resource = s_default->GetPtr();
        }
    }

    void Unload() override
    {
        if (!m_resource)
            return;
        m_onUnload.CallAll();
        m_resource.Reset();
    }

    const std::type_info& GetType() const override { return typeid(T); }

    CallbackSet& OnLoad() { return m_onLoad; }
    CallbackSet& OnUnload() { return m_onUnload; }

    inline static SharedPtr<Mentor<T>> s_default;

private:
    Loader m_loader;
    SharedPtr<T> m_resource;
    CallbackSet m_onLoad;
    CallbackSet m_onUnload;
};

// How users hold a resource: copied freely; dereferencing loads it again after a window change.
template <class T> class MentorProxy
{
public:
    MentorProxy() = default;
    explicit MentorProxy(SharedPtr<Mentor<T>> mentor) : m_mentor(std::move(mentor)) {}

    T* operator->() const
    {
        m_mentor.Check();
        return m_mentor->GetPtr().get();
    }
    T* get() const { return m_mentor ? m_mentor->GetPtr().get() : nullptr; }

    // False for no mentor, and also for a resource that fell back on the default one.
    operator void*() const
    {
        if (!m_mentor)
            return nullptr;
        T* mine = m_mentor->GetPtr().get();
        T* fallback = Mentor<T>::s_default ? Mentor<T>::s_default->GetPtr().get() : nullptr;
        return mine != fallback ? static_cast<void*>(mine) : nullptr;
    }

    const SharedPtr<Mentor<T>>& GetMentor() const { return m_mentor; }
    bool operator==(const MentorProxy& other) const { return m_mentor == other.m_mentor; }

private:
    SharedPtr<Mentor<T>> m_mentor;
};

} // namespace util
