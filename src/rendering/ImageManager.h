#pragma once

#include "rendering/Image.h"
#include "util/HashMap.h"
#include "util/Singleton.h"

#include <set>
#include <string>
#include <vector>

namespace rendering
{

// Decoded images by every spelling of their path, so that a texture is made again after a window change
// without touching the disk, and a name that failed is not tried again.
class ImageManager : public util::Pointee, public util::Singleton<ImageManager>
{
public:
    // The image of a name, a path, or a name in the texture or data folder, with or without its extension.
    // Null (logged once) if there is no such file or it can't be read.
    ImageRGBA32Ptr Load(const std::string& name);
    void Add(const std::string& path, ImageRGBA32Ptr image);
    void ReloadAll();

    static std::string GetFullPath(const std::string& name);
    static std::vector<std::string> GetPathVariations(const std::string& path);

private:
    util::HashMap<std::string, ImageRGBA32Ptr> m_images;
    std::set<std::string> m_paths;
};

// Completes a path without extension by the first image extension that exists. False if none does.
bool FindExtension(std::string& path);

} // namespace rendering
