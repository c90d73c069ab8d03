#pragma once
// One entity's keys and values: the neutral form between a live object of the scene and its script
// text. Values are script objects, so that an attribute bound to an expression keeps its function. The
// record turns into a call such as `Scene.addBox {...}`, and the closure of such a call's inline
// function turns back into a record.

#include "script/AttribWrapper.h"
#include "script/ScriptFwd.h"
#include "util/HashMap.h"
#include "util/String.h"

namespace script
{
class FunctionDeclaration;
class FunctionCall;
} // namespace script

namespace app
{

class EntitySerializer
{
public:
    typedef util::HashMap<util::String, script::ObjectPtr> Map;

    EntitySerializer();
    // Every variable that the closure holds becomes a key.
    explicit EntitySerializer(const util::SharedPtr<script::Closure>& closure);

    bool Has(const util::String& key) const;
    // A missing key throws BadDataException "Failed to find attribute "key""; a value of the wrong
    // type throws as the script conversions do.
    template <class T> T Get(const util::String& key) const;
    template <class T> void Get(const util::String& key, T& out) const { out = Get<T>(key); }
    script::ObjectPtr GetObject(const util::String& key) const;

    template <class T> void Set(const util::String& key, const T& value);
    void SetObject(const util::String& key, const script::ObjectPtr& object);
    void Remove(const util::String& key);

    // Every variable of `source`, in name order, as its object stands: a bound attribute enters as its
    // function.
    void SerializeAttributes(const script::ClassObject& source);
    // Each variable of `target` that the record names takes the record's object; other keys are ignored.
    void DeserializeAttributes(script::ClassObject& target) const;

    util::SharedPtr<script::FunctionDeclaration> ToFunctionDeclaration() const;
    // `name {key = value; ...}`, with `name` a dotted name such as "Scene.addBox".
    util::SharedPtr<script::FunctionCall> ToFunctionCall(const util::String& name) const;

    const Map& GetMap() const { return m_map; }
    size_t Size() const { return m_map.size(); }

private:
    Map m_map;
};

// A setting enters as its object: a bound attribute keeps its function.
template <>
void EntitySerializer::Set<script::AttribWrapper<float>>(const util::String& key,
                                                         const script::AttribWrapper<float>& value);

} // namespace app
