#pragma once
// The one gate between script objects and the program's own types. It also defines which script
// values a setting accepts: ints stand in for floats, nothing else converts implicitly.

#include "math/Math.h"
#include "script/Objects.h"
#include "script/ScriptException.h"

namespace script
{

// Dynamic cast that throws ScriptException(message) on failure (also for a null object).
template <class To, class From>
util::SharedPtr<To> ThrowCast(const util::SharedPtr<From>& object, const char* message)
{
    util::SharedPtr<To> result = util::dynamic_pointer_cast<To>(object);
    if (!result)
        throw util::internal::ExceptionDescriber(QLEX_SITE) % ScriptException(message);
    return result;
}

template <class T> T ObjectToValue(const ObjectPtr& object);
template <> bool ObjectToValue<bool>(const ObjectPtr& object);
template <> int ObjectToValue<int>(const ObjectPtr& object);
template <> unsigned long ObjectToValue<unsigned long>(const ObjectPtr& object);
template <> float ObjectToValue<float>(const ObjectPtr& object);
template <> double ObjectToValue<double>(const ObjectPtr& object);
template <> long double ObjectToValue<long double>(const ObjectPtr& object);
template <> util::String ObjectToValue<util::String>(const ObjectPtr& object);
template <> ObjectList ObjectToValue<ObjectList>(const ObjectPtr& object);
template <> math::Vec2 ObjectToValue<math::Vec2>(const ObjectPtr& object);
template <> math::Vec3 ObjectToValue<math::Vec3>(const ObjectPtr& object);
template <> math::Vec4 ObjectToValue<math::Vec4>(const ObjectPtr& object);
template <> math::TVector2<int> ObjectToValue<math::TVector2<int>>(const ObjectPtr& object);
template <> std::vector<math::Vec2> ObjectToValue<std::vector<math::Vec2>>(const ObjectPtr& object);
template <> std::vector<unsigned long> ObjectToValue<std::vector<unsigned long>>(const ObjectPtr& object);
template <> math::BoundingBox2 ObjectToValue<math::BoundingBox2>(const ObjectPtr& object);
template <> FunctionPtr ObjectToValue<FunctionPtr>(const ObjectPtr& object);
template <> ObjectPtr ObjectToValue<ObjectPtr>(const ObjectPtr& object);

template <class T> void ObjectToValue2(T& value, const ObjectPtr& object)
{
    value = ObjectToValue<T>(object);
}

// A list of exactly `size` elements, each read as a float; "Not a vector" otherwise.
std::vector<float> ObjectToVec(const ObjectPtr& object, size_t size);
// A list, each element read as T.
template <class T> std::vector<T> ObjectToVector(const ObjectPtr& object)
{
    util::SharedPtr<List> list = ThrowCast<List>(object, "Not a list");
    std::vector<T> result;
    result.reserve(list->Size());
    for (const ObjectPtr& element : list->GetElements())
        result.push_back(ObjectToValue<T>(element));
    return result;
}

ObjectPtr ValueToObject(bool value);
ObjectPtr ValueToObject(int value);
ObjectPtr ValueToObject(unsigned value);
ObjectPtr ValueToObject(unsigned long value);
ObjectPtr ValueToObject(float value);
ObjectPtr ValueToObject(double value);
ObjectPtr ValueToObject(long double value);
ObjectPtr ValueToObject(const util::String& value);
ObjectPtr ValueToObject(const char* value);
ObjectPtr ValueToObject(const FunctionPtr& value);
ObjectPtr ValueToObject(const ObjectPtr& value);
ObjectPtr ValueToObject(const math::BoundingBox2& box);

// A vector as a list of its components.
ObjectPtr VecToObject(const math::Vec2& v);
ObjectPtr VecToObject(const math::Vec3& v);
ObjectPtr VecToObject(const math::Vec4& v);
ObjectPtr VecToObject(const math::TVector2<int>& v);
inline ObjectPtr ValueToObject(const math::Vec2& v)
{
    return VecToObject(v);
}
inline ObjectPtr ValueToObject(const math::Vec3& v)
{
    return VecToObject(v);
}
inline ObjectPtr ValueToObject(const math::Vec4& v)
{
    return VecToObject(v);
}
inline ObjectPtr ValueToObject(const math::TVector2<int>& v)
{
    return VecToObject(v);
}

template <class T> ObjectPtr ValueToObject(const std::vector<T>& values)
{
    util::SharedPtr<List> list = QLEX_NEW new List();
    for (const T& value : values)
        list->Add(ValueToObject(value));
    return list;
}

ObjectPtr MakeList(ObjectPtr a, ObjectPtr b);

// Token text to literal expressions; a bad number throws "Bad lexical cast: ...".
ExpressionPtr ParseString(const util::String& text);
ExpressionPtr ParseInt(const util::String& text);
ExpressionPtr ParseFloat(const util::String& text);
ExpressionPtr ParseBool(const util::String& text);

} // namespace script
