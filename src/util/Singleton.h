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
    // Only the base is built here: the instance is taken as a T once T's constructor has finished, since a
    // cast to T before then would name an object that doesn't exist yet.
    Singleton()
    {
        QLEX_ASSERT(!s_instance && !s_underConstruction);
        s_underConstruction = this;
    }
    // As loose as Pointee's, which every singleton derives from too.
    virtual ~Singleton() noexcept(false) {}
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    static T* GetInstancePtr()
    {
        if (!s_instance)
        {
            // What T's constructor calls may ask for the instance: it gets the object being made, which is a T
            // by then.
            if (s_underConstruction)
                return static_cast<T*>(s_underConstruction);
            Create();
        }
        return s_instance.get();
    }
    static T& GetInstance() { return *GetInstancePtr(); }

    static void Create()
    {
        if (s_instance || s_underConstruction)
            return;
        if (s_createCount != 0)
            QLEX_THROW(BadCoderException("Phoenix singleton detected: " + TypeName<T>()));
        s_createCount = 1;
        T* made = nullptr;
        try
        {
            made = new T;
        }
        catch (...)
        {
            s_underConstruction = nullptr;
            throw;
        }
        s_underConstruction = nullptr;
        s_instance.Reset(made);
    }

    static void Destroy()
    {
        if (s_instance)
            s_instance.Reset(nullptr);
    }

    // Whether the service is up, without making it.
    static bool Exists() { return s_instance || s_underConstruction; }

    inline static SharedPtr<T> s_instance;
    inline static Singleton* s_underConstruction = nullptr;
    inline static int s_createCount = 0;
};

} // namespace util
