#pragma once

#include "math/Math.h"
#include "rendering/GLContext.h"
#include "util/Array2D.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace rendering
{

// A picture in system memory: the source a texture is made from, kept so that textures can be made again
// after a window change without reading the disk.
class AbstractImage : public util::Pointee
{
public:
    AbstractImage() = default;
    AbstractImage(unsigned width, unsigned height) : m_width(width), m_height(height) {}
    virtual ~AbstractImage() = default;

    virtual const void* GetDataVoidPtr() const = 0;
    virtual bool HasAlpha() const = 0;
    // The GL pixel format and component type of the data.
    virtual GLenum GetFormat() const = 0;
    virtual GLenum GetType() const = 0;

    unsigned GetWidth() const { return m_width; }
    unsigned GetHeight() const { return m_height; }

protected:
    unsigned m_width = 0;
    unsigned m_height = 0;
};

// Pixels in rows from the bottom of the picture up, as GL wants them.
template <class T> class TImage : public AbstractImage
{
public:
    TImage() = default;
    TImage(unsigned width, unsigned height) : AbstractImage(width, height), m_pixels(width, height) {}

    const void* GetDataVoidPtr() const override { return m_pixels.GetData().data(); }

    void Resize(unsigned width, unsigned height)
    {
        m_width = width;
        m_height = height;
        m_pixels.Resize(width, height);
    }
    T& operator()(unsigned x, unsigned y) { return m_pixels(x, y); }
    const T& operator()(unsigned x, unsigned y) const { return m_pixels(x, y); }
    util::Array2D<T>& GetPixels() { return m_pixels; }
    const util::Array2D<T>& GetPixels() const { return m_pixels; }

    const util::String& GetName() const { return m_name; }
    void SetName(const util::String& name) { m_name = name; }

protected:
    util::Array2D<T> m_pixels;
    util::String m_name;
};

using PixelRGBA = math::TVector4<unsigned char>;

class ImageRGBA32 : public TImage<PixelRGBA>
{
public:
    // Byte layouts of a RAW file: alpha only (colour white), RGB (opaque), RGBA.
    enum RAWFormat
    {
        RAW_ALPHA = 0,
        RAW_RGB = 1,
        RAW_RGBA = 2,
    };

    ImageRGBA32() = default;
    ImageRGBA32(unsigned width, unsigned height, bool hasAlpha = true)
        : TImage<PixelRGBA>(width, height), m_hasAlpha(hasAlpha)
    {
    }

    bool HasAlpha() const override { return m_hasAlpha; }
    void SetHasAlpha(bool hasAlpha) { m_hasAlpha = hasAlpha; }
    GLenum GetFormat() const override { return GL_RGBA; }
    GLenum GetType() const override { return GL_UNSIGNED_BYTE; }

    // PNG, TGA, BMP and JPEG through SDL_image; a ".raw" file as RAW alpha. Throws on failure.
    void LoadFile(const std::string& path);
    // The side of a RAW picture follows from the file's length: it is square.
    void LoadRAW(const std::string& path, RAWFormat format);
    void LoadRAW(const std::string& path, RAWFormat format, unsigned width, unsigned height);

private:
    bool m_hasAlpha = false;
};
using ImageRGBA32Ptr = util::SharedPtr<ImageRGBA32>;

// One float a pixel, shown as alpha.
class ImageFloat : public TImage<float>
{
public:
    ImageFloat() = default;
    ImageFloat(unsigned width, unsigned height) : TImage<float>(width, height) {}

    bool HasAlpha() const override { return true; }
    GLenum GetFormat() const override { return GL_ALPHA; }
    GLenum GetType() const override { return GL_FLOAT; }
};
using ImageFloatPtr = util::SharedPtr<ImageFloat>;

// LoadFile that reports a failure in the log and gives null instead of throwing.
ImageRGBA32Ptr TryLoad(const std::string& path);

} // namespace rendering
