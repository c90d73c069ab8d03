#pragma once

// INTERIM STAND-IN for the script namespace's reflected objects, built on their own branch. Only the names
// the application root, camera and background use are here. The build picks this folder up only while
// src/script/Reflected.h does not exist; delete it when it does.

#include "util/SharedPtr.h"
#include "util/String.h"

#include <functional>
#include <map>

namespace script
{
class Reflected : public util::Pointee
{
public:
    virtual ~Reflected() = default;
    void SetReflectedName(const util::String& name) { m_name = name; }
    const util::String& GetReflectedName() const { return m_name; }
    void AddReflectedChild(Reflected*) {}
    void AddToRoot() {}
    template <class C> void AddMemberCmd(const util::String& name, void (C::*fn)())
    {
        C* self = static_cast<C*>(this);
        m_commands[name] = [self, fn] { (self->*fn)(); };
    }
    // Runs a command added above; false if there is none of that name.
    bool RunCommand(const util::String& name)
    {
        auto it = m_commands.find(name);
        if (it == m_commands.end())
            return false;
        it->second();
        return true;
    }

private:
    util::String m_name;
    std::map<util::String, std::function<void()>> m_commands;
};
} // namespace script
