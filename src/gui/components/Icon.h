#pragma once

#include "gui/components/Component.h"
#include "rendering/Texture.h"

namespace gui
{

// A picture at the size of its inner rectangle.
class Icon : public Component
{
public:
    explicit Icon(rendering::TextureProxy texture = rendering::TextureProxy());
    // Loaded through the texture manager.
    explicit Icon(const std::string& fileName);

    // A component still without size takes the picture's size.
    void SetTexture(rendering::TextureProxy texture);
    const rendering::TextureProxy& GetTexture() const { return m_texture; }

    void DrawComp() const override;

private:
    rendering::TextureProxy m_texture;
};

} // namespace gui
