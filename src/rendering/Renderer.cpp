#include "rendering/Renderer.h"

#include "logging/Log.h"
#include "rendering/GLContext.h"
#include "util/FILEWrapper.h"
#include "util/FileSystem.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>

namespace rendering
{

void Renderer::SetColor4(float r, float g, float b, float a)
{
    SetColor4(math::TVector4<float>(r, g, b, a));
}

void Renderer::SetColor4(const math::TVector4<float>& color)
{
    if (m_colorValid && color == m_color)
        return;
    m_color = color;
    m_colorValid = true;
    glColor4f(color.x, color.y, color.z, color.w);
}

void Renderer::SetColor3(const math::TVector3<float>& color)
{
    SetColor4(color.x, color.y, color.z, m_color.w);
}

math::TVector3<float> Renderer::GetColor3() const
{
    return math::TVector3<float>(m_color.x, m_color.y, m_color.z);
}

void Renderer::MulColor3(const math::TVector3<float>& factor)
{
    SetColor4(m_color.x * factor.x, m_color.y * factor.y, m_color.z * factor.z, m_color.w);
}

void Renderer::MulColor4(const math::TVector4<float>& factor)
{
    SetColor4(m_color.x * factor.x, m_color.y * factor.y, m_color.z * factor.z, m_color.w * factor.w);
}

void Renderer::InvalidateColor()
{
    m_colorValid = false;
}

void Renderer::Translate(const math::TVector2<float>& offset)
{
    glTranslatef(offset.x, offset.y, 0);
}

void Renderer::Vertex(const math::TVector2<float>& point)
{
    glVertex2f(point.x, point.y);
}

math::TVector2<int> Renderer::GetViewportSize() const
{
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    return math::TVector2<int>(viewport[2], viewport[3]);
}

Renderer::Quad Renderer::RectVertices(float x, float y, float w, float h, float s, float t)
{
    return Quad{{{math::Vec2(x, y), math::Vec2(0, 0)},
                 {math::Vec2(x, y + h), math::Vec2(0, t)},
                 {math::Vec2(x + w, y + h), math::Vec2(s, t)},
                 {math::Vec2(x + w, y), math::Vec2(s, 0)}}};
}

Renderer::Quad Renderer::RectGUIVertices(float x, float y, float w, float h, float s, float t)
{
    return Quad{{{math::Vec2(x, y), math::Vec2(0, t)},
                 {math::Vec2(x, y + h), math::Vec2(0, 0)},
                 {math::Vec2(x + w, y + h), math::Vec2(s, 0)},
                 {math::Vec2(x + w, y), math::Vec2(s, t)}}};
}

Renderer::FrameStrip Renderer::FrameVertices(math::Vec2 pos, math::Vec2 size, float thickness)
{
    const float w = std::fabs(size.x);
    const float h = std::fabs(size.y);
    const float t = thickness;
    // Round from the corner `pos`, each outer corner followed by its inner one, and back to the start.
    return FrameStrip{{pos, pos + math::Vec2(t, t), pos + math::Vec2(w, 0), pos + math::Vec2(w - t, t),
                       pos + math::Vec2(w, h), pos + math::Vec2(w - t, h - t), pos + math::Vec2(0, h),
                       pos + math::Vec2(t, h - t), pos, pos + math::Vec2(t, t)}};
}

void Renderer::Emit(const Quad& quad)
{
    glBegin(GL_QUADS);
    for (const Vertex2& v : quad)
    {
        glTexCoord2f(v.tex.x, v.tex.y);
        glVertex2f(v.pos.x, v.pos.y);
    }
    glEnd();
}

void Renderer::DrawRect(float x, float y, float w, float h, float s, float t)
{
    Emit(RectVertices(x, y, w, h, s, t));
}

void Renderer::DrawRect(const math::Vec2& pos, const math::Vec2& size, const math::Vec2& texSize)
{
    DrawRect(pos.x, pos.y, size.x, size.y, texSize.x, texSize.y);
}

void Renderer::DrawRect(const math::Vec2& center, float size)
{
    const float half = size * 0.5f;
    DrawRect(center.x - half, center.y - half, size, size, 1, 1);
}

void Renderer::DrawRectGUI(float x, float y, float w, float h, float s, float t)
{
    Emit(RectGUIVertices(x, y, w, h, s, t));
}

void Renderer::DrawRectGUI(const math::Vec2& pos, const math::Vec2& size, const math::Vec2& texSize)
{
    DrawRectGUI(pos.x, pos.y, size.x, size.y, texSize.x, texSize.y);
}

void Renderer::DrawFrame(math::TVector2<float> pos, math::TVector2<float> size, float thickness)
{
    glBegin(GL_TRIANGLE_STRIP);
    for (const math::Vec2& v : FrameVertices(pos, size, thickness))
        glVertex2f(v.x, v.y);
    glEnd();
}

std::string Renderer::ScreenShotName(std::string prefix, const std::string& date)
{
    constexpr int MAX_COUNTER = 9999;
    prefix += "_" + date + "_";
    for (int i = 0; i <= MAX_COUNTER; ++i)
    {
        char counter[8];
        std::snprintf(counter, sizeof counter, "%04d", i);
        const std::string candidate = prefix + counter + ".tga";
        if (!util::FileSystem::FileExists(candidate))
            return candidate;
    }
    return "to_many_screenshots.tga";
}

std::array<unsigned char, 18> Renderer::TGAHeader(int width, int height)
{
    constexpr unsigned char UNCOMPRESSED_TRUE_COLOR = 2;
    constexpr unsigned char BITS_PER_PIXEL = 24;
    std::array<unsigned char, 18> header{};
    header[2] = UNCOMPRESSED_TRUE_COLOR;
    // Sizes are 16-bit little endian; the origin stays at the lower left, as GL reads the rows.
    header[12] = static_cast<unsigned char>(width & 0xFF);
    header[13] = static_cast<unsigned char>((width >> 8) & 0xFF);
    header[14] = static_cast<unsigned char>(height & 0xFF);
    header[15] = static_cast<unsigned char>((height >> 8) & 0xFF);
    header[16] = BITS_PER_PIXEL;
    return header;
}

void Renderer::ScreenShot(std::string prefix)
{
    char date[16];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%y%m%d", std::localtime(&now));
    // A fresh tree has no folder for the shots yet.
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(prefix).parent_path(), ignored);
    ScreenShotToFile(ScreenShotName(std::move(prefix), date));
}

void Renderer::ScreenShotToFile(const std::string& path)
{
    const math::TVector2<int> size = GetViewportSize();
    m_screenShotBuffer.resize(size_t(size.x) * size_t(size.y) * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, size.x, size.y, GL_BGR, GL_UNSIGNED_BYTE, m_screenShotBuffer.data());

    const std::array<unsigned char, 18> header = TGAHeader(size.x, size.y);
    util::FILEWrapper file(path, "wb");
    file.Write(header.data(), header.size());
    file.Write(m_screenShotBuffer.data(), m_screenShotBuffer.size());
    file.Close();
    Log(logging::Info, "Screenshot saved to \"" + path + "\"");
}

} // namespace rendering
