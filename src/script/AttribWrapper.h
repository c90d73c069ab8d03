#pragma once
// The member through which a class holds a setting: it reads and writes like a plain T, is a variable
// of the owning script::Reflected, and can be bound to an expression by scripts.
//
//     script::AttribWrapper<float> m_timeDelta;                 // member
//     m_timeDelta(this, "timeDelta", 0.01f)                     // in the constructor's initialiser list
//     float h = m_timeDelta;  m_timeDelta = 0.02f;              // use
//
// Two further forms keep the value elsewhere: a getter and a setter (polled once per frame), or a
// pointer to a value of another object.

#include "script/Attributes.h"
#include "script/Reflected.h"

namespace script
{

template <class T> class AttribWrapper
{
public:
    AttribWrapper(Reflected* owner, const util::String& name, const T& defaultValue)
        : m_attrib(QLEX_NEW new Attrib<T>(name, defaultValue))
    {
        owner->AddVariable(m_attrib);
    }

    AttribWrapper(Reflected* owner, const util::String& name, const typename AttribGetSet<T>::Getter& getter,
                  const typename AttribGetSet<T>::Setter& setter)
        : m_attrib(QLEX_NEW new AttribGetSet<T>(name, getter, setter))
    {
        owner->AddVariable(m_attrib);
    }

    // Member functions of `object`: `T (C::*)() const` and `void (C::*)(T)` or `void (C::*)(const T&)`.
    template <class C, class G, class S>
    AttribWrapper(Reflected* owner, const util::String& name, C* object, G getter, S setter)
        : AttribWrapper(
              owner, name, [object, getter]() -> T { return (object->*getter)(); },
              [object, setter](const T& value) { (object->*setter)(value); })
    {
    }

    AttribWrapper(Reflected* owner, const util::String& name, T* remote)
        : m_attrib(QLEX_NEW new AttribRemotePoker<T>(name, remote))
    {
        owner->AddVariable(m_attrib);
    }

    AttribWrapper(const AttribWrapper&) = delete;

    operator T() const { return Get(); }
    T Get() const { return m_attrib->Get(); }
    void Set(const T& value) { m_attrib->Set(value); }
    AttribWrapper& operator=(const T& value)
    {
        Set(value);
        return *this;
    }
    AttribWrapper& operator=(const AttribWrapper& other)
    {
        Set(other.Get());
        return *this;
    }

    const util::SharedPtr<TAttrib<T>>& GetAttrib() const { return m_attrib; }
    TAttrib<T>* operator->() const { return &*m_attrib; }

private:
    util::SharedPtr<TAttrib<T>> m_attrib;
};

} // namespace script
