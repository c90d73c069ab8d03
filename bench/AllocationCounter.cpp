#include "AllocationCounter.h"

#include <atomic>
#include <cstddef>

// glibc's own entry points: the definitions below stand in front of them for the whole program.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* p, std::size_t size);

namespace
{
std::atomic<std::size_t> s_allocations{0};
}

namespace bench
{
std::size_t AllocationCount()
{
    return s_allocations.load(std::memory_order_relaxed);
}
} // namespace bench

extern "C" void* malloc(std::size_t size)
{
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size)
{
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* p, std::size_t size)
{
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(p, size);
}
