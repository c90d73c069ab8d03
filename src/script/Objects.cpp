#include "script/Objects.h"

#include "script/EvalGuard.h"
#include "script/Expressions.h"
#include "script/Reflected.h"
#include "script/ScriptException.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

namespace script
{

Object::Object() = default;
Object::~Object() = default;

ExpressionPtr Object::ToExpression() const
{
    return nullptr;
}

void Object::SetOwner(util::WeakPtr<ClassObject> owner)
{
    m_owner = owner;
}

ClassObject* Object::GetOwner() const
{
    return m_owner.get();
}

template <class T> ExpressionPtr Value<T>::ToExpression() const
{
    return QLEX_NEW new Literal<T>(m_value);
}

template <class T> util::String Value<T>::ToText() const
{
    return util::ToString(m_value);
}

template class Value<bool>;
template class Value<int>;
template class Value<float>;
template class Value<util::String>;

// ---------------------------------------------------------------------------------------------------

Function::Function(const std::vector<util::String>& argNames, ExpressionPtr body, ClosurePtr captured)
    : m_argNames(argNames), m_body(body), m_captured(captured)
{
}

Function::~Function() = default;

ClosurePtr Function::GetLastCallClosure() const
{
    return m_lastCall;
}

ClosurePtr Function::GetCapturedClosure() const
{
    return m_captured;
}

ObjectPtr Function::Call(const ObjectList& args)
{
    util::ScopeProfiler profile("Function::Call");
    if (args.size() != m_argNames.size())
        QLEX_THROW(ScriptException("Wrong number of arguments to function"));
    EvalGuard::CallDepth depth;
    EvalGuard::Tick();

    ClosurePtr closure = QLEX_NEW new Closure("[function closure: " + ToText() + "]", m_captured);
    m_lastCall = closure;
    for (size_t i = 0; i < m_argNames.size(); ++i)
    {
        // A name given twice takes the later argument.
        if (VariablePtr existing = closure->GetVariable(m_argNames[i]))
            existing->SetObject(args[i]);
        else
            closure->AddVariable(QLEX_NEW new Variable(m_argNames[i], args[i], false));
    }
    return m_body->Evaluate(closure);
}

ExpressionPtr Function::ToExpression() const
{
    return QLEX_NEW new FunctionDeclaration(m_argNames, m_body);
}

util::String Function::ToText() const
{
    return ToExpression()->ToCode();
}

// ---------------------------------------------------------------------------------------------------

List::List() : m_depth(1) {}

List::List(const ObjectList& elements) : m_depth(1)
{
    for (const ObjectPtr& element : elements)
        Add(element);
}

void List::Add(ObjectPtr element)
{
    if (!element)
        return;
    if (List* inner = dynamic_cast<List*>(element.get()))
    {
        // Lists inside lists are walked by recursion when printed, compared and freed: keep that finite.
        if (inner->m_depth + 1 > m_depth)
        {
            if (inner->m_depth + 1 > EvalGuard::MAX_LIST_DEPTH)
                QLEX_THROW(ScriptException("Lists nested too deeply"));
            m_depth = inner->m_depth + 1;
        }
    }
    m_elements.push_back(element);
}

ObjectPtr List::Call(const ObjectList& args)
{
    util::ScopeProfiler profile("List::Call");
    QLEX_DATA_ASSERT(args.size() == 1);
    int index = ObjectToValue<int>(args[0]);
    if (index < 0 || static_cast<size_t>(index) >= m_elements.size())
        QLEX_THROW(ScriptException("List index out of bounds"));
    return m_elements[index];
}

ExpressionPtr List::ToExpression() const
{
    util::SharedPtr<ListDeclaration> declaration = QLEX_NEW new ListDeclaration();
    for (const ObjectPtr& element : m_elements)
    {
        EvalGuard::Tick();
        declaration->Add(element->ToExpression());
    }
    return declaration;
}

util::String List::ToText() const
{
    util::String text = "[";
    for (size_t i = 0; i < m_elements.size(); ++i)
    {
        if (i != 0)
            text += ", ";
        util::String element = m_elements[i]->ToText();
        // Copying text is work too: nested lists copy their elements' text once per level.
        EvalGuard::Tick(1 + element.size() / EvalGuard::BYTES_PER_STEP);
        text += element;
        if (text.size() > EvalGuard::MAX_STRING_LENGTH)
            QLEX_THROW(ScriptException("Text of list too long"));
    }
    return text + "]";
}

// ---------------------------------------------------------------------------------------------------

ObjectPtr IntrinsicCmd::Call(const ObjectList& args)
{
    QLEX_DATA_ASSERT(args.size() == 0);
    return m_fn();
}

ObjectPtr IntrinsicCmd1::Call(const ObjectList& args)
{
    QLEX_DATA_ASSERT(args.size() == 1);
    return m_fn(args[0]);
}

ObjectPtr IntrinsicCmd2::Call(const ObjectList& args)
{
    QLEX_DATA_ASSERT(args.size() == 2);
    return m_fn(args[0], args[1]);
}

bool IsExpandable(const ObjectPtr& object)
{
    AbstractFunction* function = dynamic_cast<AbstractFunction*>(object.get());
    return function && function->GetArgCount() == 0;
}

ObjectPtr ExpandObject(const ObjectPtr& object)
{
    if (!IsExpandable(object))
        return object;
    // Keep the function alive through its own call: the call may rebind the variable that held it.
    util::SharedPtr<AbstractFunction> function = util::dynamic_pointer_cast<AbstractFunction>(object);
    return function->Call(ObjectList());
}

IntrinsicCmd::Fn VoidWrapper(const std::function<void()>& fn)
{
    return [fn]() -> ObjectPtr
    {
        fn();
        return QLEX_NEW new Void();
    };
}

IntrinsicCmd1::Fn VoidWrapper1(const std::function<void(ObjectPtr)>& fn)
{
    return [fn](ObjectPtr a) -> ObjectPtr
    {
        fn(a);
        return QLEX_NEW new Void();
    };
}

IntrinsicCmd2::Fn VoidWrapper2(const std::function<void(ObjectPtr, ObjectPtr)>& fn)
{
    return [fn](ObjectPtr a, ObjectPtr b) -> ObjectPtr
    {
        fn(a, b);
        return QLEX_NEW new Void();
    };
}

} // namespace script
