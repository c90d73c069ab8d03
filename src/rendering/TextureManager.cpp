#include "rendering/TextureManager.h"

#include "rendering/ImageManager.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"

#include <algorithm>
#include <cctype>

namespace rendering
{
namespace
{
uint32_t HashType(const Texture::ImageType& type)
{
    const Texture::Quality& q = type.quality;
    return uint32_t(type.format) ^ (type.mipmaps ? 0x1337u : 0u) ^ uint32_t(q.clampS) ^
           (uint32_t(q.clampT) << 2) ^ (uint32_t(q.minLinear) << 4) ^ (uint32_t(q.magLinear) << 6) ^
           (uint32_t(q.mipLinear) << 8);
}

bool IsPrefetchedImage(const std::string& file)
{
    std::string lower = file;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    for (const char* extension : {".png", ".bmp", ".tga", ".jpg"})
    {
        const size_t n = std::char_traits<char>::length(extension);
        if (lower.size() >= n && lower.compare(lower.size() - n, n, extension) == 0)
            return true;
    }
    return false;
}
} // namespace

uint32_t TextureManager::ImagePairHasher::operator()(const NamePair& key) const
{
    return util::DefaultHasher()(key.first) ^ HashType(key.second);
}

uint32_t TextureManager::ImagePairHasher::operator()(const ImagePair& key) const
{
    return util::DefaultHasher()(key.first) ^ HashType(key.second);
}

TextureManager::TextureManager()
{
    util::Mentor<Texture>::s_default = QLEX_NEW new util::Mentor<Texture>(&CreateDefaultTexture);
}

TextureManager::~TextureManager()
{
    util::Mentor<Texture>::s_default.Reset();
}

TextureProxy TextureManager::Load(util::String name, Texture::ImageType type)
{
    static util::StaticProfilerData s_timing("TextureManager::Load");
    util::StaticProfilerScope timing(s_timing);
    const NamePair key(name, type);
    if (TextureMentorPtr* known = m_byName.TryGet(key))
        return TextureProxy(*known);
    TextureMentorPtr mentor =
        QLEX_NEW new util::Mentor<Texture>([name, type] { return TextureFromImageManager(name, type); });
    m_byName.Insert(key, mentor);
    return TextureProxy(mentor);
}

TextureProxy TextureManager::Load(ImageRGBA32Ptr image, Texture::ImageType type)
{
    const ImagePair key(image.get(), type);
    if (TextureMentorPtr* known = m_byImage.TryGet(key))
        return TextureProxy(*known);
    TextureMentorPtr mentor =
        QLEX_NEW new util::Mentor<Texture>([image, type] { return TextureFromImage(image, type); });
    m_byImage.Insert(key, mentor);
    return TextureProxy(mentor);
}

TextureProxy TextureManager::Load(ImageFloatPtr image, Texture::ImageType type)
{
    const ImagePair key(image.get(), type);
    if (TextureMentorPtr* known = m_byImage.TryGet(key))
        return TextureProxy(*known);
    TextureMentorPtr mentor =
        QLEX_NEW new util::Mentor<Texture>([image, type] { return TextureFromImageFloat(image, type); });
    m_byImage.Insert(key, mentor);
    return TextureProxy(mentor);
}

Texture::ImageType TextureManager::DefaultImageType()
{
    return Texture::ImageType(GL_RGBA, true, Texture::Quality(1, 1, 1, 1, 1));
}

void TextureManager::Prefetch()
{
    Traverse("");
    PrefetchFiles(util::FileSystem::GetInstancePtr()->LanguageDir(),
                  util::FileSystem::FilesInDir(util::FileSystem::GetInstancePtr()->LanguageDir(), "*"));
    PrefetchFiles(util::FileSystem::GetInstancePtr()->FontsDir(),
                  util::FileSystem::FilesInDir(util::FileSystem::GetInstancePtr()->FontsDir(), "*"));
}

void TextureManager::Traverse(const std::string& relativeDir)
{
    const std::string dir = util::FileSystem::GetInstancePtr()->TextureDir() + relativeDir;
    PrefetchFiles(dir, util::FileSystem::FilesInDir(dir, "*"));
    for (const std::string& sub : util::FileSystem::DirsInDir(dir))
    {
        if (!sub.empty() && sub[0] != '.')
            Traverse(relativeDir + sub + "/");
    }
}

void TextureManager::PrefetchFiles(const std::string& dir, const std::vector<std::string>& files)
{
    for (const std::string& file : files)
    {
        if (IsPrefetchedImage(file))
            Load(dir + file, DefaultImageType());
    }
}

Texture* TextureFromImageManager(const std::string& name, const Texture::ImageType& type)
{
    ImageRGBA32Ptr image = ImageManager::GetInstancePtr()->Load(name);
    if (!image)
        return nullptr;
    return new Texture(image, type);
}

Texture* TextureFromImage(ImageRGBA32Ptr image, const Texture::ImageType& type)
{
    return image ? new Texture(image, type) : nullptr;
}

Texture* TextureFromImageFloat(ImageFloatPtr image, const Texture::ImageType& type)
{
    return image ? new Texture(image, type) : nullptr;
}

} // namespace rendering
