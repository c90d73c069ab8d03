#pragma once

#include "util/ClassTracker.h"
#include "util/SharedPtr.h"

#include <cstddef>

namespace rendering
{

// Anything that lives in video memory; all live ones can be listed to sum up their size.
class GraphicsResource : public util::Pointee, public util::ClassTracker<GraphicsResource>
{
public:
    virtual ~GraphicsResource() = default;
    // Bytes of video memory.
    virtual size_t MemoryUsage() const = 0;
};

} // namespace rendering
