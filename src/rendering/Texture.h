#pragma once

#include "math/Math.h"
#include "rendering/GLContext.h"
#include "rendering/GraphicsResource.h"
#include "rendering/Image.h"
#include "util/Mentor.h"

namespace rendering
{

// One GL texture made from an image. It can be made again at any moment from the same image, since every
// GL object dies with the window.
class Texture : public GraphicsResource
{
public:
    // A GL internal format number.
    using Format = GLint;

    // Flags: 0 or not 0.
    struct Quality
    {
        int clampS = 0;    // 0: repeat on s, otherwise clamp
        int clampT = 0;    // the same on t
        int minLinear = 1; // 0: nearest minification, otherwise linear
        int magLinear = 1; // 0: nearest magnification, otherwise linear
        int mipLinear = 1; // with mipmaps: 0 nearest between levels, otherwise linear

        Quality() = default;
        Quality(int clampS_, int clampT_, int minLinear_, int magLinear_, int mipLinear_)
            : clampS(clampS_), clampT(clampT_), minLinear(minLinear_), magLinear(magLinear_),
              mipLinear(mipLinear_)
        {
        }
        bool operator==(const Quality& o) const
        {
            return clampS == o.clampS && clampT == o.clampT && minLinear == o.minLinear &&
                   magLinear == o.magLinear && mipLinear == o.mipLinear;
        }
    };

    struct ImageType
    {
        Format format = GL_RGBA;
        bool mipmaps = true;
        Quality quality;

        ImageType() = default;
        ImageType(Format format_, bool mipmaps_, const Quality& quality_)
            : format(format_), mipmaps(mipmaps_), quality(quality_)
        {
        }
        bool operator==(const ImageType& o) const
        {
            return format == o.format && mipmaps == o.mipmaps && quality == o.quality;
        }
    };

    // Made before the window exists, a texture is an empty shell with name 0.
    Texture(util::SharedPtr<AbstractImage> image, const ImageType& type);
    ~Texture() override;

    // Binds on a texture unit; needs multitexturing.
    void Bind(int unit) const;
    void Unbind(int unit) const;

    math::TVector2<int> GetSize() const { return m_size; }
    bool HasAlpha() const;
    GLuint GetName() const { return m_name; }
    const ImageType& GetImageType() const { return m_type; }

    void SetQuality(const Quality& quality);
    void CommitQuality() const;

    // Copies the framebuffer's lower left corner of the texture's size (or of the given size) into it.
    void Copy();
    void Copy(int w, int h);
    ImageRGBA32Ptr ReadRGBA() const;

    size_t MemoryUsage() const override;

    // The bytes a pixel takes in an internal format; invariant breach for one that textures never have.
    static int BytesPerPixel(Format format);
    static bool IsDepthFormat(Format format);

    // Set from the resource settings: RGB and RGBA textures are made with 16-bit internal formats.
    static void SetForce16BitTextures(bool force) { s_force16Bit = force; }
    static bool GetForce16BitTextures() { return s_force16Bit; }

private:
    util::SharedPtr<AbstractImage> m_image;
    math::TVector2<int> m_size;
    ImageType m_type;
    GLuint m_name = 0;

    inline static bool s_force16Bit = false;
};

using TextureProxy = util::MentorProxy<Texture>;
using TexturePtr = util::SharedPtr<Texture>;

// The texture that shows where one is missing: a 64 by 64 checkerboard of green and magenta.
Texture* CreateDefaultTexture();
// The picture of it.
ImageRGBA32Ptr CreateDefaultImage();

} // namespace rendering
