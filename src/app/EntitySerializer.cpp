#include "app/EntitySerializer.h"

#include "script/Attributes.h"
#include "script/ClassObject.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/Reflected.h"
#include "script/ValueConversions.h"

namespace app
{

namespace
{
const size_t RECORD_CAPACITY = 3;

// An unbound setting enters as its typed value: a float attribute set from the integer 2 then writes 2.0,
// as floats always do. A bound one keeps its function.
template <class T> bool TypedValue(const script::VariablePtr& var, script::ObjectPtr& out)
{
    auto* attrib = dynamic_cast<script::TAttrib<T>*>(var.get());
    if (!attrib)
        return false;
    out = attrib->IsBound() ? attrib->GetObject() : script::ValueToObject(attrib->Get());
    return true;
}

// The numbers of a record are positions, sizes and angles: none of them may be NaN or infinite, which
// would poison the simulation and could not be saved so that it reads back.
template <class T> bool IsFiniteValue(const T&)
{
    return true;
}
bool IsFiniteValue(float x)
{
    return math::IsFiniteFloat(x);
}
template <class V> bool IsFiniteVector(const V& v)
{
    return math::IsFinite(v);
}
bool IsFiniteValue(const math::Vec2& v)
{
    return IsFiniteVector(v);
}
bool IsFiniteValue(const math::Vec3& v)
{
    return IsFiniteVector(v);
}
bool IsFiniteValue(const math::Vec4& v)
{
    return IsFiniteVector(v);
}
bool IsFiniteValue(const std::vector<math::Vec2>& points)
{
    for (const math::Vec2& p : points)
        if (!math::IsFinite(p))
            return false;
    return true;
}

script::ObjectPtr ObjectOf(const script::VariablePtr& var)
{
    script::ObjectPtr object;
#define QLEX_TYPED_VALUE(T)                                                                                  \
    if (TypedValue<T>(var, object))                                                                          \
        return object;
    QLEX_ATTRIB_TYPES(QLEX_TYPED_VALUE)
#undef QLEX_TYPED_VALUE
    return var->GetObject();
}
} // namespace

EntitySerializer::EntitySerializer() : m_map(RECORD_CAPACITY) {}

EntitySerializer::EntitySerializer(const util::SharedPtr<script::Closure>& closure) : m_map(RECORD_CAPACITY)
{
    QLEX_ASSERT(closure);
    SerializeAttributes(*closure);
}

bool EntitySerializer::Has(const util::String& key) const
{
    return m_map.find(key) != m_map.end();
}

script::ObjectPtr EntitySerializer::GetObject(const util::String& key) const
{
    auto it = m_map.find(key);
    if (it == m_map.end())
        QLEX_THROW(BadDataException("Failed to find attribute \"" + key + "\""));
    return it->second;
}

template <class T> T EntitySerializer::Get(const util::String& key) const
{
    T value = script::ObjectToValue<T>(script::ExpandObject(GetObject(key)));
    if (!IsFiniteValue(value))
        QLEX_THROW(BadDataException("Attribute \"" + key + "\" must be finite, not " +
                                    script::ValueToObject(value)->ToText()));
    return value;
}

template <class T> void EntitySerializer::Set(const util::String& key, const T& value)
{
    SetObject(key, script::ValueToObject(value));
}

template <> void EntitySerializer::Set(const util::String& key, const script::AttribWrapper<float>& value)
{
    SetObject(key, ObjectOf(value.GetAttrib()));
}

void EntitySerializer::SetObject(const util::String& key, const script::ObjectPtr& object)
{
    m_map[key] = object;
}

void EntitySerializer::Remove(const util::String& key)
{
    m_map.erase(key);
}

void EntitySerializer::SerializeAttributes(const script::ClassObject& source)
{
    for (const script::VariablePtr& var : source.GetVariables())
        SetObject(var->GetName(), ObjectOf(var));
}

void EntitySerializer::DeserializeAttributes(script::ClassObject& target) const
{
    for (const script::VariablePtr& var : target.GetVariables())
    {
        auto it = m_map.find(var->GetName());
        if (it != m_map.end())
            var->SetObject(it->second);
    }
}

util::SharedPtr<script::FunctionDeclaration> EntitySerializer::ToFunctionDeclaration() const
{
    script::CodeBlockPtr body = QLEX_NEW new script::CodeBlock();
    for (const auto& entry : m_map)
    {
        script::ExpressionPtr value = entry.second ? entry.second->ToExpression() : script::ExpressionPtr();
        if (!value)
            continue;
        body->Add(
            QLEX_NEW new script::Assignment(QLEX_NEW new script::Identifier(nullptr, entry.first), value));
    }
    return QLEX_NEW new script::FunctionDeclaration(std::vector<util::String>(), body);
}

util::SharedPtr<script::FunctionCall> EntitySerializer::ToFunctionCall(const util::String& name) const
{
    script::CodeBlockPtr head = script::Parser::GetInstancePtr()->Parse(name);
    QLEX_ASSERT(head);
    script::CodeBlockPtr args = QLEX_NEW new script::CodeBlock();
    args->Add(ToFunctionDeclaration());
    return QLEX_NEW new script::FunctionCall(head, args);
}

template float EntitySerializer::Get<float>(const util::String&) const;
template int EntitySerializer::Get<int>(const util::String&) const;
template unsigned long EntitySerializer::Get<unsigned long>(const util::String&) const;
template bool EntitySerializer::Get<bool>(const util::String&) const;
template util::String EntitySerializer::Get<util::String>(const util::String&) const;
template math::Vec2 EntitySerializer::Get<math::Vec2>(const util::String&) const;
template math::Vec3 EntitySerializer::Get<math::Vec3>(const util::String&) const;
template math::Vec4 EntitySerializer::Get<math::Vec4>(const util::String&) const;
template std::vector<math::Vec2> EntitySerializer::Get<std::vector<math::Vec2>>(const util::String&) const;
template std::vector<unsigned long>
EntitySerializer::Get<std::vector<unsigned long>>(const util::String&) const;

template void EntitySerializer::Set<float>(const util::String&, const float&);
template void EntitySerializer::Set<int>(const util::String&, const int&);
template void EntitySerializer::Set<unsigned long>(const util::String&, const unsigned long&);
template void EntitySerializer::Set<bool>(const util::String&, const bool&);
template void EntitySerializer::Set<util::String>(const util::String&, const util::String&);
template void EntitySerializer::Set<math::Vec2>(const util::String&, const math::Vec2&);
template void EntitySerializer::Set<math::Vec4>(const util::String&, const math::Vec4&);
template void EntitySerializer::Set<std::vector<math::Vec2>>(const util::String&,
                                                             const std::vector<math::Vec2>&);
template void EntitySerializer::Set<std::vector<unsigned long>>(const util::String&,
                                                                const std::vector<unsigned long>&);

} // namespace app
