#include "script/ValueConversions.h"

#include "script/Expressions.h"
#include "util/StringUtil.h"

namespace script
{

namespace
{
template <class T> const T& ValueOf(const ObjectPtr& object, const char* message)
{
    return ThrowCast<Value<T>>(object, message)->Get();
}

float ToFloat(const ObjectPtr& object)
{
    if (auto i = util::dynamic_pointer_cast<IntValue>(object))
        return static_cast<float>(i->Get());
    return ValueOf<float>(object, "Not a float");
}

// The elements of a list of exactly `size`; "Not a vector" otherwise.
const ObjectList& VectorElements(const ObjectPtr& object, size_t size)
{
    List* list = dynamic_cast<List*>(object.get());
    if (!list || list->Size() != size)
        QLEX_THROW(ScriptException("Not a vector"));
    return list->GetElements();
}
} // namespace

template <> bool ObjectToValue<bool>(const ObjectPtr& object)
{
    return ValueOf<bool>(object, "Not a bool");
}

template <> int ObjectToValue<int>(const ObjectPtr& object)
{
    return ValueOf<int>(object, "Not an integer");
}

template <> unsigned long ObjectToValue<unsigned long>(const ObjectPtr& object)
{
    return static_cast<unsigned long>(ValueOf<int>(object, "Not an integer"));
}

template <> float ObjectToValue<float>(const ObjectPtr& object)
{
    return ToFloat(object);
}

template <> double ObjectToValue<double>(const ObjectPtr& object)
{
    return ToFloat(object);
}

template <> long double ObjectToValue<long double>(const ObjectPtr& object)
{
    return ToFloat(object);
}

template <> util::String ObjectToValue<util::String>(const ObjectPtr& object)
{
    return ValueOf<util::String>(object, "Not a string");
}

template <> ObjectList ObjectToValue<ObjectList>(const ObjectPtr& object)
{
    return ThrowCast<List>(object, "Not a list")->GetElements();
}

std::vector<float> ObjectToVec(const ObjectPtr& object, size_t size)
{
    std::vector<float> result;
    for (const ObjectPtr& element : VectorElements(object, size))
        result.push_back(ToFloat(element));
    return result;
}

template <> math::Vec2 ObjectToValue<math::Vec2>(const ObjectPtr& object)
{
    std::vector<float> v = ObjectToVec(object, 2);
    return math::Vec2(v[0], v[1]);
}

template <> math::Vec3 ObjectToValue<math::Vec3>(const ObjectPtr& object)
{
    std::vector<float> v = ObjectToVec(object, 3);
    return math::Vec3(v[0], v[1], v[2]);
}

template <> math::Vec4 ObjectToValue<math::Vec4>(const ObjectPtr& object)
{
    std::vector<float> v = ObjectToVec(object, 4);
    return math::Vec4(v[0], v[1], v[2], v[3]);
}

template <> math::TVector2<int> ObjectToValue<math::TVector2<int>>(const ObjectPtr& object)
{
    const ObjectList& elements = VectorElements(object, 2);
    int x = ObjectToValue<int>(elements[0]);
    int y = ObjectToValue<int>(elements[1]);
    return math::TVector2<int>(x, y);
}

template <> std::vector<math::Vec2> ObjectToValue<std::vector<math::Vec2>>(const ObjectPtr& object)
{
    return ObjectToVector<math::Vec2>(object);
}

template <> std::vector<unsigned long> ObjectToValue<std::vector<unsigned long>>(const ObjectPtr& object)
{
    return ObjectToVector<unsigned long>(object);
}

template <> math::BoundingBox2 ObjectToValue<math::BoundingBox2>(const ObjectPtr& object)
{
    List* list = dynamic_cast<List*>(object.get());
    if (!list || list->Size() != 2)
        QLEX_THROW(ScriptException("Not a bounding box"));
    math::Vec2 position = ObjectToValue<math::Vec2>((*list)[0]);
    math::Vec2 size = ObjectToValue<math::Vec2>((*list)[1]);
    return math::BoundingBox2(position, position + size);
}

template <> FunctionPtr ObjectToValue<FunctionPtr>(const ObjectPtr& object)
{
    FunctionPtr ret = util::dynamic_pointer_cast<Function>(object);
    QLEX_DATA_ASSERT(ret);
    return ret;
}

template <> ObjectPtr ObjectToValue<ObjectPtr>(const ObjectPtr& object)
{
    return object;
}

// ---------------------------------------------------------------------------------------------------

ObjectPtr ValueToObject(bool value)
{
    return QLEX_NEW new BoolValue(value);
}

ObjectPtr ValueToObject(int value)
{
    return QLEX_NEW new IntValue(value);
}

ObjectPtr ValueToObject(unsigned value)
{
    return QLEX_NEW new IntValue(static_cast<int>(value));
}

ObjectPtr ValueToObject(unsigned long value)
{
    return QLEX_NEW new IntValue(static_cast<int>(value));
}

ObjectPtr ValueToObject(float value)
{
    return QLEX_NEW new FloatValue(value);
}

ObjectPtr ValueToObject(double value)
{
    return QLEX_NEW new FloatValue(static_cast<float>(value));
}

ObjectPtr ValueToObject(long double value)
{
    return QLEX_NEW new FloatValue(static_cast<float>(value));
}

ObjectPtr ValueToObject(const util::String& value)
{
    return QLEX_NEW new StringValue(value);
}

ObjectPtr ValueToObject(const char* value)
{
    return QLEX_NEW new StringValue(value);
}

ObjectPtr ValueToObject(const FunctionPtr& value)
{
    return value;
}

ObjectPtr ValueToObject(const ObjectPtr& value)
{
    return value;
}

ObjectPtr ValueToObject(const math::BoundingBox2& box)
{
    return MakeList(ValueToObject(box.min), ValueToObject(box.GetSize()));
}

ObjectPtr VecToObject(const math::Vec2& v)
{
    return QLEX_NEW new List({ValueToObject(v.x), ValueToObject(v.y)});
}

ObjectPtr VecToObject(const math::Vec3& v)
{
    return QLEX_NEW new List({ValueToObject(v.x), ValueToObject(v.y), ValueToObject(v.z)});
}

ObjectPtr VecToObject(const math::Vec4& v)
{
    return QLEX_NEW new List(
        {ValueToObject(v.x), ValueToObject(v.y), ValueToObject(v.z), ValueToObject(v.w)});
}

ObjectPtr VecToObject(const math::TVector2<int>& v)
{
    return QLEX_NEW new List({ValueToObject(v.x), ValueToObject(v.y)});
}

ObjectPtr MakeList(ObjectPtr a, ObjectPtr b)
{
    return QLEX_NEW new List({a, b});
}

// ---------------------------------------------------------------------------------------------------

ExpressionPtr ParseString(const util::String& text)
{
    return QLEX_NEW new Literal<util::String>(text);
}

ExpressionPtr ParseInt(const util::String& text)
{
    return QLEX_NEW new Literal<int>(util::FromString<int>(text));
}

ExpressionPtr ParseFloat(const util::String& text)
{
    return QLEX_NEW new Literal<float>(util::FromString<float>(text));
}

ExpressionPtr ParseBool(const util::String& text)
{
    return QLEX_NEW new Literal<bool>(util::FromString<bool>(text));
}

} // namespace script
