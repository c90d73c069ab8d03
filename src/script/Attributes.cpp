#include "script/Attributes.h"

#include "util/Profiler.h"
#include "util/ReentrantOrderedSet.h"

namespace script
{

namespace
{
template <class T> bool HasNaN(const T&)
{
    return false;
}
bool HasNaN(float x)
{
    return math::IsNaN(x);
}
template <class T> bool HasNaN(const math::TVector2<T>& v)
{
    return HasNaN(v.x) || HasNaN(v.y);
}
template <class T> bool HasNaN(const math::TVector3<T>& v)
{
    return HasNaN(v.x) || HasNaN(v.y) || HasNaN(v.z);
}
template <class T> bool HasNaN(const math::TVector4<T>& v)
{
    return HasNaN(v.x) || HasNaN(v.y) || HasNaN(v.z) || HasNaN(v.w);
}

template <class T> bool IsFiniteValue(const T&)
{
    return true;
}
bool IsFiniteValue(float x)
{
    return math::IsFiniteFloat(x);
}
bool IsFiniteValue(const math::Vec2& v)
{
    return math::IsFinite(v);
}
bool IsFiniteValue(const math::Vec3& v)
{
    return math::IsFinite(v);
}
bool IsFiniteValue(const math::Vec4& v)
{
    return math::IsFinite(v);
}

typedef util::ReentrantOrderedSet<util::WeakPtr<AbstractAttrib>> DynAttribSet;

// The attributes bound to a function, recalculated each frame.
DynAttribSet& DynAttribs()
{
    static DynAttribSet s_dynAttribs;
    return s_dynAttribs;
}
} // namespace

PokeMeOncePerFrame::~PokeMeOncePerFrame() = default;

void PokeMeOncePerFrame::PokeAll()
{
    util::ScopeProfiler profile("PokeMe::PokeAll");
    for (PokeMeOncePerFrame* poker : GetAllClassInstances())
        poker->Poke();
}

// ---------------------------------------------------------------------------------------------------

AbstractAttrib::AbstractAttrib(const util::String& name, ObjectPtr initial) : Variable(name, initial, false)
{
}

AbstractAttrib::~AbstractAttrib() = default;

void AbstractAttrib::SetObject(ObjectPtr object)
{
    static util::StaticProfilerData s_timing("AbstractAttrib::SetObject");
    util::StaticProfilerScope timing(s_timing);
    if (object == GetObject())
        return;
    Variable::SetObject(object);
    CalcValueFromObject();
    // The calculation may have rebound the attribute to its old value; what it holds now decides.
    if (IsExpandable(GetObject()))
        AddDynamicAttribute(this);
    else
        RemoveDynamicAttribute(this);
}

bool AbstractAttrib::IsBound() const
{
    return IsExpandable(GetObject());
}

void AbstractAttrib::AddDynamicAttribute(AbstractAttrib* attrib)
{
    DynAttribs().insert(util::WeakPtr<AbstractAttrib>(attrib));
}

void AbstractAttrib::RemoveDynamicAttribute(AbstractAttrib* attrib)
{
    DynAttribs().erase(util::WeakPtr<AbstractAttrib>(attrib));
}

void AbstractAttrib::CalcAll()
{
    util::ScopeProfiler profile("AbstractAttrib::CalcAll");
    DynAttribSet& attribs = DynAttribs();
    DynAttribSet::ConstLock lock(attribs);
    for (const util::WeakPtr<AbstractAttrib>& entry : lock)
    {
        util::LockPtr<AbstractAttrib> attrib(entry);
        if (attrib)
            attrib->CalcValueFromObject();
        else
            attribs.erase(entry);
    }
}

size_t AbstractAttrib::GetDynamicAttributeCount()
{
    return DynAttribs().size();
}

// ---------------------------------------------------------------------------------------------------

template <class T>
TAttrib<T>::TAttrib(const util::String& name, const T& defaultValue)
    : AbstractAttrib(name, ValueToObject(defaultValue)), m_default(defaultValue)
{
}

template <class T> bool TAttrib<T>::IsDefaultValue() const
{
    return GetImpl() == m_default;
}

template <class T> void TAttrib<T>::CalcValueFromObject()
{
    try
    {
        T value = ObjectToValue<T>(ExpandObject(GetObject()));
        if (!m_settingFromProgram && (HasNaN(value) || (m_finiteOnly && !IsFiniteValue(value))))
        {
            Log(logging::Error,
                GetLongName() +
                    (m_finiteOnly ? " must be a finite number, not " : " must be a number, not ") +
                    ValueToObject(value)->ToText() + "; it keeps " + ValueToObject(GetImpl())->ToText());
            Variable::SetObject(ValueToObject(GetImpl()));
            RemoveDynamicAttribute(this);
            return;
        }
        SetImpl(value);
    }
    catch (BadCoderException&)
    {
        throw;
    }
    catch (std::exception& e)
    {
        // Any script failure, a wrong type included, unbinds: the setting keeps its last good value.
        CatchException(e, QLEX_SITE);
        Log(logging::Error, GetLongName() + " was bound to bad type");
        // Rebinding to the present value needs no new calculation; skipping it also keeps a setter that
        // keeps failing from recursing.
        Variable::SetObject(ValueToObject(GetImpl()));
        RemoveDynamicAttribute(this);
    }
}

template <class T> std::function<T()> TAttrib<T>::GetterFunction()
{
    return [this]() { return Get(); };
}

template <class T> void TAttrib<T>::Set(const T& value)
{
    if (value != GetImpl())
    {
        m_settingFromProgram = true;
        try
        {
            SetImpl(value);
            SetObject(ValueToObject(GetImpl()));
        }
        catch (...)
        {
            m_settingFromProgram = false;
            throw;
        }
        m_settingFromProgram = false;
    }
}

template <class T> void TAttrib<T>::AddChangeCallback(util::CallbackPtr callback)
{
    m_changeCallbacks.Add(callback);
}

// ---------------------------------------------------------------------------------------------------

template <class T>
Attrib<T>::Attrib(const util::String& name, const T& defaultValue)
    : TAttrib<T>(name, defaultValue), m_value(defaultValue)
{
}

template <class T> void Attrib<T>::SetImpl(const T& value)
{
    if (value != m_value)
    {
        m_value = value;
        this->m_changeCallbacks.CallAll();
    }
}

template <class T>
AttribGetSet<T>::AttribGetSet(const util::String& name, const Getter& getter, const Setter& setter)
    : TAttrib<T>(name, getter()), m_lastSeen(getter()), m_getter(getter), m_setter(setter)
{
}

template <class T> void AttribGetSet<T>::SetImpl(const T& value)
{
    m_setter(value);
    // What the script wrote isn't an outside change, so a binding stays; a setter that refuses or
    // adjusts the value shows at the next poke, which makes the variable follow the real value.
    m_lastSeen = value;
}

template <class T> void AttribGetSet<T>::Poke()
{
    T value = GetImpl();
    if (value != m_lastSeen)
    {
        m_lastSeen = value;
        this->SetObject(ValueToObject(value));
    }
}

template <class T>
AttribRemotePoker<T>::AttribRemotePoker(const util::String& name, T* target)
    : TAttrib<T>(name, *target), m_target(target), m_lastSeen(*target)
{
}

template <class T> void AttribRemotePoker<T>::SetImpl(const T& value)
{
    *m_target = value;
    m_lastSeen = value;
}

template <class T> void AttribRemotePoker<T>::Poke()
{
    T value = GetImpl();
    if (value != m_lastSeen)
    {
        m_lastSeen = value;
        this->SetObject(ValueToObject(value));
    }
}

#define QLEX_DEFINE_ATTRIB(T)                                                                                \
    template class TAttrib<T>;                                                                               \
    template class Attrib<T>;                                                                                \
    template class AttribGetSet<T>;                                                                          \
    template class AttribRemotePoker<T>;
QLEX_ATTRIB_TYPES(QLEX_DEFINE_ATTRIB)
#undef QLEX_DEFINE_ATTRIB

} // namespace script
