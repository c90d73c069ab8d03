#include "script/Variable.h"

#include "script/ClassObject.h"
#include "script/Expressions.h"

namespace script
{

Variable::Variable(const util::String& name, ObjectPtr object, bool constant)
    : m_name(name), m_object(object), m_constant(constant)
{
    if (object)
        m_owner = object->GetOwner();
}

Variable::~Variable() = default;

ClassObject* Variable::GetOwner() const
{
    return m_owner.get();
}

void Variable::SetObject(ObjectPtr object)
{
    ReplaceObject(object);
}

void Variable::ReplaceObject(ObjectPtr object)
{
    ObjectPtr old = m_object;
    m_object = object;
    LetGo(GetOwner(), old);
    HandOwnerTo(m_object);
}

void Variable::SetOwner(util::WeakPtr<ClassObject> owner)
{
    ClassObject* former = GetOwner();
    m_owner = owner;
    LetGo(former, m_object);
    HandOwnerTo(m_object);
}

void Variable::LetGo(ClassObject* formerOwner, const ObjectPtr& object)
{
    ClassObject* child = dynamic_cast<ClassObject*>(object.get());
    if (!child || !formerOwner || child->GetOwner() != formerOwner)
        return;
    // A class object that another variable of the same owner still holds keeps its place.
    for (const VariablePtr& var : formerOwner->GetVariables())
    {
        if (var.get() != this && var->GetObject() == object)
            return;
    }
    child->SetOwner(nullptr);
}

void Variable::HandOwnerTo(const ObjectPtr& object)
{
    if (!object)
        return;
    ClassObject* child = dynamic_cast<ClassObject*>(object.get());
    if (!child)
    {
        object->SetOwner(m_owner);
        return;
    }
    // A class object follows the variable that holds it only while it has no place of its own, and never
    // into a cycle of owners, which would make every lookup and every save endless.
    ClassObject* owner = GetOwner();
    if (!owner || child->GetOwner() || owner->IsSelfOrOwner(child))
        return;
    child->SetOwner(m_owner);
}

ExpressionPtr Variable::ToExpression() const
{
    if (!m_object || !m_saved)
        return nullptr;
    ClassObject* owner = GetOwner();
    if (ClassObject* child = dynamic_cast<ClassObject*>(m_object.get()))
    {
        // Children print flat, once, under the variable that gives them their name.
        if (!owner || child->GetOwner() != owner || owner->GetNamingVariable(child).get() != this)
            return nullptr;
        return child->ToExpression();
    }
    ExpressionPtr value = m_object->ToExpression();
    if (!value)
        return nullptr;
    ExpressionPtr ownerExpression = owner ? ExpressionPtr(owner->AsIdentifier()) : ExpressionPtr();
    return QLEX_NEW new Assignment(QLEX_NEW new Identifier(ownerExpression, m_name), value);
}

} // namespace script
