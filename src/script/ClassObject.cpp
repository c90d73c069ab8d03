#include "script/ClassObject.h"

#include "logging/Log.h"

#include "script/Expressions.h"
#include "script/ScriptException.h"
#include "script/Variable.h"

namespace script
{

ClassObject::ClassObject() = default;

ClassObject::~ClassObject() = default;

bool ClassObject::HasVariable(const util::String& name) const
{
    return m_variables.count(name) != 0;
}

VariablePtr ClassObject::GetVariable(const util::String& name) const
{
    auto it = m_variables.find(name);
    return it == m_variables.end() ? VariablePtr() : it->second;
}

ObjectPtr ClassObject::GetObject(const util::String& name) const
{
    VariablePtr var = GetVariable(name);
    return var ? var->GetObject() : ObjectPtr();
}

std::vector<VariablePtr> ClassObject::GetVariables() const
{
    std::vector<VariablePtr> result;
    result.reserve(m_variables.size());
    for (const auto& entry : m_variables)
        result.push_back(entry.second);
    return result;
}

void ClassObject::AddVariable(VariablePtr var)
{
    QLEX_ASSERT(!HasVariable(var->GetName()));
    m_variables[var->GetName()] = var;
    var->SetOwner(util::WeakPtr<ClassObject>(this));
}

void ClassObject::AddVariable2(const util::String& name, ObjectPtr object)
{
    AddVariable(QLEX_NEW new Variable(name, object, false));
}

void ClassObject::RemoveVariable(const util::String& name)
{
    auto it = m_variables.find(name);
    if (it == m_variables.end())
        return;
    VariablePtr var = it->second;
    if (var->GetOwner() == this)
        var->SetOwner(nullptr);
    m_variables.erase(name);
}

VariablePtr ClassObject::FindVariable(const util::String& name) const
{
    if (VariablePtr var = GetVariable(name))
        return var;
    // The owner is held by a lock during the search, so that the chain can't die under it. Owner chains
    // are acyclic (Variable refuses to make a cycle), so the climb ends.
    util::LockPtr<ClassObject> owner(m_owner);
    if (!owner)
        return nullptr;
    return owner->FindVariable(name);
}

VariablePtr ClassObject::LookupVariable(const util::String& name) const
{
    VariablePtr var = FindVariable(name);
    if (!var)
        QLEX_THROW(ScriptException(name + " not found in scope"));
    return var;
}

ObjectPtr ClassObject::LookupObject(const util::String& name) const
{
    VariablePtr var = FindVariable(name);
    return var ? var->GetObject() : ObjectPtr();
}

VariablePtr ClassObject::GetVariableByObject(const Object* object) const
{
    for (const auto& entry : m_variables)
    {
        if (entry.second->GetObject().get() == object)
            return entry.second;
    }
    return nullptr;
}

VariablePtr ClassObject::GetNamingVariable(const Object* object) const
{
    VariablePtr first;
    for (const auto& entry : m_variables)
    {
        if (entry.second->GetObject().get() != object)
            continue;
        if (entry.second->IsConstant())
            return entry.second;
        if (!first)
            first = entry.second;
    }
    return first;
}

util::SharedPtr<Identifier> ClassObject::AsIdentifier() const
{
    ClassObject* owner = GetOwner();
    if (!owner)
        return nullptr;
    VariablePtr var = owner->GetNamingVariable(this);
    if (!var)
        return nullptr;
    return QLEX_NEW new Identifier(owner->AsIdentifier(), var->GetName());
}

ExpressionPtr ClassObject::ToExpression() const
{
    CodeBlockPtr block = QLEX_NEW new CodeBlock();
    for (const auto& entry : m_variables)
    {
        // A value that can't be written (one too large to print, say) is left out; the rest is saved.
        try
        {
            if (ExpressionPtr expression = entry.second->ToExpression())
                block->Add(expression);
        }
        catch (BadDataException& e)
        {
            CatchException(e, QLEX_SITE);
            Log(logging::Error, "Not saved: " + entry.first + ", " + e.what());
        }
    }
    return block;
}

bool ClassObject::IsSelfOrOwner(const ClassObject* other) const
{
    for (const ClassObject* scope = this; scope; scope = scope->GetOwner())
    {
        if (scope == other)
            return true;
    }
    return false;
}

} // namespace script
