#include "GLTestWindow.h"

#include "rendering/AttribPusher.h"
#include "rendering/Renderer.h"
#include "rendering/Texture.h"
#include "rendering/TextureManager.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
constexpr int WIDTH = 160;
constexpr int HEIGHT = 120;

class RendererGL : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLEX_OPEN_GL_WINDOW(m_window, WIDTH, HEIGHT);
        m_window.SetGUIProjection();
        glDisable(GL_BLEND);
        glDisable(GL_TEXTURE_2D);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    static GLTestWindow m_window;
    rendering::Renderer& m_renderer = *rendering::Renderer::GetInstancePtr();
};
GLTestWindow RendererGL::m_window;

math::Vec4 CurrentGLColor()
{
    GLfloat c[4];
    glGetFloatv(GL_CURRENT_COLOR, c);
    return math::Vec4(c[0], c[1], c[2], c[3]);
}
} // namespace

TEST_F(RendererGL, AGLErrorIsLoggedAndThrownWithItsDescription)
{
    EXPECT_NO_THROW(CheckForGLError());
    glEnable(0x1234); // no such capability
    try
    {
        CheckForGLError();
        FAIL() << "no exception";
    }
    catch (std::runtime_error& e)
    {
        EXPECT_EQ(std::string(e.what()).rfind("GL-Error: ", 0), 0u) << e.what();
    }
    EXPECT_NO_THROW(CheckForGLError()); // the error was taken
}

TEST_F(RendererGL, SettingThePresentColourAgainMakesNoGLCall)
{
    m_renderer.SetColor4(0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_EQ(CurrentGLColor(), math::Vec4(0.25f, 0.5f, 0.75f, 1.0f));
    glColor4f(1, 0, 0, 1); // behind the renderer's back
    m_renderer.SetColor4(0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_EQ(CurrentGLColor(), math::Vec4(1, 0, 0, 1));

    m_renderer.SetColor3(math::Vec3(0, 1, 0));
    EXPECT_EQ(CurrentGLColor(), math::Vec4(0, 1, 0, 1));
    m_renderer.MulColor4(math::Vec4(1, 0.5f, 1, 0.5f));
    EXPECT_EQ(CurrentGLColor(), math::Vec4(0, 0.5f, 0, 0.5f));
    EXPECT_EQ(m_renderer.GetColor4(), math::Vec4(0, 0.5f, 0, 0.5f));
}

TEST_F(RendererGL, PoppedAttributesDoNotLeaveTheShadowStale)
{
    m_renderer.SetColor4(1, 1, 1, 1);
    {
        rendering::AttribPusher push(GL_ALL_ATTRIB_BITS);
        m_renderer.SetColor4(0, 0, 1, 1);
    }
    // GL is white again; asking for blue must reach GL.
    m_renderer.SetColor4(0, 0, 1, 1);
    EXPECT_EQ(CurrentGLColor(), math::Vec4(0, 0, 1, 1));
}

TEST_F(RendererGL, ViewportSizeIsTheWindowSize)
{
    EXPECT_EQ(m_renderer.GetViewportSize(), math::TVector2<int>(WIDTH, HEIGHT));
}

TEST_F(RendererGL, FrameIsDrawnInsideItsRectangle)
{
    m_renderer.SetColor4(1, 1, 1, 1);
    m_renderer.DrawFrame(math::Vec2(20, 20), math::Vec2(60, 40), 6);
    const math::TVector4<int> white(255, 255, 255, 255), black(0, 0, 0, 0);
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(22, 40), white)); // left side
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(77, 40), white)); // right side
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(50, 22), white)); // top
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(50, 57), white)); // bottom
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(50, 40), black)); // inside the frame
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(17, 40), black)); // outside
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(50, 62), black));
}

TEST_F(RendererGL, AMissingTextureShowsTheCheckerboardUpright)
{
    const rendering::TextureProxy missing = rendering::TextureManager::GetInstancePtr()->Load(
        "nowhere/to/be/found", rendering::TextureManager::DefaultImageType());
    ASSERT_NE(missing->GetName(), 0u);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, missing->GetName());
    m_renderer.SetColor4(1, 1, 1, 1);
    m_renderer.DrawRectGUI(0, 0, 64, 64);
    glDisable(GL_TEXTURE_2D);
    // The picture's top left square is magenta, its top right green.
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(16, 16), {255, 0, 255, 255}));
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(48, 16), {0, 255, 0, 127}));
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(16, 48), {0, 255, 0, 127}));
    EXPECT_TRUE(ColorNear(m_window.ReadPixelFromTop(48, 48), {255, 0, 255, 255}));
}

TEST_F(RendererGL, CopyTakesTheFramebufferCornerIntoTheTexture)
{
    rendering::ImageRGBA32Ptr image = QLEX_NEW new rendering::ImageRGBA32(32, 32, true);
    const util::SharedPtr<rendering::Texture> texture = QLEX_NEW new rendering::Texture(
        image, rendering::Texture::ImageType(GL_RGBA, false, rendering::Texture::Quality(1, 1, 0, 0, 0)));
    ASSERT_NE(texture->GetName(), 0u);
    glClearColor(0.2f, 0.4f, 0.6f, 0.8f);
    glClear(GL_COLOR_BUFFER_BIT);
    texture->Copy();
    const rendering::ImageRGBA32Ptr read = texture->ReadRGBA();
    ASSERT_EQ(read->GetWidth(), 32u);
    const rendering::PixelRGBA p = (*read)(5, 7);
    EXPECT_TRUE(ColorNear({p.x, p.y, p.z, p.w}, {51, 102, 153, 204}, 2, true));
    EXPECT_NO_THROW(CheckForGLError());
}
