// Every byte sequence is an image file that loads or is refused with a message: never a crash, a hang or
// unbounded memory. The first byte picks the kind the name claims, so that each decoder and the RAW
// reader see every input; the rest is the file.

#include "logging/Log.h"
#include "rendering/Image.h"
#include "util/SharedPtr.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const char* const EXTENSIONS[] = {".png", ".tga", ".bmp", ".jpg", ".raw"};
    static const std::string base = "/tmp/qlex-image-fuzz-" + std::to_string(getpid());
    static bool started = false;
    if (!started)
    {
        started = true;
        // The program ends without static destructors, as Qlex does: what the singletons hold then is no
        // leak.
        std::atexit(
            []
            {
                std::fflush(nullptr);
                _exit(0);
            });
    }
    if (size == 0)
        return 0;
    const std::string path = base + EXTENSIONS[data[0] % 5];
    {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
    }
    rendering::ImageRGBA32Ptr image = rendering::TryLoad(path);
    if (image)
    {
        // What a texture reads of a loaded picture: every pixel.
        unsigned sum = 0;
        for (unsigned y = 0; y < image->GetHeight(); ++y)
            for (unsigned x = 0; x < image->GetWidth(); ++x)
                sum += (*image)(x, y).w;
        (void)sum;
    }
    image = nullptr;
    std::remove(path.c_str());
    // The "GC" step of a frame: handles of dead objects are freed.
    util::PointeeHandle::Flush();
    return 0;
}
