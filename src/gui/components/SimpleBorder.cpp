#include "gui/components/SimpleBorder.h"

#include "gui/GuiRenderer.h"
#include "util/Profiler.h"

namespace gui
{

void SimpleBorder::Draw(math::Vec2 innerSize) const
{
    util::ScopeProfiler profiler("SimpleBorder::Draw");
    const math::Vec2 pos(-m_width, -m_width);
    const math::Vec2 size = innerSize + math::Vec2(2.0f * m_width, 2.0f * m_width);
    ColorPusher restore;
    const math::Vec4 start = GuiRenderer::GetColor4();
    GuiRenderer::MulColor4(m_fillColor);
    GuiRenderer::DrawRect(pos, size);
    if (m_width != 0.0f)
    {
        GuiRenderer::SetColor4(start);
        GuiRenderer::MulColor4(m_frameColor);
        GuiRenderer::DrawFrame(pos, size, m_width);
    }
}

} // namespace gui
