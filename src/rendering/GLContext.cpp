#include "rendering/GLContext.h"

#include "logging/Log.h"
#include "rendering/Renderer.h"

#include <stdexcept>
#include <string>

namespace
{
bool s_glLoaded = false;
}

void GLHasLoaded()
{
    s_glLoaded = true;
    // A new context starts with GL's default colour, whatever the shadow says.
    if (rendering::Renderer::Exists())
        rendering::Renderer::GetInstancePtr()->InvalidateColor();
}

void GLHasUnloaded()
{
    s_glLoaded = false;
}

bool HasGLLoaded()
{
    return s_glLoaded;
}

void CheckForGLError()
{
    if (!HasGLLoaded())
        return;
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR)
        return;
    const GLubyte* description = gluErrorString(error);
    const std::string text =
        std::string("GL-Error: ") +
        (description ? reinterpret_cast<const char*>(description) : std::to_string(error));
    Log(logging::Warning, text);
    throw std::runtime_error(text);
}

namespace rendering
{
bool HasMultiTexturing()
{
    return GLEW_VERSION_1_3 || GLEW_ARB_multitexture;
}

bool HasBlendColor()
{
    return GLEW_ARB_imaging && glBlendColor != nullptr;
}
} // namespace rendering
