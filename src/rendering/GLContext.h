#pragma once

// The one include for GL in the program: GLEW first, as it must precede gl.h, then GLU.
#include <GL/glew.h>
#include <GL/glu.h>

// Whether a GL context exists. Set when the window is up; resources made before that are empty shells that
// their mentors make again once it is. The shell clears it when the window closes for good.
void GLHasLoaded();
void GLHasUnloaded();
bool HasGLLoaded();

// Turns a pending GL error into a message and an exception. Does nothing before the context exists.
void CheckForGLError();

namespace rendering
{
// Texture units beyond the first.
bool HasMultiTexturing();
// The constant blend colour of GL_ARB_imaging, which water transparency without shaders depends on.
bool HasBlendColor();
} // namespace rendering
