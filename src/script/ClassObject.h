#pragma once
// A dictionary of variables with an owner: the unit of the script namespace. Variables are kept in a
// sorted map so that they are always walked, and saved, in the byte order of their names.

#include "script/Objects.h"

#include <map>

namespace script
{

class ClassObject : public Object
{
public:
    ClassObject();
    ~ClassObject() override;

    bool HasVariable(const util::String& name) const;
    // Own variables only; null if absent.
    VariablePtr GetVariable(const util::String& name) const;
    ObjectPtr GetObject(const util::String& name) const;
    std::vector<VariablePtr> GetVariables() const;

    void AddVariable(VariablePtr var);
    void AddVariable2(const util::String& name, ObjectPtr object);
    void RemoveVariable(const util::String& name);

    // Own variables first, then the owner's and so on up; throws "<name> not found in scope".
    VariablePtr LookupVariable(const util::String& name) const;
    // The same search; null when nothing is found.
    ObjectPtr LookupObject(const util::String& name) const;
    VariablePtr FindVariable(const util::String& name) const;

    // The first variable, in name order, that holds `object`.
    VariablePtr GetVariableByObject(const Object* object) const;
    // The variable that gives `object` its name: a constant one (a reflected child's) before any other,
    // so that a user's alias such as `A = Sim` never renames what is saved of Sim.
    VariablePtr GetNamingVariable(const Object* object) const;

    // The name of this object as an expression; null for an object without owner (the root).
    util::SharedPtr<Identifier> AsIdentifier() const;
    ExpressionPtr ToExpression() const override;
    util::String ToText() const override { return "ClassObject"; }

    // Whether `other` is this object or one of its owners.
    bool IsSelfOrOwner(const ClassObject* other) const;

private:
    std::map<util::String, VariablePtr> m_variables;
};

} // namespace script
