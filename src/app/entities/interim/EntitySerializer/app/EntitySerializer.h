#pragma once

// INTERIM STAND-IN for app::EntitySerializer, which the scene files build: one entity's record of keys and
// script values, without the conversion to script text. The build uses this folder only while
// src/app/EntitySerializer.h does not exist; delete it when it does.

#include "logging/Exception.h"
#include "script/ClassObject.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"
#include "util/HashMap.h"

namespace app
{
class EntitySerializer
{
public:
    EntitySerializer() : m_values(3) {}

    bool Has(const util::String& key) const { return m_values.Contains(key); }
    template <class T> T Get(const util::String& key) const
    {
        const script::ObjectPtr* object = m_values.TryGet(key);
        if (!object)
            QLEX_THROW(BadDataException("Failed to find attribute \"" + key + "\""));
        return script::ObjectToValue<T>(*object);
    }
    template <class T> void Set(const util::String& key, const T& value)
    {
        m_values[key] = script::ValueToObject(value);
    }
    void SerializeAttributes(const script::ClassObject& source)
    {
        for (const script::VariablePtr& variable : source.GetVariables())
            m_values[variable->GetName()] = variable->GetObject();
    }
    void DeserializeAttributes(script::ClassObject& target) const
    {
        for (const script::VariablePtr& variable : target.GetVariables())
            if (const script::ObjectPtr* object = m_values.TryGet(variable->GetName()))
                variable->SetObject(*object);
    }

private:
    util::HashMap<util::String, script::ObjectPtr> m_values;
};
} // namespace app
