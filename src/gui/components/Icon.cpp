#include "gui/components/Icon.h"

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/Profiler.h"

#include <GL/gl.h>

namespace gui
{

Icon::Icon(rendering::TextureProxy texture)
{
    SetTexture(texture);
}

Icon::Icon(const std::string& fileName)
{
    SetTexture(rendering::TextureManager::GetInstancePtr()->Load(
        fileName, rendering::TextureManager::DefaultImageType()));
}

void Icon::SetTexture(rendering::TextureProxy texture)
{
    m_texture = texture;
    if (m_innerSize == math::Vec2(0.0f, 0.0f) && m_texture.GetMentor() && m_texture)
    {
        const math::TVector2<int> size = m_texture->GetSize();
        SetInnerSize(float(size.x), float(size.y));
    }
}

void Icon::DrawComp() const
{
    util::ScopeProfiler profiler("Icon::DrawComp");
    Component::DrawComp();
    if (!m_texture.GetMentor() || !m_texture)
        return;
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, m_texture->GetName());
    rendering::Renderer::GetInstancePtr()->DrawRectGUI(math::Vec2(0.0f, 0.0f), m_innerSize);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
}

} // namespace gui
