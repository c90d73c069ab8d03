#pragma once
// The run-time values of the language: numbers, booleans, strings, lists, functions, class objects and
// the "bad" objects that stand for nothing.

#include "script/ScriptFwd.h"
#include "util/String.h"

#include <functional>

namespace script
{

class Object : public util::Pointee
{
public:
    Object();
    ~Object() override;

    // The code that rebuilds the value; null for what can't be saved.
    virtual ExpressionPtr ToExpression() const;
    // Text for display.
    virtual util::String ToText() const = 0;
    virtual void SetOwner(util::WeakPtr<ClassObject> owner);

    ClassObject* GetOwner() const;

protected:
    util::WeakPtr<ClassObject> m_owner;
};

template <class T> class Value : public Object
{
public:
    explicit Value(const T& value) : m_value(value) {}

    const T& Get() const { return m_value; }
    ExpressionPtr ToExpression() const override;
    util::String ToText() const override;

private:
    T m_value;
};

typedef Value<bool> BoolValue;
typedef Value<int> IntValue;
typedef Value<float> FloatValue;
typedef Value<util::String> StringValue;

class BadObject : public Object
{
};

class Void : public BadObject
{
public:
    util::String ToText() const override { return "void"; }
};

class Unbound : public BadObject
{
public:
    util::String ToText() const override { return "unbound"; }
};

class ErrorObject : public BadObject
{
public:
    util::String ToText() const override { return "error"; }
};

class AbstractFunction : public Object
{
public:
    virtual ObjectPtr Call(const ObjectList& args) = 0;
    virtual unsigned GetArgCount() const = 0;
};

class Function : public AbstractFunction
{
public:
    Function(const std::vector<util::String>& argNames, ExpressionPtr body, ClosurePtr captured);
    ~Function() override;

    ObjectPtr Call(const ObjectList& args) override;
    unsigned GetArgCount() const override { return static_cast<unsigned>(m_argNames.size()); }
    ExpressionPtr ToExpression() const override;
    util::String ToText() const override;

    // The closure of the latest call: what the body has set can be read after the call.
    ClosurePtr GetLastCallClosure() const;
    ClosurePtr GetCapturedClosure() const;

private:
    std::vector<util::String> m_argNames;
    ExpressionPtr m_body;
    ClosurePtr m_captured;
    ClosurePtr m_lastCall;
};

// A list is also a function of one argument, its index.
class List : public AbstractFunction
{
public:
    List();
    explicit List(const ObjectList& elements);

    ObjectPtr Call(const ObjectList& args) override;
    unsigned GetArgCount() const override { return 1; }
    ExpressionPtr ToExpression() const override;
    util::String ToText() const override;

    // A null element is ignored.
    void Add(ObjectPtr element);
    const ObjectList& GetElements() const { return m_elements; }
    size_t Size() const { return m_elements.size(); }
    ObjectPtr operator[](size_t i) const { return m_elements[i]; }
    // 1 for a list of plain values, one more for each level of lists inside.
    unsigned GetDepth() const { return m_depth; }

private:
    ObjectList m_elements;
    unsigned m_depth;
};

class AbstractIntrinsic : public AbstractFunction
{
public:
    util::String ToText() const override { return "intrinsic function"; }
};

class IntrinsicCmd : public AbstractIntrinsic
{
public:
    typedef std::function<ObjectPtr()> Fn;
    explicit IntrinsicCmd(const Fn& fn) : m_fn(fn) {}
    ObjectPtr Call(const ObjectList& args) override;
    unsigned GetArgCount() const override { return 0; }

private:
    Fn m_fn;
};

class IntrinsicCmd1 : public AbstractIntrinsic
{
public:
    typedef std::function<ObjectPtr(ObjectPtr)> Fn;
    explicit IntrinsicCmd1(const Fn& fn) : m_fn(fn) {}
    ObjectPtr Call(const ObjectList& args) override;
    unsigned GetArgCount() const override { return 1; }

private:
    Fn m_fn;
};

class IntrinsicCmd2 : public AbstractIntrinsic
{
public:
    typedef std::function<ObjectPtr(ObjectPtr, ObjectPtr)> Fn;
    explicit IntrinsicCmd2(const Fn& fn) : m_fn(fn) {}
    ObjectPtr Call(const ObjectList& args) override;
    unsigned GetArgCount() const override { return 2; }

private:
    Fn m_fn;
};

// A function with no parameters stands for its result wherever it is read.
bool IsExpandable(const ObjectPtr& object);
ObjectPtr ExpandObject(const ObjectPtr& object);

// A void command: runs `fn` and gives a new Void.
IntrinsicCmd::Fn VoidWrapper(const std::function<void()>& fn);
IntrinsicCmd1::Fn VoidWrapper1(const std::function<void(ObjectPtr)>& fn);
IntrinsicCmd2::Fn VoidWrapper2(const std::function<void(ObjectPtr, ObjectPtr)>& fn);

} // namespace script
