#pragma once
// Typed settings of program objects, visible to scripts as variables. Assigning a function of no
// arguments binds an attribute: its value is then recalculated once per frame (Parser::Update).

#include "script/ValueConversions.h"
#include "script/Variable.h"
#include "util/Callback.h"
#include "util/ClassTracker.h"

namespace script
{

// Attributes whose value lives outside the script world are polled once per frame.
class PokeMeOncePerFrame : public util::ClassTracker<PokeMeOncePerFrame>
{
public:
    virtual ~PokeMeOncePerFrame();
    virtual void Poke() = 0;

    static void PokeAll();
};

class AbstractAttrib : public Variable
{
public:
    AbstractAttrib(const util::String& name, ObjectPtr initial);
    ~AbstractAttrib() override;

    // The script's way of setting: converts at once, and binds when given a function of no arguments.
    void SetObject(ObjectPtr object) override;
    virtual bool IsDefaultValue() const = 0;
    virtual void CalcValueFromObject() = 0;

    bool IsBound() const;

    // Recalculates every bound attribute; dead ones leave the set.
    static void CalcAll();
    static size_t GetDynamicAttributeCount();

protected:
    static void AddDynamicAttribute(AbstractAttrib* attrib);
    static void RemoveDynamicAttribute(AbstractAttrib* attrib);
};

template <class T> class TAttrib : public AbstractAttrib
{
public:
    TAttrib(const util::String& name, const T& defaultValue);

    bool IsDefaultValue() const override;
    void CalcValueFromObject() override;

    virtual T GetImpl() const = 0;
    virtual void SetImpl(const T& value) = 0;

    T Get() const { return GetImpl(); }
    std::function<T()> GetterFunction();
    // The program's way of setting; also unbinds a bound expression.
    void Set(const T& value);
    void SetToDefault() { Set(m_default); }
    const T& GetDefault() const { return m_default; }
    // What the owner now counts as the value at rest (a spring drawn to a length rests at that length).
    void SetDefault(const T& value) { m_default = value; }
    // For owners that must react at once to a new value.
    void AddChangeCallback(util::CallbackPtr callback);
    // Scripts may then give only finite numbers. NaN is refused by every attribute: it means nothing as a
    // setting, and its text would not read back.
    void RequireFinite() { m_finiteOnly = true; }

protected:
    util::CallbackSet m_changeCallbacks;
    T m_default;

private:
    bool m_finiteOnly = false;
    // While the program sets a value: its own values aren't checked.
    bool m_settingFromProgram = false;
};

template <class T> class Attrib : public TAttrib<T>
{
public:
    Attrib(const util::String& name, const T& defaultValue);
    T GetImpl() const override { return m_value; }
    // Runs the change callbacks only when the value differs.
    void SetImpl(const T& value) override;

private:
    T m_value;
};

template <class T> class AttribGetSet : public TAttrib<T>, public PokeMeOncePerFrame
{
public:
    typedef std::function<T()> Getter;
    typedef std::function<void(const T&)> Setter;

    AttribGetSet(const util::String& name, const Getter& getter, const Setter& setter);
    T GetImpl() const override { return m_getter(); }
    void SetImpl(const T& value) override;
    void Poke() override;

private:
    T m_lastSeen;
    Getter m_getter;
    Setter m_setter;
};

template <class T> class AttribRemotePoker : public TAttrib<T>, public PokeMeOncePerFrame
{
public:
    AttribRemotePoker(const util::String& name, T* target);
    T GetImpl() const override { return *m_target; }
    void SetImpl(const T& value) override;
    void Poke() override;

private:
    T* m_target;
    T m_lastSeen;
};

#define QLEX_ATTRIB_TYPES(X)                                                                                 \
    X(bool)                                                                                                  \
    X(int)                                                                                                   \
    X(unsigned long)                                                                                         \
    X(float)                                                                                                 \
    X(util::String)                                                                                          \
    X(math::Vec2)                                                                                            \
    X(math::Vec3)                                                                                            \
    X(math::Vec4)                                                                                            \
    X(math::TVector2<int>)

#define QLEX_DECLARE_ATTRIB(T)                                                                               \
    extern template class TAttrib<T>;                                                                        \
    extern template class Attrib<T>;                                                                         \
    extern template class AttribGetSet<T>;                                                                   \
    extern template class AttribRemotePoker<T>;
QLEX_ATTRIB_TYPES(QLEX_DECLARE_ATTRIB)
#undef QLEX_DECLARE_ATTRIB

} // namespace script
