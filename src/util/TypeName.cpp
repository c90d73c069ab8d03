#include "util/TypeName.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace util
{

std::string Demangle(const char* mangledName)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> readable(abi::__cxa_demangle(mangledName, nullptr, nullptr, &status),
                                                    std::free);
    return status == 0 && readable ? std::string(readable.get()) : std::string(mangledName);
}

} // namespace util
