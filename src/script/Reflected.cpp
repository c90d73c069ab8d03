#include "script/Reflected.h"

#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/Variable.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <limits>

namespace script
{

const char* const Reflected::RootName = "[ROOT]";
const char* const RootScopeName = "ROOT_SCOPE";

Reflected::Reflected(const util::String& name) : m_reflectedName(name) {}

Reflected::~Reflected() = default;

void Reflected::SetReflectedName(const util::String& name)
{
    QLEX_ASSERT(!GetOwner());
    m_reflectedName = name;
}

void Reflected::AddReflectedChild(util::SharedPtr<Reflected> child)
{
    if (ClassObject* formerOwner = child->GetOwner())
    {
        util::LockPtr<ClassObject> lock(formerOwner);
        if (VariablePtr var = formerOwner->GetVariableByObject(child.get()))
            formerOwner->RemoveVariable(var->GetName());
        child->SetOwner(nullptr);
    }
    util::String name = child->m_reflectedName;
    for (unsigned n = 2; HasVariable(name); ++n)
        name = child->m_reflectedName + "_" + util::ToString(n);
    child->m_reflectedName = name;
    AddConstant(name, child);
}

void Reflected::RemoveReflectedChild(util::SharedPtr<Reflected> child)
{
    RemoveVariable(child->m_reflectedName);
}

void Reflected::AddToRoot()
{
    Parser::GetInstancePtr()->GetRootClosure()->AddReflectedChild(util::SharedPtr<Reflected>(this));
}

void Reflected::AddConstant(const util::String& name, ObjectPtr object)
{
    AddVariable(QLEX_NEW new Variable(name, object, true));
}

void Reflected::AddCmd(const util::String& name, const std::function<ObjectPtr()>& fn)
{
    AddConstant(name, QLEX_NEW new IntrinsicCmd(fn));
}

void Reflected::AddCmd1(const util::String& name, const std::function<ObjectPtr(ObjectPtr)>& fn)
{
    AddConstant(name, QLEX_NEW new IntrinsicCmd1(fn));
}

void Reflected::AddCmd2(const util::String& name, const std::function<ObjectPtr(ObjectPtr, ObjectPtr)>& fn)
{
    AddConstant(name, QLEX_NEW new IntrinsicCmd2(fn));
}

void Reflected::AddVoidCmd(const util::String& name, const std::function<void()>& fn)
{
    AddCmd(name, VoidWrapper(fn));
}

void Reflected::AddVoidCmd1(const util::String& name, const std::function<void(ObjectPtr)>& fn)
{
    AddCmd1(name, VoidWrapper1(fn));
}

void Reflected::AddVoidCmd2(const util::String& name, const std::function<void(ObjectPtr, ObjectPtr)>& fn)
{
    AddCmd2(name, VoidWrapper2(fn));
}

void Reflected::ReportObject(const util::String& name, ObjectPtr object)
{
    if (VariablePtr var = GetVariable(name))
        var->SetObject(object);
    else
        AddVariable2(name, object);
}

void Reflected::CheckAlive(const util::WeakPtr<Reflected>& guard)
{
    if (!guard)
        QLEX_THROW(ScriptException("The object of this command is gone"));
}

// ---------------------------------------------------------------------------------------------------

Scope::Scope() : Reflected("[scope]") {}

Scope::Scope(const util::String& name) : Reflected(name) {}

Scope::Scope(const util::String& name, util::WeakPtr<Scope> parent) : Reflected(name)
{
    SetOwner(util::WeakPtr<ClassObject>(parent.get()));
}

void Scope::AddInfix(InfixPtr infix)
{
    m_infixes.push_back(infix);
}

void Scope::RemoveInfix(const InfixPtr& infix)
{
    auto it = std::find(m_infixes.begin(), m_infixes.end(), infix);
    if (it != m_infixes.end())
        m_infixes.erase(it);
}

InfixPtr Scope::GetInfix(const std::set<util::String>& words) const
{
    double best = std::numeric_limits<double>::infinity();
    std::vector<InfixPtr> matches;
    for (const InfixPtr& infix : m_infixes)
    {
        bool allPresent = true;
        for (const util::String& keyword : infix->GetKeywords())
        {
            if (!keyword.empty() && words.count(keyword) == 0)
            {
                allPresent = false;
                break;
            }
        }
        if (!allPresent)
            continue;
        if (infix->GetPrecedence() < best)
        {
            matches.clear();
            best = infix->GetPrecedence();
        }
        if (infix->GetPrecedence() <= best)
            matches.push_back(infix);
    }
    if (ClassObject* owner = GetOwner())
    {
        const Scope* superscope = dynamic_cast<const Scope*>(owner);
        QLEX_ASSERT(superscope);
        util::LockPtr<const Scope> lock(superscope);
        InfixPtr outer = superscope->GetInfix(words);
        if (outer && outer->GetPrecedence() < best)
            return outer;
    }
    if (matches.size() > 1)
        QLEX_THROW(ScriptException("Multiple mathcing infix functions found"));
    return matches.empty() ? InfixPtr() : matches.front();
}

// ---------------------------------------------------------------------------------------------------

Closure::Closure() : Scope("[closure]") {}

Closure::Closure(const util::String& name) : Scope(name) {}

Closure::Closure(const util::String& name, util::WeakPtr<Closure> parent)
    : Scope(name, util::WeakPtr<Scope>(parent.get()))
{
}

} // namespace script
