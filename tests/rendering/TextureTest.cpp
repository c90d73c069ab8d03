#include "rendering/Texture.h"
#include "rendering/ImageManager.h"
#include "rendering/TextureManager.h"

#include <gtest/gtest.h>

using rendering::Texture;

// This executable never opens a window: every texture here is a shell made before GL exists.
namespace
{
util::SharedPtr<Texture> MakeShell(unsigned w, unsigned h, Texture::Format format, bool mipmaps)
{
    rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(w, h, true);
    return QLEX_NEW new Texture(image, Texture::ImageType(format, mipmaps, Texture::Quality()));
}
} // namespace

TEST(Texture, MadeBeforeTheWindowItIsAShellWithNameZero)
{
    ASSERT_FALSE(HasGLLoaded());
    const util::SharedPtr<Texture> texture = MakeShell(16, 8, GL_RGBA, true);
    EXPECT_EQ(texture->GetName(), 0u);
    EXPECT_EQ(texture->GetSize(), math::TVector2<int>(16, 8));
    EXPECT_TRUE(texture->HasAlpha());
}

TEST(Texture, DefaultIsAGreenAndMagentaCheckerboardOfFourSquares)
{
    const rendering::ImageRGBA32Ptr image = rendering::CreateDefaultImage();
    ASSERT_EQ(image->GetWidth(), 64u);
    ASSERT_EQ(image->GetHeight(), 64u);
    const rendering::PixelRGBA green(0, 255, 0, 127);
    const rendering::PixelRGBA magenta(255, 0, 255, 255);
    EXPECT_EQ((*image)(0, 0), green);
    EXPECT_EQ((*image)(31, 31), green);
    EXPECT_EQ((*image)(32, 32), green);
    EXPECT_EQ((*image)(63, 63), green);
    EXPECT_EQ((*image)(32, 0), magenta);
    EXPECT_EQ((*image)(31, 32), magenta);
    EXPECT_EQ((*image)(0, 63), magenta);
    EXPECT_EQ((*image)(63, 0), magenta);
}

TEST(TextureManager, SharesOneMentorPerNameAndFormat)
{
    rendering::TextureManager& manager = *rendering::TextureManager::GetInstancePtr();
    const Texture::ImageType clamped = rendering::TextureManager::DefaultImageType();
    Texture::ImageType repeating = clamped;
    repeating.quality.clampS = 0;
    Texture::ImageType flat = clamped;
    flat.mipmaps = false;

    const rendering::TextureProxy a = manager.Load("some/name", clamped);
    EXPECT_EQ(manager.Load("some/name", clamped).GetMentor(), a.GetMentor());
    EXPECT_NE(manager.Load("some/name", repeating).GetMentor(), a.GetMentor());
    EXPECT_NE(manager.Load("some/name", flat).GetMentor(), a.GetMentor());
    EXPECT_NE(manager.Load("other/name", clamped).GetMentor(), a.GetMentor());

    rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(2, 2, true);
    const rendering::TextureProxy byImage = manager.Load(image, clamped);
    EXPECT_EQ(manager.Load(image, clamped).GetMentor(), byImage.GetMentor());
    EXPECT_NE(manager.Load(image, flat).GetMentor(), byImage.GetMentor());
}

TEST(TextureManager, AMissingNameFallsBackOnTheDefaultAndReadsFalse)
{
    rendering::TextureManager& manager = *rendering::TextureManager::GetInstancePtr();
    const rendering::TextureProxy missing =
        manager.Load("no/such/picture/anywhere", rendering::TextureManager::DefaultImageType());
    ASSERT_TRUE(missing.get() != nullptr);
    EXPECT_EQ(missing.get(), util::Mentor<Texture>::s_default->GetPtr().get());
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing->GetSize(), math::TVector2<int>(64, 64));
}
