#pragma once

#include "logging/Exception.h"

#include <stack>

namespace util
{

class AbstractBinder
{
public:
    // As loose as Pointee's: the shader, a Pointee, is a binder too.
    virtual ~AbstractBinder() noexcept(false) {}
    virtual void Bind() const = 0;
    virtual void Unbind() const = 0;
    virtual void BindImpl() const = 0;
    virtual void UnbindImpl() const = 0;
};

// Nested binding of exclusive state (the current shader): binding inside a bound scope restores the outer
// binding on Unbind.
template <class T> class StackedBind : public AbstractBinder
{
public:
    void Bind() const override
    {
        QLEX_ASSERT(s_stack.size() < 100);
        if (!s_stack.empty() && !s_skipUnbinds)
            s_stack.top()->UnbindImpl();
        s_stack.push(this);
        BindImpl();
    }

    void Unbind() const override
    {
        QLEX_ASSERT(!s_stack.empty());
        QLEX_ASSERT(s_stack.top() == this);
        s_stack.pop();
        if (s_stack.empty())
        {
            UnbindImpl();
            return;
        }
        if (!s_skipUnbinds)
            UnbindImpl();
        s_stack.top()->BindImpl();
    }

    inline static std::stack<const StackedBind<T>*> s_stack;
    // Binding over an old binding is enough for some state; this spares the unbinding in between.
    inline static bool s_skipUnbinds = false;
};

} // namespace util
