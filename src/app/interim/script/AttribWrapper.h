#pragma once

// INTERIM STAND-IN for script attributes: see Reflected.h beside this file. A value with change callbacks,
// or a getter and setter pair; nothing is visible to scripts.

#include "script/Reflected.h"
#include "util/Callback.h"

#include <functional>

namespace script
{
template <class T> class TAttrib : public util::Pointee
{
public:
    using Getter = std::function<T()>;
    using Setter = std::function<void(const T&)>;

    TAttrib(const T& defaultValue) : m_default(defaultValue), m_value(defaultValue) {}
    TAttrib(Getter getter, Setter setter) : m_getter(std::move(getter)), m_setter(std::move(setter)) {}

    T Get() const { return m_getter ? m_getter() : m_value; }
    void Set(const T& value)
    {
        if (m_setter)
        {
            m_setter(value);
            return;
        }
        if (value == m_value)
            return;
        m_value = value;
        m_callbacks.CallAll();
    }
    void SetToDefault() { Set(m_default); }
    bool IsDefaultValue() const { return Get() == m_default; }
    void AddChangeCallback(util::CallbackPtr callback) { m_callbacks.Add(callback); }

private:
    Getter m_getter;
    Setter m_setter;
    T m_default{};
    T m_value{};
    util::CallbackSet m_callbacks;
};

template <class T> class AttribGetSet
{
public:
    using Getter = typename TAttrib<T>::Getter;
    using Setter = typename TAttrib<T>::Setter;
};

template <class T> class AttribWrapper
{
public:
    AttribWrapper(Reflected*, const util::String&, const T& defaultValue)
        : m_attrib(QLEX_NEW new TAttrib<T>(defaultValue))
    {
    }
    AttribWrapper(Reflected*, const util::String&, const typename AttribGetSet<T>::Getter& getter,
                  const typename AttribGetSet<T>::Setter& setter)
        : m_attrib(QLEX_NEW new TAttrib<T>(getter, setter))
    {
    }
    template <class C, class G, class S>
    AttribWrapper(Reflected* owner, const util::String& name, C* object, G getter, S setter)
        : AttribWrapper(
              owner, name, [object, getter]() -> T { return (object->*getter)(); },
              [object, setter](const T& value) { (object->*setter)(value); })
    {
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
    TAttrib<T>* operator->() const { return &*m_attrib; }

private:
    util::SharedPtr<TAttrib<T>> m_attrib;
};
} // namespace script
