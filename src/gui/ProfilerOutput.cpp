#include "gui/ProfilerOutput.h"

#include "gui/FontFormater.h"
#include "gui/LookAndFeel.h"
#include "rendering/ColorPusher.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"

#include <GL/gl.h>

namespace gui
{

namespace
{
// Dark enough to read white text over any scene, light enough to see the scene go on.
const float SHADE_ALPHA = 0.5f;
} // namespace

void DrawProfilerOutput(math::Vec2 screenSize)
{
    util::Profiler& tree = *util::Profiler::GetInstancePtr();
    util::Profiler2& flat = *util::Profiler2::GetInstancePtr();
    if (!tree.IsActive() && !flat.IsActive())
        return;
    util::ScopeProfiler profiler("Profiler output");
    const util::String text = tree.IsActive() ? tree.GetOutput() : flat.GetOutput();

    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    rendering::ColorPusher restore;
    glDisable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    renderer.SetColor4(0, 0, 0, SHADE_ALPHA);
    renderer.DrawRectGUI(math::Vec2(0, 0), screenSize);
    renderer.SetColor4(1, 1, 1, 1);
    FontFormater formater = LookAndFeel::GetDefault()->GetFixedFontFormater();
    formater.SetColor(math::Vec4(1, 1, 1, 1));
    formater.DrawText(math::Vec2(0, 0), text);
}

} // namespace gui
