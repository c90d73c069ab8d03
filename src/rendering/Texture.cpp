#include "rendering/Texture.h"

#include "logging/Exception.h"
#include "util/Profiler.h"

namespace rendering
{
namespace
{
GLint ClampMode()
{
    return (GLEW_VERSION_1_2 || GLEW_EXT_texture_edge_clamp || GLEW_SGIS_texture_edge_clamp)
               ? GL_CLAMP_TO_EDGE
               : GL_CLAMP;
}

// Two by two squares: big enough to tell at a glance which picture is missing.
constexpr unsigned DEFAULT_SIZE = 64;
constexpr unsigned DEFAULT_SQUARE = 32;
} // namespace

Texture::Texture(util::SharedPtr<AbstractImage> image, const ImageType& type)
    : m_image(std::move(image)), m_type(type)
{
    m_image.Check();
    m_size = math::TVector2<int>(int(m_image->GetWidth()), int(m_image->GetHeight()));
    if (!HasGLLoaded())
        return;

    glGenTextures(1, &m_name);
    glBindTexture(GL_TEXTURE_2D, m_name);
    Format internal = m_type.format;
    if (s_force16Bit)
    {
        if (internal == GL_RGB)
            internal = GL_RGB5;
        else if (internal == GL_RGBA)
            internal = GL_RGB5_A1;
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    if (m_type.mipmaps)
        gluBuild2DMipmaps(GL_TEXTURE_2D, internal, m_size.x, m_size.y, m_image->GetFormat(),
                          m_image->GetType(), m_image->GetDataVoidPtr());
    else
        glTexImage2D(GL_TEXTURE_2D, 0, internal, m_size.x, m_size.y, 0, m_image->GetFormat(),
                     m_image->GetType(), m_image->GetDataVoidPtr());
    CommitQuality();
}

Texture::~Texture()
{
    if (m_name != 0 && HasGLLoaded())
        glDeleteTextures(1, &m_name);
}

void Texture::Bind(int unit) const
{
    QLEX_ASSERT(HasMultiTexturing());
    glActiveTexture(GLenum(GL_TEXTURE0 + unit));
    glBindTexture(GL_TEXTURE_2D, m_name);
}

void Texture::Unbind(int unit) const
{
    QLEX_ASSERT(HasMultiTexturing());
    glActiveTexture(GLenum(GL_TEXTURE0 + unit));
    glBindTexture(GL_TEXTURE_2D, 0);
}

bool Texture::HasAlpha() const
{
    return m_image && m_image->HasAlpha();
}

void Texture::SetQuality(const Quality& quality)
{
    m_type.quality = quality;
    CommitQuality();
}

void Texture::CommitQuality() const
{
    if (m_name == 0)
        return;
    const Quality& q = m_type.quality;
    glBindTexture(GL_TEXTURE_2D, m_name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, q.clampS ? ClampMode() : GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, q.clampT ? ClampMode() : GL_REPEAT);
    GLint minFilter;
    if (!m_type.mipmaps)
        minFilter = q.minLinear ? GL_LINEAR : GL_NEAREST;
    else if (q.minLinear)
        minFilter = q.mipLinear ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST;
    else
        minFilter = q.mipLinear ? GL_NEAREST_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, q.magLinear ? GL_LINEAR : GL_NEAREST);
    if (IsDepthFormat(m_type.format))
    {
        glTexParameteri(GL_TEXTURE_2D, GL_DEPTH_TEXTURE_MODE, GL_INTENSITY);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
    }
}

void Texture::Copy()
{
    Copy(m_size.x, m_size.y);
}

void Texture::Copy(int w, int h)
{
    util::ScopeProfiler profile("Texture::Copy");
    glBindTexture(GL_TEXTURE_2D, m_name);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, w, h);
}

ImageRGBA32Ptr Texture::ReadRGBA() const
{
    util::ScopeProfiler profile("Read");
    ImageRGBA32Ptr image = QLEX_NEW new ImageRGBA32(unsigned(m_size.x), unsigned(m_size.y), HasAlpha());
    if (m_name != 0 && m_size.x > 0 && m_size.y > 0)
    {
        glBindTexture(GL_TEXTURE_2D, m_name);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, image->GetPixels().GetData().data());
    }
    return image;
}

int Texture::BytesPerPixel(Format format)
{
    switch (format)
    {
    case GL_ALPHA:
        return 1;
    case GL_ALPHA16:
    case GL_RGB16:
    case GL_RGBA16:
    case GL_DEPTH_COMPONENT16:
    case GL_ALPHA16F_ARB:
        return 2;
    case GL_RGB:
    case GL_DEPTH_COMPONENT24:
        return 3;
    case GL_RGBA:
    case GL_DEPTH_COMPONENT:
    case GL_DEPTH_COMPONENT32:
    case GL_ALPHA32F_ARB:
        return 4;
    case GL_RGBA16F_ARB:
        return 8;
    case GL_RGBA32F_ARB:
        return 16;
    default:
        QLEX_THROW(BadCoderException("Bad image format"));
    }
}

bool Texture::IsDepthFormat(Format format)
{
    return format == GL_DEPTH_COMPONENT || format == GL_DEPTH_COMPONENT16 || format == GL_DEPTH_COMPONENT24 ||
           format == GL_DEPTH_COMPONENT32;
}

size_t Texture::MemoryUsage() const
{
    // The stated format counts, not the 16-bit one a setting may have put in its place.
    size_t bytes = size_t(m_size.x) * size_t(m_size.y) * size_t(BytesPerPixel(m_type.format));
    if (m_type.mipmaps)
        bytes = bytes * 4 / 3;
    return bytes;
}

ImageRGBA32Ptr CreateDefaultImage()
{
    ImageRGBA32Ptr image = QLEX_NEW new ImageRGBA32(DEFAULT_SIZE, DEFAULT_SIZE, true);
    for (unsigned y = 0; y < DEFAULT_SIZE; ++y)
    {
        for (unsigned x = 0; x < DEFAULT_SIZE; ++x)
        {
            const bool same = (x / DEFAULT_SQUARE) % 2 == (y / DEFAULT_SQUARE) % 2;
            (*image)(x, y) = same ? PixelRGBA(0, 255, 0, 127) : PixelRGBA(255, 0, 255, 255);
        }
    }
    image->SetName("default");
    return image;
}

Texture* CreateDefaultTexture()
{
    return new Texture(CreateDefaultImage(),
                       Texture::ImageType(GL_RGBA, true, Texture::Quality(0, 0, 1, 1, 1)));
}

} // namespace rendering
