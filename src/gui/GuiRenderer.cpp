#include "gui/GuiRenderer.h"

#include <GL/gl.h>

#include <cmath>

namespace gui
{

math::Vec4 GuiRenderer::s_color(1.0f, 1.0f, 1.0f, 1.0f);

void GuiRenderer::SetColor4(const math::Vec4& color)
{
    s_color = color;
    // Always sent: glPopAttrib may have changed GL's colour behind the shadow's back.
    glColor4f(color.x, color.y, color.z, color.w);
}

void GuiRenderer::MulColor4(const math::Vec4& color)
{
    if (color == math::Vec4(1.0f, 1.0f, 1.0f, 1.0f))
        return;
    SetColor4(math::Vec4(s_color.x * color.x, s_color.y * color.y, s_color.z * color.z, s_color.w * color.w));
}

void GuiRenderer::DrawRect(const math::Vec2& pos, const math::Vec2& size)
{
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(pos.x, pos.y);
    glTexCoord2f(0.0f, 1.0f);
    glVertex2f(pos.x, pos.y + size.y);
    glTexCoord2f(1.0f, 1.0f);
    glVertex2f(pos.x + size.x, pos.y + size.y);
    glTexCoord2f(1.0f, 0.0f);
    glVertex2f(pos.x + size.x, pos.y);
    glEnd();
}

void GuiRenderer::DrawFrame(const math::Vec2& pos, const math::Vec2& size, float thickness)
{
    const float w = std::fabs(size.x), h = std::fabs(size.y), t = thickness;
    glBegin(GL_TRIANGLE_STRIP);
    glVertex2f(pos.x, pos.y);
    glVertex2f(pos.x + t, pos.y + t);
    glVertex2f(pos.x + w, pos.y);
    glVertex2f(pos.x + w - t, pos.y + t);
    glVertex2f(pos.x + w, pos.y + h);
    glVertex2f(pos.x + w - t, pos.y + h - t);
    glVertex2f(pos.x, pos.y + h);
    glVertex2f(pos.x + t, pos.y + h - t);
    glVertex2f(pos.x, pos.y);
    glVertex2f(pos.x + t, pos.y + t);
    glEnd();
}

} // namespace gui
