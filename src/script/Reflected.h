#pragma once
// Program objects that scripts see by name, and the scopes of the language.
//
// A class joins the script namespace by deriving from script::Reflected, naming itself in its
// constructor and adding attributes (script::AttribWrapper members) and commands:
//
//     class Simulation : public script::Reflected, public util::Singleton<Simulation>
//     {
//         Simulation() : m_running(this, "running", true) { SetReflectedName("Sim");
//                                                           AddMemberCmd("clear", &Simulation::Clear); }
//         script::AttribWrapper<bool> m_running;
//     };
//     Simulation::GetInstancePtr()->AddToRoot();    // now "Sim.running = false" works
//
// A reflected object must be owned through util::SharedPtr (made with QLEX_NEW, or a singleton) before
// it joins the tree, since the tree holds it by strong reference.

#include "script/ClassObject.h"
#include "script/ScriptException.h"
#include "script/ValueConversions.h"
#include "util/ClassTracker.h"

#include <set>

namespace script
{

class Reflected : public ClassObject, public util::ClassTracker<Reflected>
{
public:
    static const char* const RootName;

    explicit Reflected(const util::String& name = "unnamed");
    ~Reflected() override;

    // Names are set before an object joins the tree.
    void SetReflectedName(const util::String& name);
    const util::String& GetReflectedName() const { return m_reflectedName; }
    util::String ToText() const override { return m_reflectedName; }

    // Adds `child` as a constant variable; a taken name becomes name_2, name_3 and so on.
    void AddReflectedChild(util::SharedPtr<Reflected> child);
    void RemoveReflectedChild(util::SharedPtr<Reflected> child);
    // Joins the root closure of the script parser.
    void AddToRoot();

    void AddCmd(const util::String& name, const std::function<ObjectPtr()>& fn);
    void AddCmd1(const util::String& name, const std::function<ObjectPtr(ObjectPtr)>& fn);
    void AddCmd2(const util::String& name, const std::function<ObjectPtr(ObjectPtr, ObjectPtr)>& fn);
    void AddVoidCmd(const util::String& name, const std::function<void()>& fn);
    void AddVoidCmd1(const util::String& name, const std::function<void(ObjectPtr)>& fn);
    void AddVoidCmd2(const util::String& name, const std::function<void(ObjectPtr, ObjectPtr)>& fn);

    // A plain getter; its result goes through ValueToObject.
    template <class T> void AddCmd(const util::String& name, T (*getter)())
    {
        AddCmd(name, std::function<ObjectPtr()>([getter]() { return ValueToObject(getter()); }));
    }

    // Member functions of a reflected class C; a command whose object has died fails with an error.
    template <class C> void AddMemberCmd(const util::String& name, void (C::*fn)())
    {
        C* self = CheckedSelf<C>();
        util::WeakPtr<Reflected> guard(this);
        AddVoidCmd(name,
                   [self, guard, fn]()
                   {
                       CheckAlive(guard);
                       (self->*fn)();
                   });
    }
    template <class C, class T> void AddMemberCmd(const util::String& name, T (C::*fn)())
    {
        C* self = CheckedSelf<C>();
        util::WeakPtr<Reflected> guard(this);
        AddCmd(name, std::function<ObjectPtr()>(
                         [self, guard, fn]()
                         {
                             CheckAlive(guard);
                             return ValueToObject((self->*fn)());
                         }));
    }
    template <class C, class T> void AddMemberCmd(const util::String& name, T (C::*fn)() const)
    {
        C* self = CheckedSelf<C>();
        util::WeakPtr<Reflected> guard(this);
        AddCmd(name, std::function<ObjectPtr()>(
                         [self, guard, fn]()
                         {
                             CheckAlive(guard);
                             return ValueToObject((self->*fn)());
                         }));
    }

    // Publishes a value for scripts to read (statistics and the like): sets or makes the variable.
    template <class T> void Report(const util::String& name, const T& value)
    {
        ReportObject(name, ValueToObject(value));
    }
    void ReportObject(const util::String& name, ObjectPtr object);

private:
    template <class C> C* CheckedSelf()
    {
        C* self = dynamic_cast<C*>(this);
        QLEX_ASSERT(self);
        return self;
    }
    static void CheckAlive(const util::WeakPtr<Reflected>& guard);
    void AddConstant(const util::String& name, ObjectPtr object);

    util::String m_reflectedName;
};

// A class object with infix declarations: the parse-time namespace.
class Scope : public Reflected
{
public:
    Scope();
    explicit Scope(const util::String& name);
    Scope(const util::String& name, util::WeakPtr<Scope> parent);

    void AddInfix(InfixPtr infix);
    void RemoveInfix(const InfixPtr& infix);
    // Among the infix functions whose keywords all stand in `words`, in this scope and its owners, the
    // one of lowest precedence; an inner scope wins a tie. Several of equal rank in one scope throw
    // "Multiple mathcing infix functions found". Null when none matches.
    InfixPtr GetInfix(const std::set<util::String>& words) const;
    const std::vector<InfixPtr>& GetInfixes() const { return m_infixes; }

private:
    std::vector<InfixPtr> m_infixes;
};

// The run-time scope.
class Closure : public Scope
{
public:
    Closure();
    explicit Closure(const util::String& name);
    Closure(const util::String& name, util::WeakPtr<Closure> parent);
};

extern const char* const RootScopeName;

} // namespace script
