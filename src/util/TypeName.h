#pragma once

#include <string>
#include <typeinfo>

namespace util
{

// Readable C++ type name ("physics::Body", not its mangled form), for messages a user may see.
std::string Demangle(const char* mangledName);

inline std::string TypeName(const std::type_info& type) { return Demangle(type.name()); }

template <class T> std::string TypeName() { return Demangle(typeid(T).name()); }

} // namespace util
