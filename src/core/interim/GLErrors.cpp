#include "core/interim/StandIns.h"

#include "core/Subsystem.h"
#include "logging/Log.h"

#include <GL/glew.h>
#include <GL/glu.h>

#include <stdexcept>

namespace core::interim
{
void CheckForGLError()
{
    if (!HasGLLoaded())
    {
        return;
    }
    const GLenum error = glGetError();
    if (error != GL_NO_ERROR)
    {
        const std::string text =
            std::string("GL-Error: ") + reinterpret_cast<const char*>(gluErrorString(error));
        Log(logging::Warning, text);
        throw std::runtime_error(text);
    }
}
} // namespace core::interim
