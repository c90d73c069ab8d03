#pragma once

#include "logging/Exception.h"
#include "util/SharedPtr.h"
#include "util/TypeName.h"

namespace util
{

// An application-wide service, made on first use. Once destroyed it never comes back within a run: a use
// after Destroy means the shut-down order is wrong, and that is reported instead of quietly making a new one.
template <class T> class Singleton
{
public:
    Singleton()
    {
        QLEX_ASSERT(!s_instance);
        s_instance.Reset(static_cast<T*>(this));
    }
    // As loose as Pointee's, which every singleton derives from too.
    virtual ~Singleton() noexcept(false) {}
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    static T* GetInstancePtr()
    {
        if (!s_instance)
            Create();
        return s_instance.get();
    }
    static T& GetInstance() { return *GetInstancePtr(); }

    static void Create()
    {
        if (s_instance)
            return;
        if (s_createCount != 0)
            QLEX_THROW(BadCoderException("Phoenix singleton detected: " + TypeName<T>()));
        s_createCount = 1;
        new T;
    }

    static void Destroy()
    {
        if (s_instance)
            s_instance.Reset(nullptr);
    }

    // Whether the service is up, without making it.
    static bool Exists() { return bool(s_instance); }

    inline static SharedPtr<T> s_instance;
    inline static int s_createCount = 0;
};

} // namespace util
