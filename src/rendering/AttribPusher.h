#pragma once

#include "rendering/GLContext.h"
#include "rendering/Renderer.h"

namespace rendering
{

// Saves GL attributes for the length of a scope.
class AttribPusher
{
public:
    explicit AttribPusher(GLbitfield mask) : m_mask(mask) { glPushAttrib(mask); }
    ~AttribPusher()
    {
        glPopAttrib();
        // The pop brings back the colour of before, behind the renderer's back.
        if ((m_mask & GL_CURRENT_BIT) && Renderer::Exists())
            Renderer::GetInstancePtr()->InvalidateColor();
    }
    AttribPusher(const AttribPusher&) = delete;
    AttribPusher& operator=(const AttribPusher&) = delete;

private:
    GLbitfield m_mask;
};

} // namespace rendering
