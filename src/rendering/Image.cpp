#include "rendering/Image.h"

#include "logging/Exception.h"
#include "util/String.h"

#include <SDL/SDL.h>
#include <SDL/SDL_image.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>

namespace rendering
{
namespace
{
bool EndsWithNoCase(const std::string& text, const std::string& end)
{
    if (text.size() < end.size())
        return false;
    return std::equal(end.rbegin(), end.rend(), text.rbegin(),
                      [](char a, char b) { return std::tolower(a) == std::tolower(b); });
}

unsigned IntegerSqrt(unsigned long n)
{
    unsigned long side = (unsigned long)std::sqrt(double(n));
    while (side * side > n)
        --side;
    while ((side + 1) * (side + 1) <= n)
        ++side;
    return unsigned(side);
}

// Pictures of more pixels are refused: 8192 x 8192, a quarter of a gigabyte, beyond any texture we use.
const unsigned long MAX_PIXELS = 8192UL * 8192UL;

void RefuseIfEnormous(const std::string& path, unsigned long width, unsigned long height)
{
    if (width * height > MAX_PIXELS || width > MAX_PIXELS || height > MAX_PIXELS)
        QLEX_THROW(FileReadException("The image \"" + path + "\" is too large: " + std::to_string(width) +
                                     " x " + std::to_string(height) + " pixels"));
}

unsigned BytesPerPixel(ImageRGBA32::RAWFormat format)
{
    return format == ImageRGBA32::RAW_ALPHA ? 1 : format == ImageRGBA32::RAW_RGB ? 3 : 4;
}
} // namespace

void ImageRGBA32::LoadFile(const std::string& path)
{
    SetName(path);
    if (EndsWithNoCase(path, ".raw"))
    {
        LoadRAW(path, RAW_ALPHA);
        return;
    }
    SDL_Surface* loaded = IMG_Load(path.c_str());
    if (!loaded)
        QLEX_THROW(FileReadException("Could not load image file \"" + path + "\". SDL_image error: \"" +
                                     IMG_GetError() + "\""));
    if (loaded->w <= 0 || loaded->h <= 0 || (unsigned long)loaded->w * (unsigned long)loaded->h > MAX_PIXELS)
    {
        const std::string size = std::to_string(loaded->w) + " x " + std::to_string(loaded->h);
        SDL_FreeSurface(loaded);
        QLEX_THROW(FileReadException("The image \"" + path + "\" has no usable size: " + size + " pixels"));
    }
    m_hasAlpha = loaded->format->BitsPerPixel == 32 || loaded->format->BitsPerPixel == 8;

    SDL_Surface* pic = loaded;
    if (loaded->format->BitsPerPixel != 32)
    {
        // R, G, B, A from the lowest byte up, which on a little-endian machine is the byte order GL reads.
        pic =
            SDL_CreateRGBSurface(SDL_SWSURFACE, loaded->w, loaded->h, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000);
        if (!pic)
        {
            SDL_FreeSurface(loaded);
            QLEX_THROW(FileReadException("Out of memory converting image \"" + path + "\""));
        }
        SDL_SetAlpha(loaded, 0, 255);
        SDL_BlitSurface(loaded, nullptr, pic, nullptr);
        SDL_FreeSurface(loaded);
    }
    struct SurfaceGuard
    {
        SDL_Surface* surface;
        ~SurfaceGuard() { SDL_FreeSurface(surface); }
    } guard{pic};

    QLEX_ASSERT(pic->pitch == 4 * pic->w);
    Resize(unsigned(pic->w), unsigned(pic->h));
    SDL_LockSurface(pic);
    const unsigned char* bytes = static_cast<const unsigned char*>(pic->pixels);
    // The surface's first row is the top of the picture; ours is the bottom.
    for (unsigned y = 0; y < m_height; ++y)
    {
        const unsigned char* row = bytes + size_t(m_height - 1 - y) * size_t(pic->pitch);
        for (unsigned x = 0; x < m_width; ++x)
            (*this)(x, y) = PixelRGBA(row[4 * x], row[4 * x + 1], row[4 * x + 2], row[4 * x + 3]);
    }
    SDL_UnlockSurface(pic);

    // SDL_image hands 32-bit TGA pixels over in BGRA.
    if (m_hasAlpha && EndsWithNoCase(path, ".tga"))
    {
        for (PixelRGBA& p : m_pixels.GetData())
            std::swap(p.x, p.z);
    }
}

void ImageRGBA32::LoadRAW(const std::string& path, RAWFormat format)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file)
        QLEX_THROW(FileReadException("Failed to open file \"" + path + "\""));
    const unsigned long length = (unsigned long)file.tellg();
    const unsigned long n = length / BytesPerPixel(format);
    RefuseIfEnormous(path, n, 1);
    const unsigned side = IntegerSqrt(n);
    if ((unsigned long)side * side != n)
        QLEX_THROW(FileReadException("The RAW-file \"" + path + "\" contained a non quadratic picture."));
    LoadRAW(path, format, side, side);
}

void ImageRGBA32::LoadRAW(const std::string& path, RAWFormat format, unsigned width, unsigned height)
{
    SetName(path);
    RefuseIfEnormous(path, width, height);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        QLEX_THROW(FileReadException("Failed to open file \"" + path + "\""));
    m_hasAlpha = format == RAW_ALPHA || format == RAW_RGBA;
    Resize(width, height);
    const unsigned bytes = BytesPerPixel(format);
    for (PixelRGBA& p : m_pixels.GetData())
    {
        unsigned char in[4] = {255, 255, 255, 255};
        file.read(reinterpret_cast<char*>(in), bytes);
        if (!file)
            QLEX_THROW(FileReadException("File \"" + path + "\" is corrupt."));
        p = format == RAW_ALPHA ? PixelRGBA(255, 255, 255, in[0]) : PixelRGBA(in[0], in[1], in[2], in[3]);
    }
    // The file's first row is the top of the picture; ours is the bottom.
    for (unsigned y = 0; y < height / 2; ++y)
        for (unsigned x = 0; x < width; ++x)
            std::swap((*this)(x, y), (*this)(x, height - 1 - y));
}

ImageRGBA32Ptr TryLoad(const std::string& path)
{
    try
    {
        ImageRGBA32Ptr image = QLEX_NEW new ImageRGBA32();
        image->LoadFile(path);
        return image;
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
    }
    return nullptr;
}

} // namespace rendering
