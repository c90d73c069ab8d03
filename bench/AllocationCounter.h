#pragma once

#include <cstddef>

// Counts every heap allocation of this program (malloc, calloc, realloc, and operator new through them), so
// that a benchmark can report what its hot loop allocates.
namespace bench
{
std::size_t AllocationCount();
}
