#include "gui/components/WobbleComponent.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace gui
{

WobbleComponent::WobbleComponent()
    : m_wobblePoint(m_outerPos), m_wobbleVelocity(0.0f, 0.0f), m_hasPosition(false), m_wobble(true),
      m_horizontal(false)
{
}

void WobbleComponent::SetOuterPos(math::Vec2 pos)
{
    Component::SetOuterPos(pos);
    if (!m_hasPosition)
    {
        m_wobblePoint = math::Vec2(pos.x, pos.y - GetOuterSize().y);
        m_hasPosition = true;
    }
}

void WobbleComponent::SetWobble(bool wobble)
{
    m_wobble = wobble;
    m_wobbleVelocity = math::Vec2(0.0f, 0.0f);
    m_wobblePoint = m_outerPos;
    if (!wobble)
        m_hasPosition = false;
}

void WobbleComponent::Update(float dt)
{
    Component::Update(dt);
    if (!m_wobble)
    {
        m_wobblePoint = m_outerPos;
        m_wobbleVelocity = math::Vec2(0.0f, 0.0f);
        return;
    }

    // Semi-implicit Euler in equal sub-steps no longer than MAX_STEP; a frame of 0 is one step of 0.
    const int steps = std::max(1, static_cast<int>(std::ceil(dt / MAX_STEP)));
    const float h = dt / steps;
    const math::Vec2 target = m_outerPos;
    for (int i = 0; i < steps; ++i)
    {
        const math::Vec2 acceleration = (target - m_wobblePoint) * SPRING + m_wobbleVelocity * (-DAMPING);
        m_wobbleVelocity += acceleration * h;
        m_wobblePoint += m_wobbleVelocity * h;
    }

    // The far edge stands where the point is, the fixed edge where the target is: a shear along the
    // free axis plus a stretch of it.
    const math::Vec2 lag = target - m_wobblePoint;
    const math::Vec2 size = GetOuterSize();
    m_matrix = math::TMatrix4<float>();
    // A panel of no extent along its free axis has nothing to shear; dividing by it would poison the
    // matrix, and with it every child drawn through it.
    if (!m_horizontal && size.y != 0.0f)
    {
        m_matrix(0, 1) = -lag.x / size.y;
        m_matrix(1, 1) = 1.0f - lag.y / size.y;
    }
    else if (m_horizontal && size.x != 0.0f)
    {
        m_matrix(0, 0) = 1.0f - lag.x / size.x;
        m_matrix(1, 0) = -lag.y / size.x;
    }
}

void WobbleComponent::DrawCompAndChildren() const
{
    if (!m_wobble)
    {
        Component::DrawCompAndChildren();
        return;
    }
    // The shear's fixed point is the outer top-left corner.
    const math::Vec2 offset = GetInnerOffset();
    float columnMajor[16];
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            columnMajor[column * 4 + row] = m_matrix(row, column);
    glPushMatrix();
    glTranslatef(-offset.x, -offset.y, 0.0f);
    glMultMatrixf(columnMajor);
    glTranslatef(offset.x, offset.y, 0.0f);
    Component::DrawCompAndChildren();
    glPopMatrix();
}

} // namespace gui
