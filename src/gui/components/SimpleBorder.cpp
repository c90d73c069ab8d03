#include "gui/components/SimpleBorder.h"

#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"

namespace gui
{

void SimpleBorder::Draw(math::Vec2 innerSize) const
{
    util::ScopeProfiler profiler("SimpleBorder::Draw");
    const math::Vec2 pos(-m_width, -m_width);
    const math::Vec2 size = innerSize + math::Vec2(2.0f * m_width, 2.0f * m_width);
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    rendering::ColorPusher restore;
    const math::Vec4 start = renderer.GetColor4();
    renderer.MulColor4(m_fillColor);
    renderer.DrawRect(pos, size);
    if (m_width != 0.0f)
    {
        renderer.SetColor4(start);
        renderer.MulColor4(m_frameColor);
        renderer.DrawFrame(pos, size, m_width);
    }
}

} // namespace gui
