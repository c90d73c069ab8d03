#pragma once

#include "script/ScriptFwd.h"
#include "util/String.h"

namespace script
{

class Variable : public util::Pointee
{
public:
    // The owner is taken from the object's owner.
    Variable(const util::String& name, ObjectPtr object, bool constant);
    ~Variable() override;

    virtual void SetObject(ObjectPtr object);

    const util::String& GetName() const { return m_name; }
    const util::String& GetLongName() const { return m_name; }
    ObjectPtr GetObject() const { return m_object; }
    ClassObject* GetOwner() const;
    bool IsConstant() const { return m_constant; }

    // Stores the owner and passes it on to the object.
    void SetOwner(util::WeakPtr<ClassObject> owner);

    // An assignment of the dotted name to the value's code, the flat block of a class object's
    // variables, or null for what has no code or isn't saved.
    ExpressionPtr ToExpression() const;
    // A variable that isn't saved has no code: configuration text leaves it out.
    void SetSaved(bool saved) { m_saved = saved; }

protected:
    // Replaces the object; a class object that belonged to the old one's place is let go, and the new
    // one joins this variable's owner.
    void ReplaceObject(ObjectPtr object);

private:
    void LetGo(ClassObject* formerOwner, const ObjectPtr& object);
    void HandOwnerTo(const ObjectPtr& object);

    util::WeakPtr<ClassObject> m_owner;
    util::String m_name;
    ObjectPtr m_object;
    bool m_constant;
    bool m_saved = true;
};

} // namespace script
