#include "rendering/ImageManager.h"

#include "logging/Log.h"
#include "util/FileSystem.h"

#include <algorithm>
#include <cctype>

namespace rendering
{
namespace
{
bool StartsWithNoCase(const std::string& text, const std::string& start)
{
    if (text.size() < start.size())
        return false;
    return std::equal(start.begin(), start.end(), text.begin(),
                      [](char a, char b) { return std::tolower(a) == std::tolower(b); });
}

const char* const IMAGE_EXTENSIONS[] = {"png", "tga", "bmp", "jpg"};
} // namespace

bool FindExtension(std::string& path)
{
    if (util::FileSystem::FileExists(path))
        return true;
    for (const char* extension : IMAGE_EXTENSIONS)
    {
        const std::string candidate = path + "." + extension;
        if (util::FileSystem::FileExists(candidate))
        {
            path = candidate;
            return true;
        }
    }
    return false;
}

std::string ImageManager::GetFullPath(const std::string& name)
{
    for (const std::string& prefix : {std::string(), util::FileSystem::GetInstancePtr()->TextureDir(),
                                      util::FileSystem::GetInstancePtr()->DataDir()})
    {
        std::string path = prefix + name;
        if (FindExtension(path))
            return path;
    }
    return std::string();
}

std::vector<std::string> ImageManager::GetPathVariations(const std::string& path)
{
    // Only paths with a three-letter extension are images.
    if (path.size() <= 4 || path[path.size() - 4] != '.')
    {
        Log(logging::Error, "Bad image path: \"" + path + "\"");
        return {};
    }
    const std::string bare = path.substr(0, path.size() - 4);
    std::vector<std::string> variations = {bare, path};
    for (const std::string& dir :
         {util::FileSystem::GetInstancePtr()->TextureDir(), util::FileSystem::GetInstancePtr()->DataDir()})
    {
        if (!dir.empty() && StartsWithNoCase(path, dir))
        {
            variations.push_back(bare.substr(dir.size()));
            variations.push_back(path.substr(dir.size()));
            break;
        }
    }
    return variations;
}

ImageRGBA32Ptr ImageManager::Load(const std::string& name)
{
    if (const ImageRGBA32Ptr* known = m_images.TryGet(name))
        return *known;
    const std::string full = GetFullPath(name);
    if (full.empty())
    {
        m_images.Insert(name, nullptr);
        Log(logging::Error, "Failed to find image \"" + name + "\"");
        return nullptr;
    }
    ImageRGBA32Ptr image = TryLoad(full);
    if (!image)
        Log(logging::Error, "Failed to load image \"" + full + "\"");
    Add(full, image);
    // Whatever spelling was asked for finds the same image next time.
    m_images.Insert(name, image);
    return image;
}

void ImageManager::Add(const std::string& path, ImageRGBA32Ptr image)
{
    m_paths.insert(path);
    for (const std::string& variation : GetPathVariations(path))
        m_images.Insert(variation, image);
}

void ImageManager::ReloadAll()
{
    m_images.clear();
    for (const std::string& path : m_paths)
    {
        const ImageRGBA32Ptr image = TryLoad(path);
        for (const std::string& variation : GetPathVariations(path))
            m_images.Insert(variation, image);
    }
}

} // namespace rendering
