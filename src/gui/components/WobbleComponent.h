#pragma once

#include "gui/components/Component.h"

namespace gui
{

// A panel that hangs from its fixed edge like a cloth: the fixed edge follows the owner at once, the far
// edge lags behind on a damped spring. Only the drawing is sheared; positions, mouse tests and events use
// the plain rectangle.
class WobbleComponent : public Component
{
public:
    // The spring (per second squared per unit of stretch) and its damping (per second).
    static constexpr float SPRING = 300.0f;
    static constexpr float DAMPING = 20.0f;
    // The longest sub-step of the integration, in seconds: longer frames are cut into equal steps.
    static constexpr float MAX_STEP = 0.05f;

    WobbleComponent();

    // The first placement folds the panel up onto its top edge, so that it opens with a swing.
    void SetOuterPos(math::Vec2 pos) override;
    void Update(float dt) override;
    void DrawCompAndChildren() const override;

    void SetWobble(bool wobble);
    bool GetWobble() const { return m_wobble; }
    // Horizontal: the fixed edge is the left one, not the top one.
    void SetHorizontal(bool horizontal) { m_horizontal = horizontal; }

    math::Vec2 GetWobblePoint() const { return m_wobblePoint; }
    math::Vec2 GetWobbleVelocity() const { return m_wobbleVelocity; }
    // Row-major shear for drawing.
    const math::TMatrix4<float>& GetMatrix() const { return m_matrix; }

private:
    math::Vec2 m_wobblePoint;
    math::Vec2 m_wobbleVelocity;
    math::TMatrix4<float> m_matrix;
    bool m_hasPosition;
    bool m_wobble;
    bool m_horizontal;
};

} // namespace gui
