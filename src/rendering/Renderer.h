#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <array>
#include <string>
#include <vector>

namespace rendering
{

// A thin layer over fixed-function GL. It shadows the present colour, so that setting the same colour again
// costs no GL call, and draws the textured rectangles and frames that the interface and the world are made
// of.
class Renderer : public util::Pointee, public util::Singleton<Renderer>
{
public:
    // One corner of a primitive: where it goes and which texel it shows.
    struct Vertex2
    {
        math::Vec2 pos;
        math::Vec2 tex;
    };
    using Quad = std::array<Vertex2, 4>;
    using FrameStrip = std::array<math::Vec2, 10>;

    void SetColor4(float r, float g, float b, float a);
    void SetColor4(const math::TVector4<float>& color);
    // Keeps the present alpha.
    void SetColor3(const math::TVector3<float>& color);
    math::TVector3<float> GetColor3() const;
    math::TVector4<float> GetColor4() const { return m_color; }
    void MulColor3(const math::TVector3<float>& factor);
    void MulColor4(const math::TVector4<float>& factor);

    // The shadow no longer matches GL (the context was made again, or someone else set the colour):
    // the next colour is sent whatever it is.
    void InvalidateColor();

    void Translate(const math::TVector2<float>& offset);
    void Vertex(const math::TVector2<float>& point);
    math::TVector2<int> GetViewportSize() const;

    // y up: (x, y) shows texel (0, 0).
    void DrawRect(float x, float y, float w, float h, float s = 1, float t = 1);
    void DrawRect(const math::Vec2& pos, const math::Vec2& size,
                  const math::Vec2& texSize = math::Vec2(1, 1));
    void DrawRect(const math::Vec2& center, float size);
    // y down, as in the interface: the texture is flipped on t so that pictures stand upright.
    void DrawRectGUI(float x, float y, float w, float h, float s = 1, float t = 1);
    void DrawRectGUI(const math::Vec2& pos, const math::Vec2& size,
                     const math::Vec2& texSize = math::Vec2(1, 1));
    // The outline of a rectangle, `thickness` wide, lying inside it.
    void DrawFrame(math::TVector2<float> pos, math::TVector2<float> size, float thickness);

    // Saves the viewport as a TGA file named after the prefix, today's date and the first free counter.
    void ScreenShot(std::string prefix);
    void ScreenShotToFile(const std::string& path);
    // The name ScreenShot takes: prefix + "_" + date ("%y%m%d") + "_" + a four-digit counter + ".tga", the
    // first that doesn't exist; "to_many_screenshots.tga" when all of them do.
    static std::string ScreenShotName(std::string prefix, const std::string& date);
    // The 18-byte header of an uncompressed 24-bit TGA picture of that size.
    static std::array<unsigned char, 18> TGAHeader(int width, int height);

    // The corners that the draw calls send, in their order.
    static Quad RectVertices(float x, float y, float w, float h, float s, float t);
    static Quad RectGUIVertices(float x, float y, float w, float h, float s, float t);
    static FrameStrip FrameVertices(math::Vec2 pos, math::Vec2 size, float thickness);

private:
    static void Emit(const Quad& quad);

    math::TVector4<float> m_color = math::TVector4<float>(1, 1, 1, 1);
    // Kept from shot to shot: a screenshot shouldn't allocate a frame's worth each time.
    std::vector<unsigned char> m_screenShotBuffer;
    bool m_colorValid = true;
};

} // namespace rendering
